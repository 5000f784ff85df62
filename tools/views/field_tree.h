/**
 * @file field_tree.h
 * The fields of a component nested as their names are: what JSON objects are made of.
 */
#ifndef VIEWS_FIELD_TREE_H
#define VIEWS_FIELD_TREE_H

#include <string_view>
#include <vector>

#include "dictionary.h"

namespace views
{

/** A field, or a block of them. */
struct FieldNode
{
    std::string_view name = {};                  /**< the part of the name that is its own, without [] */
    const dictionary::Field* field = nullptr;    /**< NULL for a block */
    const dictionary::Array* elements = nullptr; /**< the array that it is; NULL for a single block and for a field */
    std::vector<FieldNode> children = {};        /**< of a block, in the order of the record */
};

/** Nested as the public names are: srt, within it rtt. @return the children are the component's own fields and blocks */
const FieldNode& fields_by_name(const records::Component& component);

/** Nested as the C record is: Xport, within it SRT, within it iRTT. */
const FieldNode& fields_by_member(const records::Component& component);

} // namespace views

#endif
