/**
 * @file continuity.h
 * The continuity counter of one PID (ISO/IEC 13818-1, 2.4.3.3). It has four bits, so that losses are known modulo 16.
 */
#ifndef SOFTDEC_DEMUX_CONTINUITY_H
#define SOFTDEC_DEMUX_CONTINUITY_H

#include <cstddef>
#include <optional>

namespace softdec
{

class Continuity
{
public:
    /** What a packet is by its counter. */
    struct Verdict
    {
        unsigned lost = 0;  /**< packets known to be lost now, modulo 16 */
        bool usable = true; /**< the packet continues the stream; otherwise it came twice or too late */
    };

    /**
     * Judges a packet that has a payload.
     * @param counter   its counter
     * @param announced it announces that the counter does not continue
     * @param hash      of its payload: a packet may be sent twice, but then with the same payload
     */
    Verdict take(unsigned counter, bool announced, std::size_t hash)
    {
        if (!last_ || announced)
        {
            accept(counter, hash);
            return {};
        }
        const unsigned lost = (counter - *last_ - 1) % 16;
        if (lost == 15 && hash == hash_) return {.usable = false};
        if (late_ && counter == (*late_ + 1) % 16 && lost != 0)
        {
            // What seemed late was the first behind a longer loss.
            const unsigned before = (*late_ - *last_ - 1) % 16;
            accept(counter, hash);
            return {.lost = before};
        }
        late_.reset();
        // Behind a loss a step back is one of those packets that has been overtaken.
        if (lost > 8 && since_loss_ < 8)
        {
            late_ = counter;
            return {.usable = false};
        }
        accept(counter, hash);
        if (lost != 0) since_loss_ = 0;
        return {.lost = lost};
    }

    /** Takes a packet without payload, which repeats the counter of the one before it unless it announces another. */
    void announce(unsigned counter)
    {
        last_ = counter;
        late_.reset();
        hash_ = 0;
    }

    /** Takes a packet that is of no use, so that it does not count as lost on top. */
    void skip(unsigned counter)
    {
        if (last_ && counter == (*last_ + 1) % 16) last_ = counter;
    }

private:
    void accept(unsigned counter, std::size_t hash)
    {
        last_ = counter;
        hash_ = hash;
        late_.reset();
        ++since_loss_;
    }

    std::optional<unsigned> last_;
    std::optional<unsigned> late_;
    std::size_t hash_ = 0;
    unsigned since_loss_ = 8; // packets since the last loss
};

} // namespace softdec

#endif
