#include "version_record.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "failure.h"

namespace commands
{

namespace
{

constexpr std::size_t record_size = sizeof(QRVERSIONINFOBLOB);
constexpr std::size_t buffer_size = 1 << 16; // a larger one takes as long to clear as the rest of the command

// The signature is looked for without its last character, which is compared apart: a copy of all of it in this executable
// would be found there.
constexpr std::size_t head_size = sizeof(QRVERSIONINFOBLOB::abSignature) - 1;
constexpr char last_character = QRVERSIONINFO_SIGNATURE[head_size];

consteval std::array<char, head_size> signature_head()
{
    std::array<char, head_size> head = {};
    std::copy_n(QRVERSIONINFO_SIGNATURE, head_size, head.begin());
    return head;
}
constexpr std::array<char, head_size> head_of_signature = signature_head();

template <std::size_t width> bool is_terminated(const BYTE (&text)[width])
{
    return std::find(std::begin(text), std::end(text), BYTE{0}) != std::end(text);
}

bool is_valid(const QRVERSIONINFOBLOB& record)
{
    return record.abSignature[head_size] == last_character && record.dwSize == record_size && is_terminated(record.szRevision) &&
           is_terminated(record.szDescription) && is_terminated(record.szCopyright) && is_terminated(record.szBuildIdentifier) &&
           is_terminated(record.szBuildDate) && is_terminated(record.szBuildTime) && is_terminated(record.szNotes);
}

void print_field(const char* label, const std::string& text)
{
    std::printf("%-11s: %s\n", label, text.c_str());
}

/** Prints a NUL-terminated text that may be empty. */
void print_text(const char* label, const BYTE* text)
{
    const std::string escaped = files::printable(reinterpret_cast<const char*>(text));
    print_field(label, escaped.empty() ? "None" : escaped);
}

} // namespace

std::uint64_t find_version_records(files::InputFile& file, const VersionRecordReceiver& found)
{
    const std::string_view head(head_of_signature.data(), head_of_signature.size());
    std::vector<char> buffer(buffer_size);
    std::uint64_t count = 0;
    std::uint64_t offset = 0; // of the buffer's start in the file
    std::size_t kept = 0;     // bytes at the buffer's start that the previous round has not looked at

    for (;;)
    {
        const std::size_t filled = kept + file.read(std::as_writable_bytes(std::span(buffer).subspan(kept)));
        const std::string_view content(buffer.data(), filled);

        for (std::size_t at = content.find(head); at != std::string_view::npos && at + record_size <= filled;
             at = content.find(head, at + 1))
        {
            QRVERSIONINFOBLOB record;
            std::memcpy(&record, content.data() + at, record_size);
            if (!is_valid(record)) continue;
            ++count;
            found(record, offset + at);
        }
        if (filled < buffer_size) return count;

        // A record that begins in the last bytes may go on in the next ones.
        kept = record_size - 1;
        std::copy_n(buffer.end() - static_cast<std::ptrdiff_t>(kept), kept, buffer.begin());
        offset += filled - kept;
    }
}

void print_version_record(const QRVERSIONINFOBLOB& record, std::uint64_t offset)
{
    print_text("Description", record.szDescription);
    print_field("Version", std::to_string(record.cMajor) + "." + std::to_string(record.cMinor));
    print_text("Revision", record.szRevision);
    print_text("Build", record.szBuildIdentifier);
    print_text("Date", record.szBuildDate);
    print_text("Time", record.szBuildTime);
    print_text("Copyright", record.szCopyright);
    if (record.szNotes[0] != 0) print_text("Notes", record.szNotes);
    print_field("Offset", std::to_string(offset));
}

} // namespace commands
