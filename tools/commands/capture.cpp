/**
 * @file capture.cpp
 * decstats capture: the records of a decoder, again and again, into a file.
 */
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <unistd.h>
#include <utility>

#include "capture_error.h"
#include "capture_files.h"
#include "capture_source.h"
#include "clocks.h"
#include "commands.h"
#include "failure.h"
#include "options.h"
#include "series.h"
#include "signals.h"

namespace commands
{

namespace
{

using capture::GapCause;
using std::chrono::nanoseconds;

struct Options
{
    sources::Source source;
    std::string file;
    nanoseconds every = std::chrono::seconds(1);
    nanoseconds lasts = nanoseconds::max();
    std::string rotation;
    sources::Range range;
};

/** What goes into the file, and what is told of it on standard error. */
class Capture
{
public:
    explicit Capture(const Options& options)
        : path_(options.file), files_(options.file, options.rotation.empty() ? Rotation{} : *parse_rotation(options.rotation))
    {
    }

    /** Appends a snapshot. While there is no space they are lost, and the capture goes on. */
    void append(const records::Snapshot& snapshot)
    {
        try
        {
            files_.append(snapshot);
            ++captured_;
            is_full_ = false;
            show_progress();
        }
        catch (const capture::Error& error)
        {
            if (error.problem() != capture::Problem::full) throw;
            ++lost_;
            if (!std::exchange(is_full_, true)) tell(std::string(error.what()) + "; snapshots are lost until there is space");
        }
    }

    void mark_gap(GapCause cause, const std::string& text) { files_.mark_gap(cause, text); }

    /** Tells what has happened, once as long as it stays so. */
    void tell_state(const std::string& text)
    {
        if (std::exchange(state_, text) != text && !text.empty()) tell(text);
    }

    void finish()
    {
        if (is_terminal_ && captured_ != 0) std::fputc('\n', stderr);
        files_.finish();
        if (lost_ == 0) return;
        throw files::Failure(files::ExitStatus::output_failed, files::shown(path_) + ": " + std::to_string(lost_) +
                                                                   (lost_ == 1 ? " snapshot" : " snapshots") + " could not be written");
    }

private:
    void tell(const std::string& text)
    {
        if (is_terminal_ && captured_ != 0) std::fputc('\n', stderr);
        files::warn(text);
    }

    void show_progress() const
    {
        if (!is_terminal_) return;
        std::fprintf(stderr, "\r%llu %s, %.1f KiB ", static_cast<unsigned long long>(captured_), captured_ == 1 ? "snapshot" : "snapshots",
                     static_cast<double>(files_.size()) / 1024);
        std::fflush(stderr);
    }

    std::string path_;
    CaptureFiles files_;
    std::uint64_t captured_ = 0;
    std::uint64_t lost_ = 0;
    bool is_full_ = false;
    bool is_terminal_ = isatty(STDERR_FILENO) != 0;
    std::string state_;
};

/** Appends what there is now, or tells why there is nothing. */
void append_look(sources::Series& series, Capture& capture)
{
    const std::optional<sources::Sight> sight = series.next({});
    if (!sight) return;
    capture.tell_state(sight->problem);
    if (sight->snapshot && sight->snapshot->is_up.value_or(true)) return capture.append(*sight->snapshot);
    capture.mark_gap(GapCause::no_source, sight->state);
}

void capture_looks(const Options& options, Capture& capture)
{
    using std::chrono::steady_clock;
    const auto series = sources::open_series(options.source);
    const Signals signals({SIGINT, SIGTERM, SIGHUP});
    Clocks clocks;
    const steady_clock::time_point begin = steady_clock::now();
    steady_clock::time_point due = begin;
    while (true)
    {
        const auto [set, passed] = clocks.step();
        const nanoseconds much = std::max<nanoseconds>(2 * options.every, std::chrono::seconds(1));
        if (std::chrono::abs(set) > much)
            capture.mark_gap(GapCause::clock_changed, "by " + std::to_string(std::chrono::round<std::chrono::seconds>(set).count()) + " s");
        else if (passed > much)
            capture.mark_gap(GapCause::late, "");
        append_look(*series, capture);

        due += options.every;
        if (due < steady_clock::now()) due = steady_clock::now(); // what has been missed is not made up for
        if (due - begin > options.lasts) return;
        if (signals.wait(due - steady_clock::now())) return;
    }
}

/** Copies what another capture has. */
void capture_captured(const Options& options, Capture& capture)
{
    sources::Captured captured(options.source.text, options.range);
    bool is_behind_first = false;
    while (const auto event = captured.next_event())
    {
        if (const auto* snapshot = std::get_if<const records::Snapshot*>(&*event))
        {
            capture.append(**snapshot);
            is_behind_first = true;
        }
        if (!is_behind_first) continue;
        if (const auto* gap = std::get_if<capture::Gap>(&*event)) capture.mark_gap(gap->cause, gap->text);
        if (const auto* loss = std::get_if<capture::Loss>(&*event))
        {
            files::warn(files::shown(options.source.text) + ": " + sources::loss_text(*loss));
            capture.mark_gap(GapCause::damaged, "");
        }
    }
}

void run(const Options& options, bool has_times)
{
    const bool is_captured = sources::is_captured(options.source);
    if (is_captured && has_times) files::fail_input("--every and --for are for sources that live; a capture file has moments of its own");
    if (!is_captured && options.range.is_given()) files::fail_input("--from and --to are for a SOURCE that is a capture file");
    Capture capture(options);
    if (is_captured)
        capture_captured(options, capture);
    else
        capture_looks(options, capture);
    capture.finish();
}

} // namespace

void add_capture(Command& command, Invocation& /*invocation*/)
{
    const auto options = std::make_shared<Options>();
    add_source(command, options->source);
    command.value("FILE", options->file, "The capture file; a single word is this");
    const Option every = add_duration(command, "--every", options->every, std::chrono::milliseconds(1), "How often: 1s without it");
    const Option lasts = add_duration(command, "--for", options->lasts, {}, "How long; without it, until a signal ends it");
    const auto problem = [](const std::string& value)
    { return parse_rotation(value) ? std::string() : "'" + value + "' is neither 'day' nor a size as 64M"; };
    command.value("--rotate", options->rotation, "Begin a new file each day, or when one has a size as 64M")
        .check(problem)
        .value_name("WHEN");
    add_range(command, options->range);
    command.run(
        [options, every, lasts]
        {
            if (options->file.empty()) std::swap(options->file, options->source.text);
            if (options->file.empty()) files::fail_input("FILE is required; see 'decstats capture --help'");
            try
            {
                run(*options, every.is_given() || lasts.is_given());
            }
            catch (const capture::Error& error)
            {
                throw sources::failure_of(error);
            }
        });
}

} // namespace commands
