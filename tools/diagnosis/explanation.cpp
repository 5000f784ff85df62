#include "explanation.h"

#include <algorithm>

namespace diagnosis
{

namespace
{

constexpr std::size_t line_length = 100;

std::string_view severity_title(Severity severity)
{
    constexpr std::string_view titles[] = {"Critical", "Warning", "Note"};
    return titles[static_cast<std::size_t>(severity)];
}

void append_entry(std::string& text, std::string_view label, std::string_view content)
{
    constexpr std::size_t indent = 12;
    std::string start = std::string(label) + ":";
    start.resize(indent, ' ');
    text += start + wrapped(content, indent, indent) + "\n";
}

std::string names(const Rule& rule)
{
    std::string all;
    for (const Reading* reading : rule.reads) all += (all.empty() ? "" : ", ") + std::string(reading->name());
    return all;
}

/** mdoc wants each sentence on a line of its own. */
std::string sentences(std::string_view text)
{
    std::string lines;
    for (std::size_t i = 0; i < text.size(); ++i)
    {
        const bool ends = text[i] == ' ' && i > 0 && text[i - 1] == '.';
        lines += ends ? '\n' : text[i];
    }
    return lines + "\n";
}

} // namespace

std::string wrapped(std::string_view text, std::size_t first, std::size_t indent)
{
    std::string lines;
    std::size_t column = first;
    for (std::size_t at = 0; at < text.size();)
    {
        const std::size_t end = std::min(text.find(' ', at), text.size());
        const std::string_view word = text.substr(at, end - at);
        if (at > 0)
        {
            const bool fits = column + 1 + word.size() <= line_length;
            lines += fits ? " " : "\n" + std::string(indent, ' ');
            column = fits ? column + 1 : indent;
        }
        lines += word;
        column += word.size();
        at = end + 1;
    }
    return lines;
}

std::string explanation(const Rule& rule)
{
    std::string text(rule.id);
    text += "\n" + std::string(rule.title) + ".\n\n";
    append_entry(text, "Severity", severity_title(rule.severity));
    append_entry(text, "Stage", stage_title(rule.stage));
    append_entry(text, "Found when", rule.when);
    append_entry(text, "Why so", rule.reason);
    append_entry(text, "Do", rule.remedy);
    append_entry(text, "Looks at", names(rule));
    return text;
}

std::string manual_section(const Rule& rule)
{
    std::string text = ".Ss " + std::string(rule.id) + "\n" + std::string(rule.title) + ".\n";
    text += ".Bl -tag -width \"Found when\" -compact\n";
    const auto entry = [&](std::string_view label, std::string_view content)
    { text += ".It " + std::string(label) + "\n" + sentences(content); };
    entry("Severity", severity_title(rule.severity));
    entry("Found when", rule.when);
    entry("Why so", rule.reason);
    entry("\\&Do", rule.remedy); // there is a macro of that name
    text += ".It Looks at\n";
    for (const Reading* reading : rule.reads)
        text += ".Li " + std::string(reading->name()) + (reading == rule.reads.back() ? "\n" : " ,\n");
    return text + ".El\n";
}

} // namespace diagnosis
