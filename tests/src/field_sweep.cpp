#include "field_sweep.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cfloat>
#include <iterator>
#include <map>
#include <optional>
#include <set>
#include <sstream>

#include "capture.h"
#include "recording_services.h"

namespace
{
using NamedLines = std::map<std::string, std::string>; // text by name

constexpr std::array levels = {STATS_LEVEL_DEFAULT, STATS_LEVEL_DEBUG};

const char* LevelText(STATS_LEVEL nLevel)
{
    return nLevel == STATS_LEVEL_DEBUG ? "debug level" : "default level";
}

std::string Trimmed(const std::string& text)
{
    const size_t start = text.find_first_not_of(' ');
    return start == std::string::npos ? std::string() : text.substr(start, text.find_last_not_of(' ') + 1 - start);
}

NamedLines NameLines(const std::vector<std::string>& lines, const LineNaming& naming)
{
    NamedLines named;
    std::string block; // empty: not in one
    size_t blockIndent = 0;
    std::map<std::string, int> count;
    std::optional<int> tableRow;

    for (const std::string& line : lines)
    {
        const size_t indent = std::min(line.find_first_not_of(' '), line.size());
        const size_t colon = line.find(": "); // "4:2:0 8bit ColorType" is one label
        std::string name = Trimmed(line.substr(0, colon));

        if (tableRow)
            name = naming.tableRow + " " + std::to_string((*tableRow)++);
        else if (!naming.tableRow.empty() && line.find_first_not_of('-') == std::string::npos)
        {
            name = "rule";
            tableRow = 0;
        }
        else if (colon == std::string::npos)
        {
            block.clear();
            for (const LineNaming::Block& kind : naming.blocks)
            {
                if (line.find(kind.title) == std::string::npos) continue;
                if (!kind.numbered.empty()) name = kind.numbered + " " + std::to_string(++count[kind.numbered]);
                block = name;
                blockIndent = indent;
                break;
            }
        }
        else
        {
            if (indent <= blockIndent) block.clear();
            if (!block.empty()) name = block + "/" + name;
        }

        if (!named.emplace(name, line).second) ADD_FAILURE() << "two lines are named \"" << name << "\", the second is\n  " << line;
    }
    return named;
}

NamedLines Print(const SweptReport& report, const std::vector<unsigned char>& record, STATS_LEVEL nLevel)
{
    ClearServiceCalls();
    return NameLines(CaptureLines([&] { report.print(record.data(), nLevel); }), report.naming);
}

std::set<std::string> Changed(const NamedLines& before, const NamedLines& after)
{
    NamedLines differences;
    std::set_symmetric_difference(before.begin(), before.end(), after.begin(), after.end(), std::inserter(differences, differences.end()));
    std::set<std::string> names;
    for (const auto& [name, text] : differences) names.insert(name);
    return names;
}

std::string Text(const NamedLines& lines, const std::string& name)
{
    const auto line = lines.find(name);
    return line == lines.end() ? "(not printed)" : line->second;
}

std::string ValueText(const SweptValue& value)
{
    if (value == largest) return "largest value";
    if (value == smallest) return "smallest value";
    return std::to_string(value.number);
}

std::vector<SweptValue> ValuesOf(const FieldRow& row)
{
    std::vector<SweptValue> values = {1, largest};
    if (row.field.kind == SweptField::Kind::Signed || row.field.kind == SweptField::Kind::Float) values.push_back(smallest);
    for (const ValueLines& special : row.at)
        if (std::find(values.begin(), values.end(), special.value) == values.end()) values.push_back(special.value);
    return values;
}

void Set(std::vector<unsigned char>& record, const SweptField& field, const SweptValue& value)
{
    unsigned char* bytes = record.data() + field.offset;
    if (field.kind == SweptField::Kind::Text)
    {
        // The last character stays NUL: what a report makes of a text without one is another test's matter.
        std::memset(bytes, 0, field.size);
        if (value == largest)
            std::memset(bytes, 'Z', field.size - 1);
        else if (value.number != 0)
            bytes[0] = 'A';
        return;
    }
    if (field.kind == SweptField::Kind::Float)
    {
        const float number = value == largest ? FLT_MAX : value == smallest ? -FLT_MAX : static_cast<float>(value.number);
        std::memcpy(bytes, &number, sizeof number);
        return;
    }

    const size_t bits = 8 * field.size;
    const unsigned long all = ~0ul >> (64 - bits);
    const unsigned long sign = 1ul << (bits - 1);
    unsigned long number = static_cast<unsigned long>(value.number);
    if (value == largest) number = field.kind == SweptField::Kind::Signed ? all ^ sign : all;
    if (value == smallest) number = sign;
    std::memcpy(bytes, &number, field.size); // little-endian: the low bytes come first
}

template <typename Lines> LineNames ExpectedAt(const Lines& lines, STATS_LEVEL nLevel)
{
    return AllLines({lines.lines, nLevel == STATS_LEVEL_DEBUG ? lines.debugLines : lines.operatorLines});
}

std::set<std::string> NamedBy(const FieldRows& rows, STATS_LEVEL nLevel)
{
    std::set<std::string> names;
    for (const FieldRow& row : rows)
    {
        if (row.field.kind == SweptField::Kind::Unswept) continue;
        for (const std::string& name : ExpectedAt(row, nLevel)) names.insert(name);
        for (const ValueLines& special : row.at)
            for (const std::string& name : ExpectedAt(special, nLevel)) names.insert(name);
    }
    return names;
}

// Lines that appear and lines that read otherwise are both changes: this tells them apart.
void CheckBaseLines(const NamedLines& printed, const SweepTable& table, STATS_LEVEL nLevel)
{
    const std::string what = table.name + ", " + LevelText(nLevel) + ": ";
    const LineNames hidden =
        AllLines({table.hiddenLines, nLevel == STATS_LEVEL_DEBUG ? table.hiddenDebugLines : table.hiddenOperatorLines});
    const std::set<std::string> named = NamedBy(table.rows, nLevel);
    for (const std::string& name : named)
    {
        const bool isHidden = std::find(hidden.begin(), hidden.end(), name) != hidden.end();
        if (printed.contains(name) && isHidden)
            ADD_FAILURE() << what << "the line \"" << name << "\" should be hidden\n  " << Text(printed, name);
        if (!printed.contains(name) && !isHidden) ADD_FAILURE() << what << "the line \"" << name << "\" should be printed";
    }
    for (const std::string& name : hidden)
        if (!named.contains(name)) ADD_FAILURE() << what << "no row names the hidden line \"" << name << '"';
}

LineNames Expected(const FieldRow& row, const SweptValue& value, STATS_LEVEL nLevel)
{
    for (const ValueLines& special : row.at)
        if (special.value == value) return ExpectedAt(special, nLevel);
    return ExpectedAt(row, nLevel);
}

void Silence(FieldRow& row)
{
    row.lines = row.operatorLines = row.debugLines = {};
    for (ValueLines& special : row.at) special.lines = special.operatorLines = special.debugLines = {};
}

void CompareLines(const NamedLines& before, const NamedLines& after, const LineNames& expectedNames, const std::string& what)
{
    const std::set<std::string> expected(expectedNames.begin(), expectedNames.end());
    if (expected.size() != expectedNames.size()) ADD_FAILURE() << what << ": the row names a line twice";

    const std::set<std::string> changed = Changed(before, after);
    if (changed == expected) return;

    std::ostringstream message;
    message << what << '\n';
    for (const std::string& name : changed)
        if (!expected.contains(name))
            message << "  unexpected change of \"" << name << "\"\n    from " << Text(before, name) << "\n    to   " << Text(after, name)
                    << '\n';
    for (const std::string& name : expected)
        if (!changed.contains(name)) message << "  missing change of \"" << name << "\"\n    stays " << Text(after, name) << '\n';
    ADD_FAILURE() << message.str();
}
} // namespace

