/**
 * @file window.h
 * What rules look at: the records now and, if there are two moments, what has changed since the one before.
 */
#ifndef DIAGNOSIS_WINDOW_H
#define DIAGNOSIS_WINDOW_H

#include <array>
#include <atomic>
#include <bitset>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "dictionary.h"
#include "snapshot.h"

namespace diagnosis
{

/** A field that rules read, by its name in the dictionary. Looked up at its first use. Thread-safe. */
class Reading
{
public:
    explicit constexpr Reading(std::string_view name) : name_(name) {}
    Reading(const Reading&) = delete;
    Reading& operator=(const Reading&) = delete;

    std::string_view name() const { return name_; }

    /** @throws std::logic_error if the dictionary has no such field */
    const dictionary::Field& field() const;

private:
    std::string_view name_;
    mutable std::atomic<const dictionary::Field*> field_ = nullptr;
};

/** Why what has changed between two moments tells nothing. */
enum class Break : std::uint8_t
{
    none,       /**< it does tell */
    single,     /**< there is one moment only */
    instance,   /**< the host process was started again */
    stream,     /**< the stream was started again */
    gap,        /**< the moments lie too far apart */
    clock_back, /**< the system's clock was set */
};

/** Two moments of a decoder, or one. Refers to the snapshots. */
class Window
{
public:
    /**
     * @param before  the earlier moment, or NULL
     * @param now     the later moment
     * @param longest the moments may lie so far apart [s]
     */
    Window(const records::Snapshot* before, const records::Snapshot& now, double longest);

    /** Whether what has changed tells something. */
    Break broken() const { return break_; }
    bool whole() const { return break_ == Break::none; }

    /** How far the moments lie apart; 0 unless whole(). [s] */
    double seconds() const { return seconds_; }

    /** How far the two writings of a field's record lie apart; 0 unless whole(), and where they are one. [s] */
    double seconds(const Reading& reading) const;

    /** The moment. [epoch s] */
    std::int64_t now() const { return now_seconds_; }

    const records::Snapshot& snapshot() const { return now_; }

    /** Whether a field is in the snapshot and this host measures it. */
    bool measured(const Reading& reading) const;

    /** Whether the dictionary says that a field means something in these records. */
    bool applies(const Reading& reading, std::size_t element = 0) const;

    /** Whether a counter of the field's component went back, so that its differences tell nothing. */
    bool cleared(const Reading& reading) const { return cleared_[reading.field().component]; }
    bool cleared(std::size_t component) const { return cleared_[component]; }

    /** A value now; 0 where its component is absent. */
    std::int64_t value(const Reading& reading, std::size_t element = 0) const;

    /** A frame rate now. */
    double number(const Reading& reading) const;

    /** What a counter grew by; 0 unless whole(). Over all elements of an array. */
    std::int64_t grown(const Reading& reading) const;

    /** The same for one element. */
    std::int64_t grown(const Reading& reading, std::size_t element) const;

    /** Whether a value is another than before; false unless whole(). */
    bool changed(const Reading& reading, std::size_t element = 0) const;

    /** What a gauge that only grows, as an up time, grew by; nothing unless whole(). */
    std::optional<std::int64_t> difference(const Reading& reading) const;

    /** Whether an event time lies in the window. */
    bool happened(const Reading& time, std::size_t element = 0) const;

    /** How long ago an event was; nothing = never, or in the future, as after the clock was set back. [s] */
    std::optional<std::int64_t> age(const Reading& time, std::size_t element = 0) const;

    /** Notes the fields that are read from now on: for a test that rules read what they say. */
    void trace(std::vector<const Reading*>* read) const { trace_ = read; }

private:
    void find_cleared();
    std::int64_t value_of(const records::Snapshot& snapshot, const Reading& reading, std::size_t element) const;
    void note(const Reading& reading) const
    {
        if (trace_ != nullptr) trace_->push_back(&reading);
    }

    const records::Snapshot* before_;
    const records::Snapshot& now_;
    Break break_ = Break::none;
    double seconds_ = 0;
    std::int64_t now_seconds_;
    std::bitset<records::component_count> cleared_;
    mutable std::vector<const Reading*>* trace_ = nullptr;
};

} // namespace diagnosis

#endif
