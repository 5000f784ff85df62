// The reading of a record file. The input: a byte whose low bits name the component and whose high bit makes the file a pipe,
// then the file's bytes.
#include <algorithm>
#include <cstdint>

#include "failure.h"
#include "open_file.h"
#include "record_files.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size == 0) return 0;
    const records::Component& component = records::components()[data[0] % records::component_count];
    const std::span content(data + 1, size - 1);
    const OpenFile file = data[0] & 0x80 ? OpenFile::pipe(content) : OpenFile::regular(content);
    try
    {
        const records::Snapshot snapshot = sources::record_file(&component, file.path(), {});
        require(content.size() == component.record_size, "what was read has the record's size");
        require(std::ranges::equal(snapshot.record(component), std::as_bytes(content)), "the record is the file's bytes");
    }
    catch (const files::Failure& failure)
    {
        require(content.size() != component.record_size, "what was not read has another size");
        require(failure.status() == files::ExitStatus::input_failed, "the failure is one of the input");
    }
    return 0;
}
