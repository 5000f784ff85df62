/**
 * @file chain.h
 * The decoding chain as data: its stages, and what lies upstream of each.
 */
#ifndef DIAGNOSIS_CHAIN_H
#define DIAGNOSIS_CHAIN_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace diagnosis
{

/** A stage of the chain, in the order in which people read them. */
enum class Stage : std::uint8_t
{
    network,
    link,
    ts,
    clock,
    framer,
    vdecoder,
    output,
    audio,
    metadata,
    buffering,
    host, /**< the process that fills the records: findings may be about it, but nothing flows through it */
};

/** Number of stages that something flows through. */
inline constexpr std::size_t stage_count = 10;

/** How a stage is. */
enum class StageState : std::uint8_t
{
    working,  /**< passes on what it gets */
    degraded, /**< passes on a part of it, or passes it on badly */
    stopped,  /**< gets something and passes on nothing */
    no_input, /**< gets nothing and is not at fault */
    idle,     /**< has nothing to do with this stream, or no stream was started */
    unknown,  /**< cannot be told */
};

/** A stage. */
struct StageInfo
{
    Stage stage;
    std::string_view id;    /**< stable word for programs: ts */
    std::string_view title; /**< for people: Transport stream */
    std::uint16_t upstream; /**< the stages whose faults reach it, a bit each */
};

/** All stages that something flows through, in order. */
std::span<const StageInfo, stage_count> chain();

/** The word of a stage: "vdecoder". */
std::string_view stage_id(Stage stage);

/** The name of a stage for people: "Video decoder". */
std::string_view stage_title(Stage stage);

/** The word of a state: "no_input". */
std::string_view state_id(StageState state);

/** The name of a state for people: "No input". */
std::string_view state_title(StageState state);

/** Whether what happens in one stage reaches another. The host reaches all of them. */
bool reaches(Stage upstream, Stage stage);

/** The place of a stage on the way of a fault, causes first: unlike people's order, buffering comes before what it feeds. */
int causal_place(Stage stage);

} // namespace diagnosis

#endif
