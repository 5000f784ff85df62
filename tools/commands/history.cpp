/**
 * @file history.cpp
 * decstats history: what a capture file spans, and what happened in it.
 */
#include <limits>
#include <memory>
#include <utility>

#include "bytes.h"
#include "capture_source.h"
#include "commands.h"
#include "failure.h"
#include "number_text.h"
#include "options.h"
#include "standard_output.h"
#include "time_text.h"

namespace commands
{

namespace
{

std::string instance_text(const std::optional<records::Instance>& instance)
{
    if (!instance) return "not known";
    std::string id;
    views::append_hex(id, std::as_bytes(std::span(instance->id)));
    return id + ", started " + views::to_the_second(instance->started_at);
}

std::string span_text(std::int64_t from, std::int64_t to)
{
    const std::int64_t span = capture::difference(to, from);
    return span < 0 ? views::age_text(capture::difference(from, to)) + " back" : views::age_text(span);
}

/** What a file holds, as lines. */
class History
{
public:
    void take(const capture::Event& event)
    {
        std::visit([this](const auto& one) { take(one); }, event);
    }

    void print(const std::string& path, std::uint64_t size, std::uint64_t tail) const
    {
        std::string text;
        const auto line = [&text](std::string_view label, const std::string& value)
        { text.append(label).append(13 - label.size(), ' ').append(": ").append(value).append("\n"); };
        line("File", files::shown(path));
        line("Size", std::to_string(size) + " bytes" +
                         (snapshots_ == 0 ? "" : ", " + std::to_string((size + snapshots_ / 2) / snapshots_) + " a snapshot"));
        if (snapshots_ != 0)
        {
            line("Decoder", files::printable(decoder_));
            line("From", views::to_the_second(first_));
            line("To", views::to_the_second(latest_) + " (" + span_text(first_, latest_) + ")");
        }
        line("Snapshots", std::to_string(snapshots_));
        line("Instances", std::to_string(instances_));
        line("Restarts", std::to_string(restarts_));
        line("Gaps", std::to_string(gaps_));
        line("Damage", std::to_string(losses_));
        if (tail != 0) line("Not finished", std::to_string(tail) + " bytes at the end");
        if (!lines_.empty()) text += "\n" + lines_;
        files::print(text);
    }

private:
    void add_line(std::int64_t moment, const std::string& text)
    {
        lines_ += views::to_the_second(moment) + "  " + files::printable(text) + "\n";
    }

    void take(const records::Snapshot* snapshot)
    {
        const bool is_other = snapshots_ == 0 || snapshot->instance != instance_ || snapshot->host != host_;
        if (is_other)
        {
            instance_ = snapshot->instance;
            host_ = snapshot->host;
            decoder_ = snapshot->decoder;
            ++instances_;
            add_line(snapshot->taken_at, "instance " + instance_text(instance_) + (host_.empty() ? "" : ", " + host_));
        }
        if (snapshots_++ == 0) first_ = latest_ = snapshot->taken_at;
        last_ = snapshot->taken_at;
        latest_ = std::max(latest_, last_);
    }

    void take(const capture::Gap& gap)
    {
        ++gaps_;
        const std::string length = gap.from == 0 ? "" : " of " + span_text(gap.from, gap.to);
        add_line(gap.from == 0 ? gap.to : gap.from,
                 "gap" + length + ": " + std::string(cause_name(gap.cause)) + (gap.text.empty() ? "" : ", " + gap.text));
    }

    void take(const capture::Restart& restart)
    {
        ++restarts_;
        add_line(restart.moment, "restart of the host");
    }

    void take(const capture::Loss& loss)
    {
        ++losses_;
        const std::string span = loss.after && loss.before ? " within " + span_text(*loss.after, *loss.before) : "";
        add_line(loss.after.value_or(loss.before.value_or(0)), "damage" + span + ": " + sources::loss_text(loss));
    }

    void take(const capture::End& end) { add_line(end.moment, "end of the capture"); }

    std::string lines_;
    std::uint64_t snapshots_ = 0;
    std::uint64_t instances_ = 0;
    std::uint64_t restarts_ = 0;
    std::uint64_t gaps_ = 0;
    std::uint64_t losses_ = 0;
    std::int64_t first_ = 0;
    std::int64_t last_ = 0;
    std::int64_t latest_ = 0;
    std::string decoder_;
    std::string host_;
    std::optional<records::Instance> instance_;
};

} // namespace

void add_history(Command& command, Invocation& /*invocation*/)
{
    const auto file = std::make_shared<std::string>();
    command.value("FILE", *file, "Capture file").required();
    command.run(
        [file]
        {
            sources::Captured captured(*file);
            History history;
            while (const auto event = captured.next_event()) history.take(*event);
            history.print(*file, captured.file_size(), captured.tail());
        });
}

} // namespace commands
