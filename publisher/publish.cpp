// The exported functions.

#include "stats_publish.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <pthread.h>
#include <sys/mman.h>
#include <sys/random.h>
#include <unistd.h>

#include "error.h"
#include "file.h"
#include "image.h"
#include "slot.h"

using namespace publisher;

namespace
{

/** What a STATS_PUBLISHER* points to. Another name, because hosts are to know no type of it. */
struct Publisher
{
    Publisher* next = nullptr;
    std::atomic<unsigned>* live = nullptr; /**< in a page that the kernel clears in the child of a fork */
    File file;
    Slot* records[component_count] = {};
    Slot* heartbeat = nullptr;
    Slot* not_measured = nullptr;
};

// ---- Fork ----

pthread_mutex_t publishers_lock = PTHREAD_MUTEX_INITIALIZER;
Publisher* publishers = nullptr;
pthread_once_t fork_once = PTHREAD_ONCE_INIT;
int fork_error = 0;

void lock_publishers()
{
    pthread_mutex_lock(&publishers_lock);
}

void unlock_publishers()
{
    pthread_mutex_unlock(&publishers_lock);
}

/** Lets go of the descriptors, so that the parent's locks end with the parent. */
void leave_to_parent()
{
    for (Publisher* publisher = publishers; publisher != nullptr; publisher = publisher->next)
    {
        publisher->live->store(0, std::memory_order_relaxed); // for a kernel that does not clear the page
        release_file(publisher->file);
    }
    publishers = nullptr;
    unlock_publishers();
}

void watch_forks()
{
    fork_error = pthread_atfork(lock_publishers, unlock_publishers, leave_to_parent);
}

// ---- Opening ----

bool is_name(const char* text)
{
    const std::size_t length = std::strspn(text, "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789._-");
    return length > 0 && length <= STATS_PUBLISH_MAX_NAME && text[length] == '\0' && text[0] != '.';
}

bool is_release(const char* text)
{
    std::size_t length = 0;
    for (; text[length] != '\0'; ++length)
        if (static_cast<unsigned char>(text[length]) < ' ' || text[length] == '\x7f' || length == sizeof(Header::host)) return false;
    return true;
}

bool are_allowed(const char* decoder, const char* host, unsigned heartbeat, STATS_PUBLISH_ERROR* error)
{
    if (decoder == nullptr || !is_name(decoder))
        set_error(error, STATS_PUBLISH_BAD_ARGUMENT,
                  "a decoder's name is 1 to 64 letters, digits, full stops, hyphens and underscores, the first no full stop");
    else if (!is_release(host))
        set_error(error, STATS_PUBLISH_BAD_ARGUMENT, "a host's release has at most 64 bytes and no control characters");
    else if (heartbeat > 3'600'000)
        set_error(error, STATS_PUBLISH_BAD_ARGUMENT, "heartbeats come at least every 3600000 ms, not every %u ms", heartbeat);
    else
        return true;
    return false;
}

std::uint64_t now(clockid_t clock)
{
    timespec time = {};
    clock_gettime(clock, &time);
    return static_cast<std::uint64_t>(time.tv_sec) * 1'000'000'000 + static_cast<std::uint64_t>(time.tv_nsec);
}

/** Fills an instance id. @return whether the kernel has random numbers */
bool draw(std::uint8_t (&id)[16])
{
    if (getrandom(id, sizeof id, GRND_NONBLOCK) == sizeof id) return true;
    return getrandom(id, sizeof id, GRND_INSECURE) == sizeof id; // early in a boot: no secret is made of it
}

/** Fills the id of the running kernel's boot; all 0 where it cannot be read. */
void read_boot_id(std::uint8_t (&id)[16])
{
    const int file = open("/proc/sys/kernel/random/boot_id", O_RDONLY | O_CLOEXEC);
    if (file < 0) return;
    char text[64];
    const ssize_t length = read(file, text, sizeof text);
    close(file);
    std::size_t digits = 0;
    for (ssize_t i = 0; i < length && digits < 32; ++i)
    {
        const char* const hexadecimal = "0123456789abcdef";
        const char* const digit = text[i] == '\0' ? nullptr : std::strchr(hexadecimal, text[i]);
        if (digit == nullptr) continue;
        id[digits / 2] = static_cast<std::uint8_t>(id[digits / 2] << 4 | (digit - hexadecimal));
        ++digits;
    }
}

void fill(Publisher& publisher, const Header& header)
{
    std::memcpy(publisher.file.bytes, image().data(), image().size());
    std::memcpy(publisher.file.bytes, &header, sizeof header);
    for (const Section& section : sections())
    {
        Slot* slot = reinterpret_cast<Slot*>(publisher.file.bytes + section.offset);
        switch (static_cast<SectionType>(section.type))
        {
        case SectionType::layout: break;
        case SectionType::record: publisher.records[section.id] = slot; break;
        case SectionType::heartbeat: publisher.heartbeat = slot; break;
        case SectionType::not_measured: publisher.not_measured = slot; break;
        }
    }
}

/** The flag in its own page, set. @return NULL without memory */
std::atomic<unsigned>* new_live_flag()
{
    void* page = mmap(nullptr, sizeof(std::atomic<unsigned>), PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (page == MAP_FAILED) return nullptr;
    madvise(page, sizeof(std::atomic<unsigned>), MADV_WIPEONFORK); // where it is not known, the handler of forks is left
    auto* live = static_cast<std::atomic<unsigned>*>(page);
    live->store(1, std::memory_order_relaxed);
    return live;
}

/** @return 0, or the error number */
int allocate(Publisher*& publisher)
{
    pthread_once(&fork_once, watch_forks);
    if (fork_error != 0) return fork_error;
    const Publisher empty;
    publisher = static_cast<Publisher*>(std::malloc(sizeof empty));
    if (publisher == nullptr) return ENOMEM;
    *publisher = empty;
    publisher->live = new_live_flag();
    if (publisher->live != nullptr) return 0;
    std::free(publisher);
    return ENOMEM;
}

void release(Publisher* publisher)
{
    munmap(publisher->live, sizeof *publisher->live);
    std::free(publisher);
}

void take_out(const Publisher* publisher)
{
    for (Publisher** link = &publishers; *link != nullptr; link = &(*link)->next)
    {
        if (*link != publisher) continue;
        *link = publisher->next;
        return;
    }
}

void beat(const Publisher& publisher)
{
    const std::uint64_t alive_at = now(CLOCK_MONOTONIC_COARSE); // a clock that nobody sets, and that a suspended machine stops
    write_slot<sizeof alive_at>(*publisher.heartbeat, now(CLOCK_REALTIME_COARSE), &alive_at);
}

/** Creates the file and fills it before it gets its name. */
bool open_file(Publisher& publisher, const Header& header, const char* directory, const char* decoder, STATS_PUBLISH_ERROR* error)
{
    if (!create_file(publisher.file, directory, decoder, header.file_size, error)) return false;
    fill(publisher, header);
    beat(publisher);
    return put_in_place(publisher.file, directory, error);
}

// ---- Publishing ----

/** @return the publisher, or NULL where there is none, or it is the parent's of a fork */
Publisher* own(STATS_PUBLISHER* handle)
{
    auto* publisher = reinterpret_cast<Publisher*>(handle);
    return publisher == nullptr || publisher->live->load(std::memory_order_relaxed) == 0 ? nullptr : publisher;
}

template <typename Record> void publish(STATS_PUBLISHER* handle, Component component, const Record* record)
{
    const Publisher* publisher = own(handle);
    if (publisher == nullptr || record == nullptr) return;
    // The coarse clock is read from memory on every machine; its steps of some milliseconds are finer than any host publishes.
    write_slot<sizeof *record>(*publisher->records[component], now(CLOCK_REALTIME_COARSE), record);
}

/** Finds a field. @return its bit, or -1 */
long bit_of(const char* name)
{
    for (const Section& section : sections())
    {
        if (static_cast<SectionType>(section.type) != SectionType::layout) continue;
        const Layout& layout = layout_in(section);
        const std::size_t prefix = std::strlen(layout.component);
        if (std::strncmp(name, layout.component, prefix) != 0 || name[prefix] != '.') continue;
        const char* wanted = name + prefix + 1;
        const auto* bytes = reinterpret_cast<const char*>(&layout);
        const auto* rows = reinterpret_cast<const FieldRow*>(&layout + 1);
        for (std::uint32_t i = 0; i < layout.field_count; ++i)
            if (std::strlen(wanted) == rows[i].name_length && std::memcmp(wanted, bytes + rows[i].name_offset, rows[i].name_length) == 0)
                return static_cast<long>(layout.first_field) + static_cast<long>(i);
    }
    return -1;
}

} // namespace

STATS_PUBLISHER* STATS_PublishOpen(const char* szDecoder, const char* szDirectory, const char* szHost, unsigned int nHeartbeatMs,
                                   STATS_PUBLISH_ERROR* pError)
{
    set_error(pError, STATS_PUBLISH_OK, "%s", "");
    const char* host = szHost == nullptr ? "" : szHost;
    const char* directory = szDirectory == nullptr ? STATS_PUBLISH_DIRECTORY : szDirectory;
    if (!are_allowed(szDecoder, host, nHeartbeatMs, pError)) return nullptr;

    Header header = {};
    std::memcpy(&header, image().data(), sizeof header);
    std::memcpy(header.decoder, szDecoder, std::strlen(szDecoder));
    std::memcpy(header.host, host, std::strlen(host));
    header.heartbeat_interval = nHeartbeatMs == 0 ? STATS_PUBLISH_HEARTBEAT_MS : nHeartbeatMs;
    header.started_at = static_cast<std::int64_t>(now(CLOCK_REALTIME_COARSE));
    read_boot_id(header.boot_id);
    Publisher* publisher = nullptr;
    int number = draw(header.instance) ? 0 : errno;
    if (number == 0) number = allocate(publisher);
    if (number != 0)
    {
        set_system_error(pError, number, "cannot publish %s", szDecoder);
        return nullptr;
    }

    lock_publishers(); // no fork in between, so that no child keeps a descriptor that the list does not have
    const bool opened = open_file(*publisher, header, directory, szDecoder, pError);
    if (opened)
    {
        publisher->next = publishers;
        publishers = publisher;
    }
    unlock_publishers();
    if (opened) return reinterpret_cast<STATS_PUBLISHER*>(publisher);
    release(publisher);
    return nullptr;
}

BOOL STATS_PublishNotMeasured(STATS_PUBLISHER* pPublisher, const char* const* pszFields, size_t nCount, STATS_PUBLISH_ERROR* pError)
{
    set_error(pError, STATS_PUBLISH_OK, "%s", "");
    const Publisher* publisher = own(pPublisher);
    if (publisher == nullptr) return TRUE;
    std::uint64_t bits[not_measured_words];
    for (std::size_t i = 0; i < not_measured_words; ++i) bits[i] = words(*publisher->not_measured)[i].load(std::memory_order_relaxed);
    for (std::size_t i = 0; i < nCount; ++i)
    {
        const long bit = pszFields[i] == nullptr ? -1 : bit_of(pszFields[i]);
        if (bit < 0)
        {
            set_error(pError, STATS_PUBLISH_UNKNOWN_FIELD, "no field has the name \"%.200s\"", pszFields[i] == nullptr ? "" : pszFields[i]);
            return FALSE;
        }
        bits[bit / 64] |= std::uint64_t{1} << bit % 64;
    }
    write_words(*publisher->not_measured, now(CLOCK_REALTIME_COARSE), bits, not_measured_words);
    return TRUE;
}

void STATS_PublishHeartbeat(STATS_PUBLISHER* pPublisher)
{
    if (const Publisher* publisher = own(pPublisher)) beat(*publisher);
}

void STATS_PublishForTDemux(STATS_PUBLISHER* pPublisher, const SMGR_TDEMUX_STATS* pStats)
{
    publish(pPublisher, tdemux, pStats);
}

void STATS_PublishForVFramer(STATS_PUBLISHER* pPublisher, const SMGR_VFRAMER_STATS* pStats)
{
    publish(pPublisher, vframer, pStats);
}

void STATS_PublishForVideoDecoder(STATS_PUBLISHER* pPublisher, const SMGR_VCUDEC_STATS* pStats)
{
    publish(pPublisher, vdecoder, pStats);
}

void STATS_PublishForAudioDecoder(STATS_PUBLISHER* pPublisher, const SMGR_DECODER_AUDIO_STATS* pStats)
{
    publish(pPublisher, audio, pStats);
}

void STATS_PublishForMetadataDec(STATS_PUBLISHER* pPublisher, const SMGR_METADATADEC_STATS* pStats)
{
    publish(pPublisher, metadata, pStats);
}

void STATS_PublishForCBuffering(STATS_PUBLISHER* pPublisher, const SMGR_CBUFFERING_STATS* pStats)
{
    publish(pPublisher, buffering, pStats);
}

void STATS_PublishForClockRecovery(STATS_PUBLISHER* pPublisher, const SMGR_DECODER_CLOCK_RECOVERY_STATS* pStats)
{
    publish(pPublisher, clock_recovery, pStats);
}

void STATS_PublishForDecoderUsage(STATS_PUBLISHER* pPublisher, const SMGR_DECODER_SDI_USAGE_STATS* pStats)
{
    publish(pPublisher, usage, pStats);
}

void STATS_PublishClose(STATS_PUBLISHER* pPublisher)
{
    Publisher* publisher = own(pPublisher);
    if (publisher == nullptr) return;
    lock_publishers();
    take_out(publisher);
    remove_file(publisher->file);
    release_file(publisher->file);
    unlock_publishers();
    release(publisher);
}
