// Records the calls of the C library by which the reports print, and writes them as straight-line C++ sources. Their texts and
// numbers stand in a second source, so that no compiler folds them into the formats.
//
//     record_calls REPLAYS.cpp ARGUMENTS.cpp

#include <unistd.h>

#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "all_reports.h"
#include "replays.h"

namespace
{

[[noreturn]] void fail(const std::string& message)
{
    dprintf(STDERR_FILENO, "record_calls: %s\n", message.c_str());
    exit(1);
}

std::string quoted(const std::string& text)
{
    return "R\"~(" + text + ")~\"";
}

/** Different entries in the order in which they came up, as an array of the second source. */
class Table
{
public:
    Table(std::string type, std::string name) : type_(std::move(type)), name_(std::move(name)) {}

    /** An expression for the entry. */
    std::string element(const std::string& entry)
    {
        const auto [at, is_new] = indices_.try_emplace(entry, entries_.size());
        if (is_new) entries_.push_back(entry);
        return "recorded::" + name_ + "[" + std::to_string(at->second) + "]";
    }
    std::string declaration() const { return type_ + " " + name_ + "[]"; }
    const std::vector<std::string>& entries() const { return entries_; }

private:
    std::string type_;
    std::string name_;
    std::map<std::string, size_t> indices_;
    std::vector<std::string> entries_;
};

Table texts("const char*", "text");
Table numbers("long", "number");
Table reals("double", "real");

// The calls of the report that is being recorded.
std::string calls;

/** The next argument of a conversion, as an expression. */
std::string read_argument(const std::smatch& conversion, va_list* arguments)
{
    const std::string precision = conversion[1];
    const bool is_long = conversion[2] == "l";
    const char type = conversion[3].str()[0];
    if (type == 'f')
    {
        std::ostringstream literal;
        literal << std::hexfloat << va_arg(*arguments, double);
        return reals.element(literal.str());
    }
    if (type == 's')
    {
        const char* text = va_arg(*arguments, const char*);
        return texts.element(quoted(precision.empty() ? text : std::string(text, strnlen(text, std::stoul(precision)))));
    }
    const long number = is_long ? va_arg(*arguments, long) : va_arg(*arguments, int);
    const char* sign = type == 'c' || type == 'd' ? "" : "unsigned ";
    return std::string("static_cast<") + sign + (is_long ? "long" : "int") + ">(" + numbers.element(std::to_string(number)) + ")";
}

void record_printf(const std::string& format, va_list* argument_list)
{
    static const std::regex pattern("%(?:%|[-0]?[0-9]*(?:\\.([0-9]+))?(l?)([cdfsuxX]))");
    std::string arguments;
    for (std::sregex_iterator match(format.begin(), format.end(), pattern); match != std::sregex_iterator(); ++match)
        if (match->str() != "%%") arguments += ", " + read_argument(*match, argument_list);
    if (std::regex_replace(format, pattern, "").find('%') != std::string::npos) fail("unknown conversion in: " + format);
    calls += "    fprintf(stdout, " + quoted(format) + arguments + ");\n";
}

} // namespace

// These take the places of the C library's functions for the report library, which is built hardened, and whose calls of fprintf
// the compiler writes as fwrite where nothing is converted. stats_bench fails if a call goes another way.

extern "C" int __fprintf_chk(FILE*, int, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    record_printf(format, &arguments);
    va_end(arguments);
    return 0;
}

extern "C" size_t fwrite(const void* data, size_t size, size_t count, FILE*)
{
    const std::string text(static_cast<const char*>(data), size * count);
    calls += "    fwrite(" + quoted(text) + ", 1, " + std::to_string(text.size()) + ", stdout);\n";
    return count;
}

namespace
{

void write_replays(std::ostream& out)
{
    std::ostringstream functions;
    std::ostringstream table;
    int index = 0;
    for (const char* sample : measured_samples)
    {
        const records::Snapshot snapshot = sources::sample(sample, frozen_moment);
        for (const auto& [level_name, level] : measured_levels)
            for (const records::Component& component : records::components())
            {
                calls.clear();
                print_report(component, snapshot.record(component).data(), level);
                functions << "\n// " << component.name << ", " << sample << ", " << level_name << "\nstatic void replay" << index
                          << "()\n{\n"
                          << calls << "}\n";
                table << "    replay" << index++ << ",\n";
            }
    }
    out << "// Written by record_calls.\n#include \"replays.h\"\n\n#include <cstdio>\n\nnamespace recorded\n{\n";
    for (const Table* t : {&texts, &numbers, &reals}) out << "extern " << t->declaration() << ";\n";
    out << "}\n" << functions.str() << "\nvoid (*const replays[])() = {\n" << table.str() << "};\n";
}

void write_arguments(std::ostream& out)
{
    out << "// Written by record_calls.\nnamespace recorded\n{\n";
    for (const Table* t : {&texts, &numbers, &reals})
    {
        out << t->declaration() << " = {\n";
        for (const std::string& entry : t->entries()) out << "    " << entry << ",\n";
        out << "};\n";
    }
    out << "}\n";
}

} // namespace

int main(int argument_count, char** arguments)
{
    if (argument_count != 3) fail("usage: record_calls REPLAYS.cpp ARGUMENTS.cpp");
    std::ofstream replays_file(arguments[1]);
    write_replays(replays_file);
    std::ofstream arguments_file(arguments[2]);
    write_arguments(arguments_file);
    if (!replays_file.flush() || !arguments_file.flush()) fail("cannot write the sources");
    return 0;
}
