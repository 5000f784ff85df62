/**
 * @file slot.h
 * A sequence lock: how a slot is written by one thread while any number of other processes read it. Writing never waits, and
 * a reader knows whether what it has copied is whole. docs/publisher-format.md argues why this order of memory accesses does.
 */
#ifndef PUBLISHER_SLOT_H
#define PUBLISHER_SLOT_H

#include <cstring>

#include "format.h"

namespace publisher
{

inline Word* words(Slot& slot)
{
    return reinterpret_cast<Word*>(&slot + 1);
}

inline const Word* words(const Slot& slot)
{
    return reinterpret_cast<const Word*>(&slot + 1);
}

/** Up to 8 bytes as a word. */
template <std::size_t bytes = 8> std::uint64_t word_at(const unsigned char* from)
{
    std::uint64_t word = 0;
    std::memcpy(&word, from, bytes);
    return word;
}

/** Makes the sequence odd before anything else changes. @return it */
inline std::uint64_t begin_writing(Slot& slot, std::uint64_t moment)
{
    const std::uint64_t writing = slot.sequence.load(std::memory_order_relaxed) | 1;
    slot.sequence.store(writing, std::memory_order_relaxed);
    std::atomic_thread_fence(std::memory_order_release);
    slot.moment.store(moment, std::memory_order_relaxed);
    return writing;
}

/**
 * Writes a slot. One thread at a time.
 * @tparam size   bytes of the content; what they leave of the last word is 0
 * @param moment  when it is written [ns since the epoch, UTC]
 * @param content of any alignment; nothing behind it is read
 */
template <std::size_t size> void write_slot(Slot& slot, std::uint64_t moment, const void* content)
{
    const auto* from = static_cast<const unsigned char*>(content);
    Word* to = words(slot);
    const std::uint64_t writing = begin_writing(slot, moment);
    constexpr std::size_t whole = size / 8;
    constexpr std::size_t eights = whole / 8 * 8;
    const auto move = [to, from](std::size_t i) { to[i].store(word_at(from + 8 * i), std::memory_order_relaxed); };
    for (std::size_t i = 0; i < eights; i += 8) // written out: a compiler leaves a loop over atomic words as it is
    {
        move(i);
        move(i + 1);
        move(i + 2);
        move(i + 3);
        move(i + 4);
        move(i + 5);
        move(i + 6);
        move(i + 7);
    }
    for (std::size_t i = eights; i < whole; ++i) move(i);
    if constexpr (size % 8 != 0) to[whole].store(word_at<size % 8>(from + 8 * whole), std::memory_order_relaxed);

    slot.sequence.store(writing + 1, std::memory_order_release);
}

/** The same where the size is not known to the compiler. @param count words of the content */
inline void write_words(Slot& slot, std::uint64_t moment, const std::uint64_t* content, std::size_t count)
{
    const std::uint64_t writing = begin_writing(slot, moment);
    for (std::size_t i = 0; i < count; ++i) words(slot)[i].store(content[i], std::memory_order_relaxed);
    slot.sequence.store(writing + 1, std::memory_order_release);
}

/** What one attempt to read a slot has found. */
enum class Attempt
{
    whole,   /**< the copy is what one writing has written */
    empty,   /**< nothing has been written yet */
    changing /**< it was being written: the copy is worth nothing */
};

/**
 * Tries once to read a slot.
 * @param moment when it was written [ns since the epoch, UTC]
 * @param to     the words of its content, from the first one
 * @param count  of them
 */
inline Attempt read_slot(const Slot& slot, std::uint64_t& moment, std::uint64_t* to, std::size_t count)
{
    const std::uint64_t before = slot.sequence.load(std::memory_order_acquire);
    if (before == 0) return Attempt::empty;
    if (before % 2 != 0) return Attempt::changing;

    moment = slot.moment.load(std::memory_order_relaxed);
    const Word* from = words(slot);
    const std::size_t fours = count / 4 * 4;
    for (std::size_t i = 0; i < fours; i += 4)
    {
        const std::uint64_t a = from[i].load(std::memory_order_relaxed);
        const std::uint64_t b = from[i + 1].load(std::memory_order_relaxed);
        const std::uint64_t c = from[i + 2].load(std::memory_order_relaxed);
        const std::uint64_t d = from[i + 3].load(std::memory_order_relaxed);
        to[i] = a;
        to[i + 1] = b;
        to[i + 2] = c;
        to[i + 3] = d;
    }
    for (std::size_t i = fours; i < count; ++i) to[i] = from[i].load(std::memory_order_relaxed);

    std::atomic_thread_fence(std::memory_order_acquire);
    return slot.sequence.load(std::memory_order_relaxed) == before ? Attempt::whole : Attempt::changing;
}

} // namespace publisher

#endif
