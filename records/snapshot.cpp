#include "snapshot.h"

#include <algorithm>

namespace records
{

void Snapshot::put(const Component& component, std::span<const std::byte> bytes)
{
    std::ranges::copy(bytes.first(component.record_size),
                      std::as_writable_bytes(std::span(&records, 1)).begin() + static_cast<std::ptrdiff_t>(component.offset));
    present.set(component.index);
}

} // namespace records
