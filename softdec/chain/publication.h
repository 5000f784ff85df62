/**
 * @file publication.h
 * Publishes the records of a chain for other processes.
 */
#ifndef SOFTDEC_CHAIN_PUBLICATION_H
#define SOFTDEC_CHAIN_PUBLICATION_H

#include <chrono>
#include <memory>
#include <string>

#include "chain/chain.h"
#include "chain/not_measured.h"
#include "stats_publish.h"

namespace softdec
{

class Publication
{
public:
    /**
     * Begins to publish.
     * @param name      name of the decoder
     * @param directory existing directory; empty = the usual one
     * @throw OutputError if it cannot
     */
    Publication(const std::string& name, const std::string& directory, const Abilities& abilities);

    /** Publishes when it is time to, five times a second: often enough for rates, and rarely enough to cost nothing. */
    void offer(Chain& chain);

    /** Publishes now. */
    void publish(Chain& chain);

private:
    struct Close
    {
        void operator()(STATS_PUBLISHER* publisher) const { STATS_PublishClose(publisher); }
    };
    std::unique_ptr<STATS_PUBLISHER, Close> publisher_;
    std::chrono::steady_clock::time_point due_;
};

} // namespace softdec

#endif
