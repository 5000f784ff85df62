/**
 * @file comparison.h
 * Two Snapshots of one decoder: what has changed, by how much, and how fast.
 */
#ifndef VIEWS_COMPARISON_H
#define VIEWS_COMPARISON_H

#include <array>
#include <bitset>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "dictionary.h"
#include "snapshot.h"

namespace views
{

/** A field, in an array that of one element. */
struct FieldPlace
{
    const dictionary::Field* field;
    std::size_t element; /**< 0 outside arrays */

    std::string name() const { return dictionary::element_name(*field, element); }
};

/** Two Snapshots. They must outlive it. */
class Comparison
{
public:
    Comparison(const records::Snapshot& old, const records::Snapshot& now);

    const records::Snapshot& old_snapshot() const { return old_; }
    const records::Snapshot& new_snapshot() const { return now_; }

    /** How much later the second one was taken, not positive where the clock was set back [ns]. */
    std::int64_t span() const { return now_.taken_at - old_.taken_at; }

    /** Whether both name their decoder, and not the same one. */
    bool is_other_decoder() const;

    /** Whether both know the run that they are of, and it is not the same: counters began anew in between. */
    bool is_restarted() const { return old_.instance && now_.instance && old_.instance != now_.instance; }

    /** The counters that have decreased within one run: all counters of their components may have begun anew in between. */
    const std::vector<FieldPlace>& fallen_counters() const { return fallen_; }

    /** Every field whose bytes differ, in components that both have: first what names something and states, then the others. */
    const std::vector<FieldPlace>& changes() const { return changes_; }

    /** Whether a field's bytes differ. Its component is in both. */
    bool has_changed(const FieldPlace& place) const;

    /** Whether a field has a value in one of the Snapshots: it applies, is measured and is not absent. */
    static bool has_value(const records::Snapshot& snapshot, const FieldPlace& place);

    /**
     * The new number less the old one, as decimal digits; of event times in seconds. Empty where the field holds none, has no
     * value in one of the Snapshots, or is a counter that began anew.
     */
    std::string difference(const FieldPlace& place) const;

    /** How fast a counter grew on average between the two writings of its record [1/s]; nothing where that cannot be told or the field is none. */
    std::optional<double> rate(const FieldPlace& place) const;

private:
    bool is_fallen(const FieldPlace& place) const;
    bool is_continued(const FieldPlace& place) const;
    bool has_same_element(const FieldPlace& place) const;

    const records::Snapshot& old_;
    const records::Snapshot& now_;
    std::vector<FieldPlace> changes_;
    std::vector<FieldPlace> fallen_;
    std::bitset<records::component_count> reset_; // components with a fallen counter
};

} // namespace views

#endif
