/**
 * @file diagnosis.h
 * What is wrong with a decoder, and where. A fold over its snapshots: what is live, what a capture file holds and what was
 * taken once go through the same code.
 */
#ifndef DIAGNOSIS_DIAGNOSIS_H
#define DIAGNOSIS_DIAGNOSIS_H

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "chain.h"
#include "rule.h"
#include "snapshot.h"

namespace diagnosis
{

/** A field that a finding rests on, as it was. */
struct Proof
{
    const dictionary::Field* field;
    std::size_t element;
    dictionary::Value value;           /**< texts and bytes are never evidence, so nothing refers to a snapshot */
    std::optional<std::int64_t> grown; /**< for counters, by how much within the window */
};

/** Something that is wrong. */
struct Finding
{
    const Rule* rule;
    Severity severity;
    std::string detail;                /**< what the title leaves open; may be empty */
    std::optional<std::int64_t> since; /**< when it began [epoch s]; nothing = not known */
    std::vector<Proof> evidence;
    std::vector<const Rule*> explains; /**< findings of later stages that follow from this one */
};

/** What a stage does. */
struct StageResult
{
    Stage stage;
    StageState state = StageState::unknown;
    std::optional<double> in;              /**< a second; nothing = cannot be seen */
    std::optional<double> out;             /**< a second */
    std::optional<std::int64_t> lost;      /**< within the window */
    std::optional<std::int64_t> last_good; /**< when something last went on [epoch s]; nothing = never or not known */
    std::vector<std::size_t> findings;     /**< places among Result::findings */
};

/** A rule that could not look. */
struct Unseen
{
    const Rule* rule;
    std::string_view field; /**< the first field that it misses */
    bool absent;            /**< the record of its component is absent; otherwise this host does not measure it */
};

/** Why nothing can be told. */
enum class Doubt : std::uint8_t
{
    none,
    single,    /**< there is one moment only: rates cannot be seen */
    starting,  /**< the stream runs since a few seconds only */
    restarted, /**< the host process, or the stream, was started again within the window */
    gap,       /**< nothing is known of a part of the window */
    clock_set, /**< the system's clock was set within the window */
    onset,     /**< something has just begun: the next window tells where */
    cleared,   /**< counters were cleared within the window, of some components at least */
    missing,   /**< records are missing, or fields that this host does not measure */
    undecided, /**< a stage passes on nothing, and the window is too short to tell why */
    not_live,  /**< it was the last verdict on a decoder that has ended or cannot be read any more */
};

/** The answer in one line and what follows from it. */
struct Verdict
{
    StageState state = StageState::unknown; /**< working = healthy */
    std::optional<Stage> stage;             /**< where the first problem is */
    std::string headline;                   /**< what is lost, or that nothing is: No picture for 1m 35s */
    std::string place;                      /**< where and why, one sentence; may be empty */
    std::string_view action;                /**< what to do now; may be empty */
    Doubt doubt = Doubt::none;
};

/** What is wrong at one moment. */
struct Result
{
    std::int64_t taken_at = 0; /**< [ns since the epoch, UTC] */
    double seconds = 0;        /**< length of the window; 0 = there is none [s] */
    Verdict verdict;
    std::array<StageResult, stage_count> stages = {}; /**< in the chain's order */
    std::vector<Finding> findings;                    /**< the most severe first, then causes first */
    std::vector<Unseen> unseen;
    std::vector<bool> asked; /**< for each of rules(), whether it could look: what was not found is not there; empty = none could */
};

/** Exit status, as monitoring plugins have it: 0 healthy, 1 warning, 2 critical, 3 cannot tell. */
int exit_status(const Result& result);

/** A finding over time. */
struct Episode
{
    Finding finding;    /**< as it was first found */
    std::int64_t begin; /**< [ns since the epoch, UTC] */
    std::int64_t last;  /**< when it was last found [ns since the epoch, UTC] */
    bool over = false;  /**< it was not found any more */
};

/** Exit status of findings over time: that of the most severe. */
int exit_status(const std::vector<Episode>& episodes);

/** How the snapshots are looked at. */
struct Options
{
    double window = 10;      /**< length of a window [s] */
    double longest_gap = 30; /**< snapshots further apart than this, and than three windows, leave a gap [s] */
    /** What may follow from a fault of an earlier stage, which may take seconds to be seen, waits for a second window. */
    bool confirm = true;
};

/** Takes the snapshots of one decoder, in order. */
class Diagnosis
{
public:
    explicit Diagnosis(Options options = {});

    /**
     * Takes the next snapshot. With the first one, there is a result from one moment; from then on there is a new one each
     * time a window is full. Snapshots of another instance begin anew.
     * @return whether there is a new result
     */
    bool take(const records::Snapshot& snapshot);

    /** The last result. */
    const Result& result() const { return result_; }

    /** The findings so far, with begin and end. */
    const std::vector<Episode>& episodes() const { return episodes_; }

    /** Forgets findings that were over before a moment, and the oldest of those that are over above a number of them. */
    void forget(std::int64_t before, std::size_t most);

private:
    void evaluate(const Window& window);
    std::vector<Finding> hold_back(const Window& window);
    void settle(const std::vector<Finding>& held, const std::vector<const Rule*>& explained, const Window& window);
    void date_findings();
    void follow(const Window& window);
    Episode episode_of(const Finding& finding, const Window& window) const;

    Options options_;
    std::unique_ptr<records::Snapshot> before_;
    Result result_;
    std::vector<Episode> episodes_;
    std::vector<Episode> held_;      /**< found once and not confirmed yet */
    std::vector<std::int64_t> seen_; /**< when each rule was last found, by its place [ns since the epoch, UTC]; 0 = not yet */
};

/** What is wrong at one moment, as far as one moment tells. */
Result diagnose(const records::Snapshot& now);

/** What is wrong between two moments, with nothing held back. */
Result diagnose(const records::Snapshot& before, const records::Snapshot& now);

} // namespace diagnosis

#endif
