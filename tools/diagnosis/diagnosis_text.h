/**
 * @file diagnosis_text.h
 * Results for people.
 */
#ifndef DIAGNOSIS_DIAGNOSIS_TEXT_H
#define DIAGNOSIS_DIAGNOSIS_TEXT_H

#include <string>
#include <vector>

#include "diagnosis.h"

namespace diagnosis
{

/** A result: the verdict, the chain with a line for each stage, the findings with their evidence and what to do now. */
std::string text(const Result& result);

/** The verdict in one line: what is lost, and where. */
std::string verdict_line(const Result& result);

/** A stage in one line, without its newline: its name, how it is, what flows through it, and the numbers of its findings. */
std::string stage_line(const Result& result, std::size_t place);

/** Findings over time, with their begin and end. */
std::string text(const std::vector<Episode>& episodes);

/** A field that a finding rests on, with its value: "tdemux.srt.key_state is bad_secret". */
std::string text(const Proof& proof, const Result& result);

} // namespace diagnosis

#endif
