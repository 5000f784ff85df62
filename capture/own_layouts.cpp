#include "own_layouts.h"

#include <string>

#include "frames.h"

namespace capture
{

const std::array<OwnLayout, records::component_count>& own_layouts()
{
    static const std::array<OwnLayout, records::component_count> all = []
    {
        std::array<OwnLayout, records::component_count> layouts;
        for (const records::Component& component : records::components())
        {
            OwnLayout& own = layouts.at(component.index);
            std::string problem;
            own.bytes = dictionary::layout_section(component);
            own.id = crc_of(own.bytes);
            own.layout = dictionary::read_layout(own.bytes, problem).value();
        }
        return layouts;
    }();
    return all;
}

} // namespace capture
