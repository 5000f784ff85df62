// Records the calls of the C library by which the reports print, and writes them as straight-line C++ sources: once as they
// were, once through {fmt} and once through iostreams. Their texts and numbers stand in a second source, so that no compiler
// folds them into the formats.
//
//     record_calls REPLAYS.cpp ARGUMENTS.cpp

#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <regex>
#include <sstream>
#include <string>
#include <unistd.h>
#include <vector>

#include "replays.h"

namespace
{

[[noreturn]] void Fail(const std::string& message)
{
    dprintf(STDERR_FILENO, "record_calls: %s\n", message.c_str());
    exit(1);
}

/** A C string literal. */
std::string Quoted(const std::string& text)
{
    std::string literal = "\"";
    for (const char c : text)
    {
        if (c == '\n')
            literal += "\\n";
        else if (c == '\t')
            literal += "\\t";
        else if (c == '"' || c == '\\')
            literal += std::string("\\") + c;
        else if (c >= ' ' && c <= '~')
            literal += c;
        else
            Fail("not a character of a report in: " + text);
    }
    return literal + "\"";
}

std::string WithBracesDoubled(const std::string& text)
{
    return std::regex_replace(text, std::regex("[{}]"), "$&$&");
}

/** Different entries in the order in which they came up. */
class Table
{
public:
    std::string IndexOf(const std::string& entry)
    {
        const auto [at, isNew] = indices_.try_emplace(entry, entries_.size());
        if (isNew) entries_.push_back(entry);
        return std::to_string(at->second);
    }
    const std::vector<std::string>& Entries() const { return entries_; }

private:
    std::map<std::string, size_t> indices_;
    std::vector<std::string> entries_;
};

// The arguments: literals of texts, integers and floating-point numbers.
Table texts;
Table numbers;
Table reals;

// What stands once for all the calls that share it.
Table fmt_formats; // literals
Table inserters;   // parameters and body of a function that inserts into a stream what a format prints

// The calls of the report that is being recorded.
std::string floor_calls;
std::string fmt_calls;
std::string iostreams_calls;

std::string TextArgument(const std::string& text)
{
    return "recorded::text[" + texts.IndexOf(Quoted(text)) + "]";
}

/** A conversion of a printf format: flag, width, precision, length and type. */
struct Conversion
{
    explicit Conversion(const std::smatch& match)
        : left(match[1] == "-"), zeros(match[1] == "0"), width(match[2]), precision(match[3]), isLong(match[4] == "l"),
          type(match[5].str()[0])
    {
        if (!strchr("duxX", type) || precision.empty()) return;
        // The digits that a precision asks for are zeros in a field of that width, unless the width is greater.
        if (!width.empty() && std::stoi(width) > std::stoi(precision)) Fail("width greater than precision: " + match.str());
        zeros = true;
        width = precision;
        precision.clear();
    }

    std::string CppType() const
    {
        if (type == 'c') return "char";
        if (type == 'f') return "double";
        if (type == 's') return "const char*";
        return (type == 'd' ? "" : "unsigned ") + std::string(isLong ? "long" : "int");
    }

    bool left;
    bool zeros;
    std::string width;
    std::string precision;
    bool isLong;
    char type;
};

/** The next argument as an expression. */
std::string ReadArgument(const Conversion& c, va_list* arguments)
{
    if (c.type == 'f')
    {
        std::ostringstream literal;
        literal << std::hexfloat << va_arg(*arguments, double);
        return "recorded::real[" + reals.IndexOf(literal.str()) + "]";
    }
    if (c.type == 's')
    {
        const char* text = va_arg(*arguments, const char*);
        return TextArgument(c.precision.empty() ? text : std::string(text, strnlen(text, std::stoul(c.precision))));
    }
    const long number = c.isLong ? va_arg(*arguments, long) : va_arg(*arguments, int);
    return "static_cast<" + c.CppType() + ">(recorded::number[" + numbers.IndexOf(std::to_string(number)) + "])";
}

/** The replacement field of {fmt}. */
std::string FmtField(const Conversion& c)
{
    std::string field = "{:";
    if (c.zeros)
        field += '0';
    else if (!c.width.empty())
        field += c.left ? '<' : '>';
    field += c.width;
    if (!c.precision.empty()) field += "." + c.precision;
    if (strchr("fxX", c.type)) field += c.type;
    return field == "{:" ? "{}" : field + "}";
}

/** The insertions into a stream. They leave it as they find it, but for what the next number sets anew. */
std::string Insertions(const Conversion& c, const std::string& parameter)
{
    std::string text;
    if (c.type == 'f') text += " << std::fixed << std::setprecision(" + c.precision + ")";
    if (c.type == 'x') text += " << std::hex";
    if (c.type == 'X') text += " << std::hex << std::uppercase";
    if (c.zeros) text += " << std::setfill('0')";
    if (!c.width.empty()) text += std::string(c.left ? " << std::left" : " << std::right") + " << std::setw(" + c.width + ")";
    text += " << " + parameter;
    if (c.zeros) text += " << std::setfill(' ')";
    if (c.type == 'X') text += " << std::nouppercase";
    if (c.type == 'x' || c.type == 'X') text += " << std::dec";
    return text;
}

void RecordCall(const std::string& call, const std::string& fmtFormat, const std::string& inserter, const std::string& arguments)
{
    floor_calls += "    " + call + ";\n";
    fmt_calls += "    fmt::print(stdout, format" + fmt_formats.IndexOf(Quoted(fmtFormat)) + arguments + ");\n";
    iostreams_calls += "    Insert" + inserters.IndexOf(inserter) + "(stream" + arguments + ");\n";
}

std::string Inserter(const std::string& parameters, const std::string& insertions)
{
    return "(std::ostream& stream" + parameters + ")\n{\n    stream" + insertions + ";\n}\n";
}

void RecordPrintf(const std::string& format, va_list* argumentList)
{
    static const std::regex conversion_pattern("%([-0]?)([0-9]*)(?:\\.([0-9]+))?(l?)([cdfsuxX])");
    std::string arguments;
    std::string fmtFormat;
    std::string parameters;
    std::string insertions;
    const auto addLiteral = [&](const std::string& text)
    {
        const std::string literal = std::regex_replace(text, std::regex("%%"), "%");
        if (std::regex_replace(text, std::regex("%%"), "").find('%') != std::string::npos) Fail("unknown conversion in: " + format);
        fmtFormat += WithBracesDoubled(literal);
        if (!literal.empty()) insertions += " << " + Quoted(literal);
    };

    std::string rest = format;
    for (std::smatch match; std::regex_search(rest, match, conversion_pattern); rest = match.suffix())
    {
        const Conversion conversion(match);
        const std::string parameter = "a" + std::to_string(match.position() + static_cast<long>(format.size() - rest.size()));
        addLiteral(match.prefix());
        arguments += ", " + ReadArgument(conversion, argumentList);
        fmtFormat += FmtField(conversion);
        parameters += ", " + conversion.CppType() + " " + parameter;
        insertions += Insertions(conversion, parameter);
    }
    addLiteral(rest);
    RecordCall("fprintf(stdout, " + Quoted(format) + arguments + ")", fmtFormat, Inserter(parameters, insertions), arguments);
}

} // namespace

