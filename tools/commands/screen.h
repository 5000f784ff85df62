/**
 * @file screen.h
 * What decstats watch shows on a terminal.
 */
#ifndef COMMANDS_SCREEN_H
#define COMMANDS_SCREEN_H

#include <array>
#include <bitset>
#include <chrono>
#include <optional>
#include <vector>

#include "commands.h"
#include "diagnosis.h"
#include "options.h"
#include "series.h"
#include "watch_lines.h"

namespace commands
{

/** What is chosen to be watched. */
struct Watched
{
    std::vector<dictionary::Found> fields;                   /**< just these; none = reports */
    std::bitset<records::component_count> components;        /**< the reports of these; none = the chain and all reports */
    STATS_LEVEL level = STATS_LEVEL_DEFAULT;                 /**< of the reports */
    std::chrono::nanoseconds step = std::chrono::seconds(1); /**< how far two looks lie apart */
};

/** The screen of one look after the other. */
class Screen
{
public:
    Screen(Watched watched, const LibraryFile& library);

    /** The lines of a look, which is the last one for the next. */
    std::vector<views::WatchLine> next(sources::Sight sight);

private:
    void append_heading(const sources::Sight& sight);
    void append_diagnosis(const records::Snapshot& now);
    void append_body(const records::Snapshot& now, const views::Comparison* comparison);
    void append(std::string text, bool has_changed) { lines_.push_back({.text = std::move(text), .has_changed = has_changed}); }

    Watched watched_;
    const LibraryFile& library_;
    diagnosis::Diagnosis diagnosis_;
    std::vector<views::WatchLine> lines_; // of the look that is being taken
    std::optional<records::Snapshot> last_;
    std::array<std::vector<views::WatchLine>, records::component_count> reports_ = {};
};

} // namespace commands

#endif