void SweepFields(const SweptReport& report, const SweepTable& table)
{
    std::map<STATS_LEVEL, NamedLines> before;
    for (const STATS_LEVEL nLevel : levels)
    {
        before[nLevel] = Print(report, table.base, nLevel);
        CheckBaseLines(before[nLevel], table, nLevel);
    }

    std::set<std::string> names;
    for (const FieldRow& row : table.rows)
    {
        if (!names.insert(row.field.name).second) ADD_FAILURE() << table.name << ": two rows for " << row.field.name;
        if (row.field.kind == SweptField::Kind::Unswept) continue;

        for (const SweptValue& value : ValuesOf(row))
        {
            std::vector<unsigned char> record = table.base;
            Set(record, row.field, value);
            if (record == table.base) continue; // the value that the base record holds
            for (const STATS_LEVEL nLevel : levels)
                CompareLines(before[nLevel], Print(report, record, nLevel), Expected(row, value, nLevel),
                             table.name + ": " + row.field.name + " = " + ValueText(value) + ", " + LevelText(nLevel));
        }
    }
}

void CheckEveryByteHasARow(const SweptReport& report, const SweepTable& table)
{
    std::vector<bool> covered = report.padding;
    ASSERT_EQ(covered.size(), table.base.size());
    std::map<size_t, std::string> nameAt; // by the end of the field
    for (const FieldRow& row : table.rows)
    {
        ASSERT_LE(row.field.offset + row.field.size, covered.size()) << row.field.name;
        for (size_t i = 0; i < row.field.size; i++) covered[row.field.offset + i] = true;
        nameAt[row.field.offset + row.field.size] = row.field.name;
    }

    for (size_t start = 0; start < covered.size(); start++)
    {
        if (covered[start]) continue;
        size_t end = start;
        while (end < covered.size() && !covered[end]) end++;
        // A compiler that does not tell its padding may have put some before the next aligned field.
        const bool mayBePadding = report.alignment != 0 && end % report.alignment == 0 && end - start < report.alignment;
        if (!mayBePadding)
            ADD_FAILURE() << table.name << ": no row for the bytes " << start << " to " << end - 1 << " of the record, behind "
                          << nameAt[start];
        start = end;
    }
}

