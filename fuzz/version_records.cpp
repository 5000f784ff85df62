// The search for version records in a file. The input: two bytes, which place the rest at the start of the file or, behind
// zeros, so that it lies across one of the first two places where the search reads on; then the rest.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "open_file.h"
#include "version_record.h"

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    require(std::freopen("/dev/null", "w", stdout) != nullptr, "output can be thrown away");
    return 0;
}

namespace
{

/** A text field within a record [bytes]. */
struct Field
{
    size_t offset;
    size_t width;
};

// Revision, description, copyright, build identifier, date and time, notes.
constexpr Field fields[] = {{22, 12}, {34, 64}, {98, 32}, {130, 32}, {162, 16}, {178, 16}, {194, 80}};

/** Whether a record starts there, told without the tool's declaration of one. */
bool is_record(std::string_view bytes)
{
    constexpr std::string_view size("\x12\x01\0\0", 4);
    return bytes.size() >= 274 && bytes.starts_with(QRVERSIONINFO_SIGNATURE) && bytes.substr(16, 4) == size &&
           std::ranges::all_of(fields, [bytes](Field field)
                               { return bytes.substr(field.offset, field.width).find('\0') != std::string_view::npos; });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 2) return 0;
    const unsigned place = data[0] + 256U * data[1];
    const off_t block = 1 << 20; // what the search reads at a time
    const off_t zeros = place < 0x8000 ? 0 : block * (place < 0xc000 ? 1 : 2) - place % 0x4000;
    const std::span content(data + 2, size - 2);

    std::vector<uint64_t> expected;
    const std::string_view text(reinterpret_cast<const char*>(content.data()), content.size());
    for (size_t at = 0; at < text.size(); at++)
        if (is_record(text.substr(at))) expected.push_back(static_cast<uint64_t>(zeros) + at);

    const OpenFile file = OpenFile::regular(content, zeros);
    files::InputFile input(file.path());
    std::vector<uint64_t> found;
    const uint64_t count = commands::find_version_records(input,
                                                          [&found](const QRVERSIONINFOBLOB& record, uint64_t offset)
                                                          {
                                                              found.push_back(offset);
                                                              commands::print_version_record(record, offset);
                                                          });
    require(found == expected, "the records found are those in the file");
    require(count == found.size(), "the count is that of the records");
    return 0;
}
