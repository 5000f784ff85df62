// The reading of a record file. The input: a byte whose low bits name the component and whose high bit makes the file a pipe,
// then the file's bytes.
#include <algorithm>
#include <cstdint>

#include "components.h"
#include "failure.h"
#include "open_file.h"
#include "record_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size == 0) return 0;
    const Component& component = components()[data[0] % components().size()];
    const std::span content(data + 1, size - 1);
    const OpenFile file = data[0] & 0x80 ? OpenFile::pipe(content) : OpenFile::regular(content);
    try
    {
        const std::vector<std::byte> record = read_record(component, file.path());
        require(content.size() == component.recordSize, "what was read has the record's size");
        require(std::ranges::equal(record, std::as_bytes(content)), "the record is the file's bytes");
    }
    catch (const Failure& failure)
    {
        require(content.size() != component.recordSize, "what was not read has another size");
        require(failure.status() == ExitStatus::InputFailed, "the failure is one of the input");
    }
    return 0;
}
