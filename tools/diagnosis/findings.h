/**
 * @file findings.h
 * From the rules to the findings: which of them see something, and which follow from others.
 */
#ifndef DIAGNOSIS_FINDINGS_H
#define DIAGNOSIS_FINDINGS_H

#include <cstdint>
#include <vector>

#include "diagnosis.h"
#include "window.h"

namespace diagnosis
{

/** What the rules found in a window. */
struct Found
{
    std::vector<Finding> findings;   /**< those that nothing else explains, the most severe first */
    std::vector<const Rule*> follow; /**< those that others explain */
    std::vector<Unseen> unseen;
    std::vector<bool> asked; /**< as Result has it */
};

/**
 * Asks every rule.
 * @param window whole, or of one moment
 * @param recent for each of rules(), whether it was found a few seconds ago: what it did may still be under way
 */
Found find(const Window& window, const std::vector<bool>& recent);

/** Whether one finding may follow from another. */
bool explains(const Rule& cause, const Rule& effect);

} // namespace diagnosis

#endif
