/**
 * @file verdict.h
 * The answer in one line: what is lost, where first, what to do now.
 */
#ifndef DIAGNOSIS_VERDICT_H
#define DIAGNOSIS_VERDICT_H

#include "diagnosis.h"
#include "window.h"

namespace diagnosis
{

/** The verdict on a result whose stages and findings are known. */
Verdict conclude(const Result& result, const Window& window);

/** The verdict where nothing can be told. */
Verdict doubtful(Doubt doubt);

/** A verdict that is no longer of now: it says so, and its exit status is that nothing can be told. */
Verdict outdated(Verdict verdict);

} // namespace diagnosis

#endif
