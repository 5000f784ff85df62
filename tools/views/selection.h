/**
 * @file selection.h
 * The fields that someone wants to see.
 */
#ifndef VIEWS_SELECTION_H
#define VIEWS_SELECTION_H

#include <bitset>
#include <vector>

#include "dictionary.h"

namespace views
{

/** Some fields, those of arrays for some elements. */
class Selection
{
public:
    /** Nothing. */
    Selection() : elements_(dictionary::field_count) {}

    /** Adds a field: the element that was named, or all. */
    void add(const dictionary::Found& found)
    {
        if (found.element)
            elements_[found.field->index].set(*found.element);
        else
            elements_[found.field->index].set();
    }

    /** Whether a field was added. @param element below Array::count; 0 outside arrays */
    bool has(const dictionary::Field& field, std::size_t element) const { return elements_[field.index][element]; }

private:
    static constexpr std::size_t most_elements = 64;
    std::vector<std::bitset<most_elements>> elements_; // by Field::index
};

} // namespace views

#endif
