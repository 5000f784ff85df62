#include "negotiation.h"

#include <algorithm>
#include <cctype>
#include <optional>
#include <string>

namespace server
{

namespace
{

std::string_view trimmed(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

/** Takes the part up to a separator off a text. */
std::string_view take_part(std::string_view& text, char separator)
{
    const std::size_t end = std::min(text.find(separator), text.size());
    const std::string_view part = trimmed(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
    return part;
}

bool is_same(std::string_view one, std::string_view other)
{
    const auto same = [](unsigned char a, unsigned char b) { return std::tolower(a) == std::tolower(b); };
    return std::ranges::equal(one, other, same);
}

/** A weight in thousandths: "0.5" is 500. What is none counts as 0. */
int weight(std::string_view text)
{
    if (text.empty() || (text[0] != '0' && text[0] != '1') || (text.size() > 1 && text[1] != '.') || text.size() > 5) return 0;
    int thousandths = text[0] == '1' ? 1000 : 0;
    int unit = 100;
    for (const char digit : text.substr(std::min<std::size_t>(text.size(), 2)))
    {
        if (digit < '0' || digit > '9') return 0;
        thousandths += (digit - '0') * unit;
        unit /= 10;
    }
    return std::min(thousandths, 1000);
}

/** One element of such a header: what it names, and its parameters. */
struct Choice
{
    std::string_view name;
    std::string_view version; /**< empty = none */
    int weight = 1000;
};

Choice choice(std::string_view element)
{
    Choice choice = {.name = take_part(element, ';'), .version = {}};
    while (!element.empty())
    {
        std::string_view value = take_part(element, ';');
        const std::string_view name = take_part(value, '=');
        if (value.size() > 1 && value.front() == '"' && value.back() == '"') value = value.substr(1, value.size() - 2);
        if (is_same(name, "q")) choice.weight = weight(value);
        if (is_same(name, "version")) choice.version = value;
    }
    return choice;
}

} // namespace

views::MetricsFormat preferred_format(std::string_view accept)
{
    int openmetrics = 0;
    int prometheus = 0;
    while (!accept.empty())
    {
        const Choice one = choice(take_part(accept, ','));
        // What 0.0.1 was, 1.0.0 is; what later versions will be, nobody knows.
        if (is_same(one.name, "application/openmetrics-text") && (one.version.empty() || one.version == "1.0.0" || one.version == "0.0.1"))
            openmetrics = std::max(openmetrics, one.weight);
        if (is_same(one.name, "text/plain") || is_same(one.name, "text/*") || is_same(one.name, "*/*"))
            prometheus = std::max(prometheus, one.weight);
    }
    return openmetrics > 0 && openmetrics >= prometheus ? views::MetricsFormat::openmetrics : views::MetricsFormat::prometheus;
}

bool accepts_gzip(std::string_view accept_encoding)
{
    std::optional<int> gzip;
    int any = 0;
    while (!accept_encoding.empty())
    {
        const Choice one = choice(take_part(accept_encoding, ','));
        if (is_same(one.name, "gzip") || is_same(one.name, "x-gzip")) gzip = one.weight;
        if (one.name == "*") any = one.weight;
    }
    return gzip.value_or(any) > 0;
}

} // namespace server
