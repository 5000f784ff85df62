#include "chain/publication.h"

#include "chain/record_files.h"
#include "release.h"

namespace softdec
{

namespace
{

constexpr std::chrono::milliseconds interval{200};

} // namespace

Publication::Publication(const std::string& name, const std::string& directory, const Abilities& abilities)
{
    STATS_PUBLISH_ERROR error;
    publisher_.reset(
        STATS_PublishOpen(name.c_str(), directory.empty() ? nullptr : directory.c_str(), "softdec " RELEASE_VERSION, 0, &error));
    std::vector<std::string> texts;
    for (const dictionary::Field* field : fields_not_measured(abilities)) texts.emplace_back(field->full_name);
    std::vector<const char*> names;
    names.reserve(texts.size());
    for (const std::string& text : texts) names.push_back(text.c_str());
    if (!publisher_ || !STATS_PublishNotMeasured(publisher_.get(), names.data(), names.size(), &error)) throw OutputError(error.szText);
}

void Publication::offer(Chain& chain)
{
    if (std::chrono::steady_clock::now() >= due_) publish(chain);
}

void Publication::publish(Chain& chain)
{
    due_ = std::chrono::steady_clock::now() + interval;
    const records::Records& records = chain.records();
    STATS_PublishForTDemux(publisher_.get(), &records.tdemux);
    STATS_PublishForVFramer(publisher_.get(), &records.vframer);
    STATS_PublishForVideoDecoder(publisher_.get(), &records.vdecoder);
    STATS_PublishForAudioDecoder(publisher_.get(), &records.audio);
    STATS_PublishForMetadataDec(publisher_.get(), &records.metadata);
    STATS_PublishForCBuffering(publisher_.get(), &records.buffering);
    STATS_PublishForClockRecovery(publisher_.get(), &records.clock_recovery);
    STATS_PublishForDecoderUsage(publisher_.get(), &records.usage);
    STATS_PublishHeartbeat(publisher_.get());
}

} // namespace softdec