void CheckEveryLineIsNamed(const SweptReport& report, const std::vector<SweepTable>& tables)
{
    std::set<std::string> printed;
    for (const STATS_LEVEL nLevel : levels)
    {
        std::set<std::string> named(report.constantLines.begin(), report.constantLines.end());
        for (const SweepTable& table : tables) named.merge(NamedBy(table.rows, nLevel));
        for (const SweepTable& table : tables)
        {
            for (const auto& [name, text] : Print(report, table.base, nLevel))
            {
                printed.insert(name);
                if (!named.contains(name))
                    ADD_FAILURE() << table.name << ", " << LevelText(nLevel) << ": no row names \"" << name << "\"\n  " << text;
            }
        }
    }
    for (const std::string& name : report.constantLines) EXPECT_TRUE(printed.contains(name)) << "no constant line is named " << name;
}

LineNames AllLines(const std::vector<LineNames>& lists)
{
    LineNames all;
    for (const LineNames& list : lists) all.insert(all.end(), list.begin(), list.end());
    return all;
}

FieldRows AllRows(const std::vector<FieldRows>& lists)
{
    FieldRows all;
    for (const FieldRows& list : lists) all.insert(all.end(), list.begin(), list.end());
    return all;
}

LineNames Without(const LineNames& lines, const LineNames& excluded)
{
    LineNames rest;
    for (const std::string& line : lines)
        if (std::find(excluded.begin(), excluded.end(), line) == excluded.end()) rest.push_back(line);
    EXPECT_EQ(rest.size() + excluded.size(), lines.size()) << "a line that was not there is left out";
    return rest;
}

LineNames In(const std::string& block, const LineNames& lines)
{
    if (block.empty()) return lines;
    LineNames names;
    for (const std::string& line : lines) names.push_back(line == block_title ? block : block + "/" + line);
    return names;
}

FieldRows Override(FieldRows rows, const FieldRows& replacements)
{
    for (const FieldRow& replacement : replacements)
    {
        const auto row = std::find_if(rows.begin(), rows.end(), [&](const FieldRow& r) { return r.field.name == replacement.field.name; });
        if (row == rows.end())
            ADD_FAILURE() << "no row for " << replacement.field.name << " to replace";
        else
            *row = replacement;
    }
    return rows;
}

FieldRows Uncounted(FieldRows rows)
{
    for (FieldRow& row : rows)
        if (row.ifCounted) Silence(row);
    return rows;
}

FieldRows Silent(FieldRows rows)
{
    for (FieldRow& row : rows) Silence(row);
    return rows;
}

FieldRows DebugOnly(FieldRows rows)
{
    const auto hide = [](auto& lines)
    {
        lines.debugLines = ExpectedAt(lines, STATS_LEVEL_DEBUG);
        lines.lines = lines.operatorLines = {};
    };
    for (FieldRow& row : rows)
    {
        hide(row);
        for (ValueLines& special : row.at) hide(special);
    }
    return rows;
}

FieldRows Unswept(FieldRows rows, const std::string& prefix)
{
    size_t count = 0;
    for (FieldRow& row : rows)
    {
        if (!row.field.name.starts_with(prefix)) continue;
        row.field.kind = SweptField::Kind::Unswept;
        count++;
    }
    EXPECT_GT(count, 0u) << "no field begins with " << prefix;
    return rows;
}

FieldRows Mounted(const FieldRows& rows, const std::string& place, size_t offset, const std::string& block)
{
    return Mounted(rows, place, offset, block, block);
}

FieldRows Mounted(const FieldRows& rows, const std::string& place, size_t offset, const std::string& operatorBlock,
                  const std::string& debugBlock)
{
    const auto mount = [&](auto& lines)
    {
        lines.operatorLines = In(operatorBlock, ExpectedAt(lines, STATS_LEVEL_DEFAULT));
        lines.debugLines = In(debugBlock, ExpectedAt(lines, STATS_LEVEL_DEBUG));
        lines.lines = {};
    };
    FieldRows mounted = rows;
    for (FieldRow& row : mounted)
    {
        row.field.name = place + "." + row.field.name;
        row.field.offset += offset;
        mount(row);
        for (ValueLines& special : row.at) mount(special);
    }
    return mounted;
}
