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

std::int64_t time_between(const Snapshot& before, const Snapshot& now, const Component& component)
{
    const std::int64_t was = before.written_at[component.index];
    const std::int64_t is = now.written_at[component.index];
    return was != 0 && is != 0 ? is - was : now.taken_at - before.taken_at;
}

} // namespace records
