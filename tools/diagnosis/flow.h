/**
 * @file flow.h
 * What flows through each stage, as data: which fields count what comes in, what goes out and what is lost.
 */
#ifndef DIAGNOSIS_FLOW_H
#define DIAGNOSIS_FLOW_H

#include <array>
#include <span>
#include <string_view>

#include "chain.h"
#include "window.h"

namespace diagnosis
{

/** The counters of a stage. Fields of arrays are summed. */
struct Flow
{
    Stage stage;
    const Reading* in;                  /**< what comes */
    const Reading* held_back;           /**< the part of it that comes to nothing, or NULL */
    const Reading* out;                 /**< what goes on */
    const Reading* last;                /**< when something last went on */
    std::array<const Reading*, 3> lost; /**< what is lost here; NULL = none */
    std::string_view unit;              /**< what is counted: pictures */
};

/** The flow of a stage. @param stage not the host */
const Flow& flow(Stage stage);

/** What a stage has passed on in a window. */
struct Passed
{
    std::int64_t in = 0;
    std::int64_t out = 0;
    std::int64_t lost = 0;
};

/** Counts what a stage has passed on. */
Passed passed(const Flow& flow, const Window& window);

/** Whether all that the flow is counted by is in the snapshot and measured. */
bool measured(const Flow& flow, const Window& window);

} // namespace diagnosis

#endif
