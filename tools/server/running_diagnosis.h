/**
 * @file running_diagnosis.h
 * What is wrong with a decoder that is looked at each second. A short window tells first; a long one sees what a short one has
 * too little of, and is the one that findings over time go by.
 */
#ifndef SERVER_RUNNING_DIAGNOSIS_H
#define SERVER_RUNNING_DIAGNOSIS_H

#include <optional>
#include <string>

#include "diagnosis.h"
#include "snapshot.h"

namespace server
{

/** A diagnosis that goes on. Used by one thread at a time. */
class RunningDiagnosis
{
public:
    RunningDiagnosis();

    /** Takes the next snapshot. */
    void take(const records::Snapshot& snapshot);

    /**
     * The result that is to be told: that of the short window, unless the long one knows of something at least as bad, for it sees
     * causes better. What flows is always that of the short one.
     */
    std::optional<diagnosis::Result> result() const;

    /**
     * The same as JSON of decstats-findings(5), with the findings over time.
     * @param is_live otherwise it says that it is of a decoder that is not live any more
     * @return empty = nothing was taken yet
     */
    std::string json(bool is_live) const;

private:
    /** A window of one length. */
    struct Windows
    {
        /** @param seconds how long a window is [s] */
        explicit Windows(double seconds) : diagnosis({.window = seconds}) {}

        diagnosis::Diagnosis diagnosis;
        std::optional<records::Snapshot> judged; /**< the last one, without its records; nothing = none */

        void take(const records::Snapshot& snapshot);
    };

    bool is_long_told() const;

    Windows short_;
    Windows long_;
};

} // namespace server

#endif
