#include "manual.h"

#include <algorithm>
#include <cctype>

namespace views
{

extern const std::string_view reports_page; // man/decstats-reports.5, in the language of mdoc(7)

namespace
{

/** Text without the escapes of roff. */
std::string unescaped(std::string_view text)
{
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i)
    {
        if (text[i] != '\\')
            plain += text[i];
        else if (text.substr(i).starts_with("\\&"))
            ++i;
        else if (text.substr(i).starts_with("\\(aq"))
        {
            plain += '\'';
            i += 3;
        }
    }
    return plain;
}

/** The words of a macro's line; those in quotes are one. */
std::vector<std::string> words_of(std::string_view line)
{
    std::vector<std::string> words;
    while (!line.empty())
    {
        const char end = line.front() == '"' ? '"' : ' ';
        if (end == '"') line.remove_prefix(1);
        const std::size_t size = std::min(line.find(end), line.size());
        if (size > 0 || end == '"') words.push_back(unescaped(line.substr(0, size)));
        line.remove_prefix(std::min(size + 1, line.size()));
    }
    return words;
}

std::string joined(const std::vector<std::string>& words, std::size_t from = 0)
{
    std::string text;
    for (std::size_t i = from; i < words.size(); ++i) text += (i > from ? " " : "") + words[i];
    return text;
}

bool is_punctuation(const std::string& word)
{
    return word == "." || word == "," || word == ":" || word == ";";
}

/** A macro within a sentence, as it reads: its words in the quotes or brackets that it stands for. */
std::string sentence_part(std::vector<std::string> words)
{
    if (words.size() > 2 && words[0] == "Pq" && words[1] == "Va") words.erase(words.begin() + 1);
    std::vector<std::string> inner(words.begin() + 1, words.end());
    if (const auto bracket = std::ranges::find(inner, "Pq"); bracket != inner.end())
    {
        const std::string behind = sentence_part({bracket, inner.end()});
        return sentence_part({words.begin(), words.begin() + 1 + (bracket - inner.begin())}) + " " + behind;
    }
    std::string behind;
    for (; !inner.empty() && is_punctuation(inner.back()); inner.pop_back()) behind.insert(0, inner.back());
    const std::string text = joined(inner);
    if (words.front() == "Ql") return "'" + text + "'" + behind;
    if (words.front() == "Sx") return "\"" + text + "\" in decstats-reports(5)" + behind;
    if (words.front() == "Pq") return "(" + text + ")" + behind;
    if (words.front() == "Fl") return "-" + text + behind;
    if (words.front() == "Xr" && inner.size() == 2) return inner[0] + "(" + inner[1] + ")" + behind;
    return text + behind;
}

/** Reads the page line by line. */
class Reader
{
public:
    std::vector<ManualEntry> entries;

    void read(std::string_view line)
    {
        if (line == ".Ed") verbatim_ = false;
        if (verbatim_) return add("\n  " + unescaped(line));
        if (!line.starts_with('.')) return add_words(unescaped(line));
        const std::vector<std::string> words = words_of(line.substr(1));
        const std::string& macro = words.front();
        if (macro == "Sh" || macro == "Ss")
            heading(macro, joined(words, 1));
        else if (macro == "It" && words.size() > 2 && words[1] == "Sy" && component_ != nullptr)
            start_entry(words);
        else if (macro == "It")
            add("\n" + sentence_part({words.begin() + 1, words.end()}) + ": ");
        else if (macro == "Bl")
            ++lists_;
        else if (macro == "El")
            end_list();
        else if (macro == "Bd")
            verbatim_ = true;
        else if (macro == "Ed" || macro == "Pp")
            add("\n");
        else if (macro == "Em" && words.size() > 1 && words[1] == "Action")
            add("\n" + sentence_part(words));
        else
            add_words(sentence_part(words));
    }

private:
    void heading(const std::string& macro, const std::string& title)
    {
        is_open_ = false;
        if (macro == "Ss")
        {
            section_ = title;
            if (is_advice_) start_entry(title, "");
            return;
        }
        section_.clear();
        is_advice_ = title == "ADVICE";
        const auto is_of = [&title](const records::Component& component)
        {
            std::string capitals(component.title);
            std::ranges::transform(capitals, capitals.begin(), [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
            return capitals.starts_with(title);
        };
        const auto found = std::ranges::find_if(records::components(), is_of);
        component_ = found == records::components().end() ? nullptr : &*found;
    }

    /** It Sy "LABEL" Bq APPEARANCE */
    void start_entry(const std::vector<std::string>& words)
    {
        const auto bracket = std::ranges::find(words, "Bq");
        const auto behind = static_cast<std::size_t>(bracket - words.begin()) + 1;
        start_entry(joined({words.begin() + 2, bracket}), behind < words.size() ? joined(words, behind) : "");
    }

    void start_entry(const std::string& label, const std::string& appearance)
    {
        is_open_ = true;
        entry_lists_ = lists_;
        entries.push_back({component_, section_, label, appearance, ""});
    }

    void end_list()
    {
        if (is_open_ && lists_ == entry_lists_) is_open_ = false;
        --lists_;
        add("\n");
    }

    void add(const std::string& text)
    {
        if (is_open_) entries.back().text += text;
    }

    void add_words(const std::string& text)
    {
        if (!is_open_) return;
        std::string& sofar = entries.back().text;
        if (!sofar.empty() && sofar.back() != '\n' && sofar.back() != ' ') sofar += ' ';
        sofar += text;
    }

    const records::Component* component_ = nullptr;
    std::string section_;
    bool is_advice_ = false;
    int lists_ = 0;
    int entry_lists_ = 0; // depth of the list that the entry stands in
    bool is_open_ = false;
    bool verbatim_ = false;
};

std::vector<ManualEntry> entries()
{
    Reader reader;
    for (std::string_view rest = reports_page; !rest.empty();)
    {
        const std::size_t size = std::min(rest.find('\n'), rest.size());
        reader.read(rest.substr(0, size));
        rest.remove_prefix(std::min(size + 1, rest.size()));
    }
    // Entries of the same meaning share the text of the last.
    for (std::size_t i = reader.entries.size(); i-- > 1;)
        if (reader.entries[i - 1].text.empty()) reader.entries[i - 1].text = reader.entries[i].text;
    return std::move(reader.entries);
}

} // namespace

const std::vector<ManualEntry>& manual_entries()
{
    static const std::vector<ManualEntry> all = entries();
    return all;
}

} // namespace views
