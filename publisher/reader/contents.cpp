#include "contents.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <span>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include "format.h"
#include "name.h"

namespace published
{

namespace
{

using publisher::Header;
using publisher::Section;
using publisher::SectionType;
using publisher::Slot;

// Beyond these a file is not believed. They leave room for many times what is published today.
constexpr std::uint64_t largest_file = 16U << 20;
constexpr std::uint32_t largest_header = 4096;
constexpr std::uint32_t largest_entry = 256;
constexpr std::uint32_t most_sections = 1024;
constexpr std::uint32_t most_components = 64;
constexpr std::uint64_t largest_layout = 4U << 20;

bool read_at(int descriptor, std::uint64_t offset, std::span<std::byte> bytes)
{
    while (!bytes.empty())
    {
        const ssize_t count = pread(descriptor, bytes.data(), bytes.size(), static_cast<off_t>(offset));
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return false;
        bytes = bytes.subspan(static_cast<std::size_t>(count));
        offset += static_cast<std::uint64_t>(count);
    }
    return true;
}

template <std::size_t size> std::string text_of(const char (&characters)[size])
{
    return {characters, strnlen(characters, size)};
}

/** One reading of one file. */
class Reader
{
public:
    Reader(int descriptor, Contents& contents, std::string& problem) : descriptor_(descriptor), contents_(contents), problem_(problem) {}

    Verdict read()
    {
        const Verdict verdict = read_start();
        if (verdict != Verdict::good) return verdict;
        return read_header() && read_table() ? Verdict::good : Verdict::damaged;
    }

private:
    bool damaged(const std::string& problem)
    {
        problem_ = problem;
        return false;
    }

    /** Magic and version, which every version has. */
    Verdict read_start()
    {
        struct stat file = {};
        const std::span<std::byte> bytes = std::as_writable_bytes(std::span(&header_, 1));
        problem_ = "not the file of a published decoder";
        if (fstat(descriptor_, &file) != 0 || !S_ISREG(file.st_mode)) return Verdict::damaged;
        if (!read_at(descriptor_, 0, bytes.first(offsetof(Header, header_size)))) return Verdict::damaged;
        if (std::memcmp(header_.magic, publisher::magic, sizeof header_.magic) != 0) return Verdict::damaged;
        if (header_.version != publisher::format_version)
        {
            problem_ = "format version " + std::to_string(header_.version) + ", but this program reads version " +
                       std::to_string(publisher::format_version);
            return Verdict::other_version;
        }
        problem_ = "shorter than its header";
        if (!read_at(descriptor_, 0, bytes)) return Verdict::damaged;
        contents_.size = static_cast<std::size_t>(file.st_size);
        return Verdict::good;
    }

    bool read_header()
    {
        if (header_.file_size != contents_.size)
            return damaged("has " + std::to_string(contents_.size) + " bytes, but its header says " + std::to_string(header_.file_size));
        if (contents_.size > largest_file) return damaged("larger than any published decoder");
        if (header_.header_size < sizeof header_ || header_.header_size > largest_header)
            return damaged("its header has an impossible size");
        if (header_.heartbeat_interval == 0) return damaged("its heartbeats have no interval");
        contents_.decoder = text_of(header_.decoder);
        contents_.host = text_of(header_.host);
        if (!is_name(contents_.decoder)) return damaged("its decoder has no valid name");
        std::ranges::copy(header_.instance, contents_.instance.id.begin());
        contents_.instance.started_at = std::max<std::int64_t>(header_.started_at, 0);
        contents_.heartbeat_interval = std::int64_t{header_.heartbeat_interval} * 1'000'000;
        return true;
    }

    bool read_table()
    {
        if (header_.section_size < sizeof(Section) || header_.section_size > largest_entry || header_.section_count > most_sections)
            return damaged("an impossible table of sections");
        std::vector<std::byte> table(std::size_t{header_.section_count} * header_.section_size);
        if (!read_at(descriptor_, header_.header_size, table)) return damaged("its table of sections is longer than the file");

        std::vector<Section> sections(header_.section_count);
        for (std::size_t i = 0; i < sections.size(); ++i)
        {
            Section& section = sections[i];
            std::memcpy(&section, table.data() + i * header_.section_size, sizeof section);
            if (section.offset > contents_.size || section.size > contents_.size - section.offset)
                return damaged("section " + std::to_string(i) + " lies outside the file");
        }
        // Layouts first: what a record's section needs is known then, in whatever order they stand.
        for (const Section& section : sections)
            if (static_cast<SectionType>(section.type) == SectionType::layout && !take_layout(section)) return false;
        for (const Section& section : sections)
            if (!take_slot(section)) return false;
        return contents_.heartbeat_slot != 0 || damaged("no section with its heartbeats");
    }

    bool take_layout(const Section& section)
    {
        if (section.id >= most_components || section.size > largest_layout) return damaged("a layout is larger than any");
        if (component_of_[section.id] != unknown) return damaged("two layouts of one component");
        std::vector<std::byte> bytes(section.size);
        if (!read_at(descriptor_, section.offset, bytes)) return damaged("has become shorter");
        std::string problem;
        std::optional<dictionary::RecordLayout> layout = dictionary::read_layout(bytes, problem);
        if (!layout) return damaged(problem);
        if (layout->component == nullptr) return true;
        const std::size_t index = layout->component->index;
        if (contents_.records[index].layout.component != nullptr) return damaged("two layouts of one component");
        contents_.records[index].layout = std::move(*layout);
        component_of_[section.id] = index;
        return true;
    }

    bool take_slot(const Section& section)
    {
        switch (static_cast<SectionType>(section.type))
        {
        case SectionType::record:
        {
            const std::size_t component = section.id < most_components ? component_of_[section.id] : unknown;
            if (component == unknown) return true;
            Record& record = contents_.records[component];
            return take_slot(section, publisher::words_of(record.layout.record_size), record.slot);
        }
        case SectionType::heartbeat: return take_slot(section, 1, contents_.heartbeat_slot);
        case SectionType::not_measured:
            contents_.not_measured_words =
                std::min((section.size - std::min(section.size, sizeof(Slot))) / 8, dictionary::most_fields / 64);
            return take_slot(section, contents_.not_measured_words, contents_.not_measured_slot);
        default: return true;
        }
    }

    bool take_slot(const Section& section, std::size_t words, std::size_t& slot)
    {
        if (section.offset == 0 || section.offset % 8 != 0) return damaged("a section is not aligned");
        if (section.size < sizeof(Slot) + 8 * words) return damaged("a section is shorter than what it holds");
        if (slot != 0) return damaged("two sections hold the same");
        slot = section.offset;
        return true;
    }

    static constexpr std::size_t unknown = records::component_count;

    int descriptor_;
    Contents& contents_;
    std::string& problem_;
    Header header_ = {};
    std::array<std::size_t, most_components> component_of_ = []
    {
        std::array<std::size_t, most_components> none = {};
        none.fill(unknown);
        return none;
    }();
};

} // namespace

Verdict read_contents(int descriptor, Contents& contents, std::string& problem)
{
    return Reader(descriptor, contents, problem).read();
}

} // namespace published
