/**
 * @file support.h
 * What the tests of publishing share: the records of a sample, publishing all of them, processes that end, changed files.
 */
#ifndef SUPPORT_H
#define SUPPORT_H

#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <functional>
#include <stdexcept>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

#include "component.h"
#include "samples.h"
#include "stats_publish.h"

/** The moment of every sample here. */
inline constexpr std::time_t sample_moment = 1'800'000'000;

/** The records of a sample in the order in which they are published. */
inline records::Records sample_records(const char* name)
{
    SAMPLES_RECORDS sample;
    samples_find(name)->pFill(&sample, sample_moment);
    return {.tdemux = sample.tTDemux,
            .vframer = sample.tVFramer,
            .vdecoder = sample.tVideoDecoder,
            .audio = sample.tAudio,
            .metadata = sample.tMetadata,
            .buffering = sample.tBuffering,
            .clock_recovery = sample.tClockRecovery,
            .usage = sample.tUsage};
}

inline void publish_all(STATS_PUBLISHER* publisher, const records::Records& records)
{
    STATS_PublishForTDemux(publisher, &records.tdemux);
    STATS_PublishForVFramer(publisher, &records.vframer);
    STATS_PublishForVideoDecoder(publisher, &records.vdecoder);
    STATS_PublishForAudioDecoder(publisher, &records.audio);
    STATS_PublishForMetadataDec(publisher, &records.metadata);
    STATS_PublishForCBuffering(publisher, &records.buffering);
    STATS_PublishForClockRecovery(publisher, &records.clock_recovery);
    STATS_PublishForDecoderUsage(publisher, &records.usage);
}

/** A publisher that closes itself, and throws where it cannot be opened. */
class Publisher
{
public:
    Publisher(const std::string& directory, const std::string& name, const char* host = nullptr)
    {
        STATS_PUBLISH_ERROR error;
        publisher_ = STATS_PublishOpen(name.c_str(), directory.c_str(), host, 0, &error);
        if (publisher_ == nullptr) throw std::runtime_error(error.szText);
    }
    ~Publisher() { STATS_PublishClose(publisher_); }
    Publisher(const Publisher&) = delete;
    Publisher& operator=(const Publisher&) = delete;

    STATS_PUBLISHER* get() const { return publisher_; }

private:
    STATS_PUBLISHER* publisher_ = nullptr;
};

/** Starts a process. It ends without running anything of this one's at its end. */
inline pid_t start(const std::function<void()>& run)
{
    const pid_t process = fork();
    if (process < 0) throw std::runtime_error("fork");
    if (process > 0) return process;
    try
    {
        run();
    }
    catch (...)
    {
        _exit(99);
    }
    _exit(0);
}

/** @return its exit status; 128 and the signal's number if a signal ended it */
inline int wait_for(pid_t process)
{
    int status = 0;
    if (waitpid(process, &status, 0) != process) throw std::runtime_error("waitpid");
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

/** Runs something in a process of its own. */
inline int in_process(const std::function<void()>& run)
{
    return wait_for(start(run));
}

/** Overwrites a word of a file. */
inline void overwrite(const std::string& path, std::size_t offset, std::uint64_t word)
{
    const int file = open(path.c_str(), O_WRONLY | O_CLOEXEC);
    const bool written = file >= 0 && pwrite(file, &word, sizeof word, static_cast<off_t>(offset)) == sizeof word;
    if (file >= 0) close(file);
    if (!written) throw std::runtime_error("cannot write " + path);
}

/** How much a test does: a number from the environment for long runs, or a small one. */
inline std::uint64_t amount(const char* variable, std::uint64_t usual)
{
    const char* text = std::getenv(variable);
    return text == nullptr ? usual : std::strtoull(text, nullptr, 10);
}

#endif
