#include "capture_reader.h"

#include <algorithm>
#include <utility>

#include "capture_error.h"
#include "own_layouts.h"

namespace capture
{

namespace
{

std::optional<records::Instance> get_instance(Input& in)
{
    const bool is_known = in.get<std::uint8_t>() != 0;
    const auto id = in.get<std::array<std::uint8_t, 16>>();
    const auto started_at = in.get<std::int64_t>();
    return is_known ? std::optional(records::Instance{.id = id, .started_at = started_at}) : std::nullopt;
}

/** A layout of this program, for a file that has lost its own. */
std::optional<std::vector<std::byte>> own_layout(std::uint32_t id)
{
    const auto found = std::ranges::find(own_layouts(), id, &OwnLayout::id);
    return found == own_layouts().end() ? std::nullopt : std::optional(found->bytes);
}

} // namespace

std::string_view cause_name(GapCause cause)
{
    switch (cause)
    {
    case GapCause::stopped: return "stopped";
    case GapCause::cut_off: return "cut off";
    case GapCause::no_source: return "no source";
    case GapCause::no_space: return "no space";
    case GapCause::clock_changed: return "clock changed";
    case GapCause::late: return "late";
    case GapCause::damaged: return "damaged";
    }
    return "unknown cause";
}

Reader::Reader(const std::string& path) : frames_(path), decoder_([this](std::uint32_t id) { return find_layout(id); })
{
    switch (frames_.start())
    {
    case Start::none: throw Error(Problem::unreadable, path, frames_.file_size() == 0 ? "empty" : "not a capture file");
    case Start::other_version: throw Error(Problem::unreadable, path, "a capture file of a version that this program does not read");
    case Start::damaged: note_loss(0, std::min<std::uint64_t>(sizeof(FileHeader), frames_.file_size()), 0); break;
    case Start::good: break;
    }
    first_frame_ = indexed_ = frames_.offset();
}

bool Reader::is_capture(const std::string& path)
try
{
    return FrameReader(path).start() != Start::none;
}
catch (const Error&)
{
    return false;
}

void Reader::seek(std::uint64_t offset)
{
    frames_.seek(offset);
    decoder_.forget();
    loss_.reset();
    holds_snapshot_ = false;
    last_moment_.reset();
    tail_ = 0;
}

void Reader::rewind()
{
    seek(first_frame_);
    from_ = std::numeric_limits<std::int64_t>::min();
    to_ = std::numeric_limits<std::int64_t>::max();
    stop_ = std::numeric_limits<std::uint64_t>::max();
}

void Reader::update_index()
{
    const std::uint64_t offset = frames_.offset();
    frames_.seek(indexed_);
    for (FrameReader::Part part = frames_.next(FrameReader::Check::index); part.kind != FrameReader::Part::Kind::end;
         part = frames_.next(FrameReader::Check::index))
    {
        if (part.kind != FrameReader::Part::Kind::frame) continue;
        if (part.type == FrameType::layout) layouts_.try_emplace(crc_of(part.payload), part.offset);
        if (part.type != FrameType::whole) continue;
        if (const auto moment = SnapshotDecoder::moment_of(part.payload)) index_.push_back({part.offset, *moment});
    }
    indexed_ = frames_.offset();
    frames_.seek(offset);
}

std::optional<std::vector<std::byte>> Reader::layout_at(std::uint64_t offset, std::uint32_t id)
{
    const std::uint64_t present = frames_.offset();
    frames_.seek(offset);
    const FrameReader::Part part = frames_.next();
    frames_.seek(present);
    if (part.kind != FrameReader::Part::Kind::frame || part.type != FrameType::layout || crc_of(part.payload) != id) return std::nullopt;
    return std::vector(part.payload.begin(), part.payload.end());
}

std::optional<std::vector<std::byte>> Reader::find_layout(std::uint32_t id)
{
    if (const auto seen = layouts_.find(id); seen != layouts_.end()) return layout_at(seen->second, id);
    if (auto own = own_layout(id)) return own;
    update_index(); // it may stand further behind once more
    const auto seen = layouts_.find(id);
    return seen == layouts_.end() ? std::nullopt : layout_at(seen->second, id);
}

/** Notes bytes and snapshots that are lost. What follows upon each other is one loss. */
void Reader::note_loss(std::uint64_t offset, std::uint64_t bytes, std::uint64_t snapshots)
{
    if (!loss_)
    {
        loss_.emplace();
        loss_->offset = offset;
        loss_->after = last_moment_;
    }
    loss_->bytes += bytes;
    loss_->snapshots += snapshots;
}

Event Reader::give_snapshot()
{
    holds_snapshot_ = false;
    last_moment_ = decoder_.snapshot().taken_at;
    return &decoder_.snapshot();
}

std::optional<Event> Reader::take_snapshot(const FrameReader::Part& part)
{
    using Outcome = SnapshotDecoder::Outcome;
    // Its bytes are copied where a layout may have to be found for it, which reads on in the file.
    const bool is_whole = part.type == FrameType::whole;
    const Outcome outcome = is_whole ? decoder_.whole(std::vector(part.payload.begin(), part.payload.end()), part.crc)
                                     : decoder_.change(part.payload, part.crc);
    if (outcome != Outcome::good)
    {
        note_loss(part.offset, outcome == Outcome::no_base ? 0 : part.size, 1);
        return std::nullopt;
    }
    const std::int64_t moment = decoder_.snapshot().taken_at;
    if (loss_)
    {
        loss_->before = moment;
        holds_snapshot_ = true;
        return *std::exchange(loss_, std::nullopt);
    }
    return give_snapshot();
}

std::span<const std::byte> Reader::frame()
{
    const std::uint64_t offset = frames_.offset();
    frames_.seek(frame_);
    const FrameReader::Part part = frames_.next();
    frames_.seek(offset);
    return part.bytes;
}

std::optional<Event> Reader::take(const FrameReader::Part& part)
{
    frame_ = part.offset;
    Input in(part.payload);
    switch (part.type)
    {
    case FrameType::layout: layouts_.try_emplace(crc_of(part.payload), part.offset); return std::nullopt;
    case FrameType::whole:
    case FrameType::change: return take_snapshot(part);
    case FrameType::restart:
    {
        Restart restart = {.moment = in.get<std::int64_t>(), .before = get_instance(in), .after = get_instance(in)};
        if (in.ok()) return restart;
        break;
    }
    case FrameType::gap:
    {
        Gap gap = {.cause = in.get<GapCause>(), .from = in.get<std::int64_t>(), .to = in.get<std::int64_t>(), .text = in.get_text()};
        if (in.ok()) return gap;
        break;
    }
    case FrameType::end:
    {
        const End end = {.moment = in.get<std::int64_t>()};
        if (in.ok()) return end;
        break;
    }
    default: return std::nullopt;
    }
    note_loss(part.offset, part.size, 0);
    return std::nullopt;
}

std::optional<Event> Reader::next()
{
    const auto is_selected = [this](std::int64_t moment) { return moment >= from_ && moment <= to_; };
    if (holds_snapshot_)
    {
        const Event event = give_snapshot();
        if (is_selected(*last_moment_)) return event;
    }
    while (frames_.offset() < stop_)
    {
        const FrameReader::Part part = frames_.next();
        if (part.kind == FrameReader::Part::Kind::end)
        {
            tail_ = part.size;
            break;
        }
        if (part.kind == FrameReader::Part::Kind::lost)
            note_loss(part.offset, part.size, part.type == FrameType::whole || part.type == FrameType::change ? 1 : 0);
        else if (std::optional<Event> event = take(part))
        {
            const bool is_snapshot = std::holds_alternative<const records::Snapshot*>(*event);
            if (!is_snapshot || is_selected(*last_moment_)) return event;
        }
    }
    if (loss_) return *std::exchange(loss_, std::nullopt);
    return std::nullopt;
}

void Reader::select(std::int64_t from, std::int64_t to)
{
    rewind();
    update_index();
    const auto first = std::ranges::find_if(index_, [from](const Whole& whole) { return whole.moment >= from; });
    if (first != index_.begin()) seek(std::prev(first)->offset);
    const auto is_within = [to](const Whole& whole) { return whole.moment <= to; };
    const auto behind = std::find_if(index_.rbegin(), index_.rend(), is_within).base();
    if (behind != index_.end()) stop_ = behind->offset;
    from_ = from;
    to_ = to;
}

/** The whole snapshot to start from: the last one whose time includes the moment, or else the one closest before it. */
std::size_t Reader::whole_for(std::int64_t moment) const
{
    std::size_t best = index_.size();
    for (std::size_t i = index_.size(); i-- > 0;)
    {
        const std::int64_t begin = index_[i].moment;
        if (begin > moment) continue;
        const bool has_next = i + 1 < index_.size() && index_[i + 1].moment >= begin;
        const std::int64_t age = difference(moment, begin); // less than 0 where it is more than 64 bits
        const bool is_included = has_next ? moment < index_[i + 1].moment : age >= 0 && age < whole_every;
        if (is_included) return i;
        if (best == index_.size() || begin > index_[best].moment) best = i;
    }
    return best;
}

std::optional<Reader::Found> Reader::last_before(std::size_t whole, std::int64_t moment)
{
    rewind();
    seek(index_[whole].offset);
    if (whole + 1 < index_.size()) stop_ = index_[whole + 1].offset;
    std::optional<Found> found;
    while (const std::optional<Event> event = next())
    {
        if (const auto* snapshot = std::get_if<const records::Snapshot*>(&*event))
        {
            if ((*snapshot)->taken_at > moment) break;
            found = Found{.snapshot = **snapshot, .loss = std::nullopt};
        }
        else if (const auto* loss = std::get_if<Loss>(&*event); loss != nullptr && found)
            found->loss = *loss;
    }
    return found;
}

std::optional<Reader::Found> Reader::at(std::int64_t moment)
{
    update_index();
    for (std::size_t whole = whole_for(moment); whole < index_.size(); --whole) // to the one before, where one cannot be decoded
        if (auto found = last_before(whole, moment)) return found;
    return std::nullopt;
}

std::optional<Reader::Found> Reader::last()
{
    update_index();
    for (std::size_t whole = index_.size(); whole-- > 0;)
        if (auto found = last_before(whole, std::numeric_limits<std::int64_t>::max())) return found;
    return std::nullopt;
}

Reader::Remainder Reader::remainder()
{
    rewind();
    update_index();
    if (!index_.empty()) seek(index_.back().offset);
    Remainder remainder;
    while (const std::optional<Event> event = next())
    {
        remainder.is_ended = std::holds_alternative<End>(*event);
        if (const auto* snapshot = std::get_if<const records::Snapshot*>(&*event)) remainder.snapshot = **snapshot;
    }
    remainder.end = frames_.offset();
    remainder.tail = tail_;
    for (const auto& [id, offset] : layouts_) remainder.layouts.push_back(id);
    return remainder;
}

} // namespace capture
