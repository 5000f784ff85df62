/**
 * @file stage_states.h
 * The states of the stages, from what flows and from the findings.
 */
#ifndef DIAGNOSIS_STAGE_STATES_H
#define DIAGNOSIS_STAGE_STATES_H

#include "findings.h"

namespace diagnosis
{

/** What a stage did, whatever is to be thought of it. */
StageResult observe(Stage stage, const Window& window);

/** Fills the stages of a result from its window and from what was found in it. */
void judge_stages(Result& result, const Window& window, const Found& found);

/** Whether a stream was started; nothing = cannot be told. */
std::optional<bool> is_started(const Window& window);

} // namespace diagnosis

#endif
