#include "field_tree.h"

#include <algorithm>
#include <array>

namespace views
{

namespace
{

using Trees = std::array<FieldNode, records::component_count>;

/** Adds a field below a block, with the blocks that its name goes through. */
void add(FieldNode& block, std::string_view name, const dictionary::Field& field)
{
    const std::size_t dot = name.find('.');
    if (dot == std::string_view::npos)
    {
        block.children.push_back({.name = name, .field = &field});
        return;
    }
    std::string_view own = name.substr(0, dot);
    const bool is_array = own.ends_with("[]");
    if (is_array) own.remove_suffix(2);

    auto child = std::ranges::find(block.children, own, &FieldNode::name);
    if (child == block.children.end())
    {
        block.children.push_back({.name = own, .elements = is_array ? field.array : nullptr});
        child = std::prev(block.children.end());
    }
    add(*child, name.substr(dot + 1), field);
}

Trees trees(std::string_view dictionary::Field::*path)
{
    Trees all;
    for (const records::Component& component : records::components())
    {
        all.at(component.index).name = component.key;
        for (const dictionary::Field& field : dictionary::fields(component)) add(all.at(component.index), field.*path, field);
    }
    return all;
}

} // namespace

const FieldNode& fields_by_name(const records::Component& component)
{
    static const Trees all = trees(&dictionary::Field::name);
    return all.at(component.index);
}

const FieldNode& fields_by_member(const records::Component& component)
{
    static const Trees all = trees(&dictionary::Field::member);
    return all.at(component.index);
}

} // namespace views
