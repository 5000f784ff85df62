#include "decoders.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <utility>

#include "bounds.h"
#include "capture_source.h"
#include "failure.h"
#include "list.h"

namespace server
{

namespace
{

using std::chrono::steady_clock;

} // namespace

Decoders::Decoders(Watched watched) : watched_(std::move(watched))
{
    for (const std::string& source : watched_.sources) add_source(source);
}

void Decoders::add_source(const std::string& source)
{
    const std::filesystem::path path(source);
    if (source.ends_with(published::suffix) && published::is_name(path.stem().string())) return add_live(path.stem().string(), source);
    std::error_code ignored;
    if (sources::is_capture(source))
    {
        std::unique_ptr<Origin> origin = captured_origin(source);
        const std::string name = origin->look().listed.name;
        return add(name, std::move(origin));
    }
    if (std::filesystem::exists(source, ignored) || !published::is_name(source))
        files::fail_input(files::shown(source) + ": is neither a decoder's name nor a capture file, and nothing else is served");
    add_live(source, published::path_of(watched_.directory, source));
}

void Decoders::add(const std::string& name, std::unique_ptr<Origin> origin)
{
    auto decoder = std::make_shared<WatchedDecoder>(std::move(origin));
    const std::scoped_lock lock(mutex_);
    if (!decoders_.try_emplace(name, std::move(decoder)).second) files::fail_input("two sources are of the decoder " + files::shown(name));
}

void Decoders::add_live(const std::string& name, const std::string& path)
{
    const std::string capture = watched_.captures.empty() ? std::string() : watched_.captures + "/" + name + ".dcap";
    add(name, live_origin(name, path, capture));
}

void Decoders::find_new()
{
    std::optional<published::Status> problem;
    const std::vector<std::string> names = published::names(watched_.directory, problem);
    for (const std::string& name : names)
        if (!find(name)) add_live(name, published::path_of(watched_.directory, name));
    const std::scoped_lock lock(mutex_);
    problem_ = problem ? problem->text : std::string();
}

void Decoders::look()
{
    if (watched_.sources.empty()) find_new();
    const auto decoders = all();
    for (const auto& decoder : decoders) decoder->look(history_bytes / decoders.size());
    if (!watched_.sources.empty()) return; // those that were named may come back at any time
    const auto is_forgotten = [now = steady_clock::now()](const auto& entry)
    {
        const auto gone = entry.second->gone_since();
        return gone && now - *gone > history_length;
    };
    const std::scoped_lock lock(mutex_);
    std::erase_if(decoders_, is_forgotten);
}

std::shared_ptr<WatchedDecoder> Decoders::find(std::string_view name) const
{
    const std::scoped_lock lock(mutex_);
    const auto found = decoders_.find(name);
    return found == decoders_.end() ? nullptr : found->second;
}

std::vector<std::shared_ptr<WatchedDecoder>> Decoders::all() const
{
    const std::scoped_lock lock(mutex_);
    std::vector<std::shared_ptr<WatchedDecoder>> all;
    for (const auto& [name, decoder] : decoders_) all.push_back(decoder);
    return all;
}

std::string Decoders::problem() const
{
    const std::scoped_lock lock(mutex_);
    return problem_;
}

} // namespace server