// These take the places of the C library's functions for the report library. The compiler writes some calls of fprintf as
// fwrite or fputs, and a hardened build calls __fprintf_chk.

extern "C" int fprintf(FILE*, const char* pFormat, ...)
{
    va_list arguments;
    va_start(arguments, pFormat);
    RecordPrintf(pFormat, &arguments);
    va_end(arguments);
    return 0;
}

extern "C" int __fprintf_chk(FILE*, int, const char* pFormat, ...)
{
    va_list arguments;
    va_start(arguments, pFormat);
    RecordPrintf(pFormat, &arguments);
    va_end(arguments);
    return 0;
}

extern "C" size_t fwrite(const void* pData, size_t nSize, size_t nItems, FILE*)
{
    const std::string text(static_cast<const char*>(pData), nSize * nItems);
    RecordCall("fwrite(" + Quoted(text) + ", 1, " + std::to_string(text.size()) + ", stdout)", WithBracesDoubled(text),
               Inserter("", " << " + Quoted(text)), "");
    return nItems;
}

extern "C" int fputs(const char* pText, FILE*)
{
    const std::string argument = TextArgument(pText);
    RecordCall("fputs(" + argument + ", stdout)", "{}", Inserter(", const char* text", " << text"), ", " + argument);
    return 1;
}

namespace
{

/** Writes the functions of all reports to functions, and the table of them to table. */
void RecordReports(std::ostream& functions, std::ostream& table)
{
    int index = 0;
    for (const char* sample : measured_samples)
    {
        const records::Snapshot snapshot = sources::sample(sample, frozen_moment);
        for (const auto& [levelName, level] : measured_levels)
        {
            for (const records::Component& component : records::components())
            {
                floor_calls = fmt_calls = iostreams_calls = {};
                print_report(component, snapshot.record(component).data(), level);
                functions << "// " << component.name << ", " << sample << ", " << levelName << "\n"
                          << "static void Floor" << index << "()\n{\n"
                          << floor_calls << "}\n\n"
                          << "static void Fmt" << index << "()\n{\n"
                          << fmt_calls << "}\n\n"
                          << "static void Iostreams" << index << "([[maybe_unused]] std::ostream& stream)\n{\n"
                          << iostreams_calls << "}\n\n";
                table << "    {Floor" << index << ", Fmt" << index << ", Iostreams" << index << "},\n";
                ++index;
            }
        }
    }
}

void WriteReplays(std::ostream& out)
{
    std::ostringstream functions;
    std::ostringstream table;
    RecordReports(functions, table);

    out << "// Written by record_calls.\n#include <cstdio>\n#include <iomanip>\n#include <fmt/compile.h>\n#include \"replays.h\"\n\n"
           "namespace recorded\n{\nextern const char* text[];\nextern long number[];\nextern double real[];\n}\n\n";
    int index = 0;
    for (const std::string& format : fmt_formats.Entries())
        out << "static constexpr auto format" << index++ << " = FMT_COMPILE(" << format << ");\n";
    index = 0;
    for (const std::string& inserter : inserters.Entries()) out << "\n[[gnu::noinline]] static void Insert" << index++ << inserter;
    out << "\n" << functions.str() << "const Replay replays[] = {\n" << table.str() << "};\n";
}

void WriteTable(std::ostream& out, const char* declaration, const Table& table)
{
    out << declaration << " = {\n";
    for (const std::string& entry : table.Entries()) out << "    " << entry << ",\n";
    out << "};\n";
}

void WriteArguments(std::ostream& out)
{
    out << "// Written by record_calls.\nnamespace recorded\n{\n";
    WriteTable(out, "const char* text[]", texts);
    WriteTable(out, "long number[]", numbers);
    WriteTable(out, "double real[]", reals);
    out << "}\n";
}

} // namespace

int main(int argumentCount, char** arguments)
{
    if (argumentCount != 3) Fail("usage: record_calls REPLAYS.cpp ARGUMENTS.cpp");
    std::ofstream replaysFile(arguments[1]);
    WriteReplays(replaysFile);
    std::ofstream argumentsFile(arguments[2]);
    WriteArguments(argumentsFile);
    if (!replaysFile.flush() || !argumentsFile.flush()) Fail("cannot write the sources");
    return 0;
}
