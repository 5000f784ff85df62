// The reader of published decoders. The input: a byte whose bits say whether the file has a living host, and whether it is cut
// off between its opening and the look at its records; then the file's bytes.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "decoder.h"
#include "dictionary.h"
#include "name.h"
#include "require.h"

// The reader waits for a writer to go on. Here there is none, so it need not wait.
extern "C" int nanosleep(const timespec*, timespec*)
{
    return 0;
}
extern "C" int clock_nanosleep(clockid_t, int, const timespec*, timespec*)
{
    return 0;
}

namespace
{

constexpr uint8_t is_alive = 1;
constexpr uint8_t is_cut_off = 2;

std::string path()
{
    const char* directory = std::getenv("TMPDIR");
    return std::string(directory == nullptr ? "/tmp" : directory) + "/published." + std::to_string(getpid());
}

/** One file for all inputs. It has a name because the reader does not follow links, as those of open files are. */
int open_file()
{
    const int file = open(path().c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    require(file >= 0, "a file");
    std::atexit([] { unlink(path().c_str()); });
    return file;
}

void set_lock(int file, short type)
{
    struct flock lock = {};
    lock.l_type = type;
    require(fcntl(file, F_OFD_SETLK, &lock) == 0, "a lock");
}

void check(const published::Look& look, bool alive)
{
    using published::RecordState;
    using published::State;
    const State state = look.status.state;
    require(state == State::live || !look.status.text.empty(), "a state has a text");
    require(look.status.text.find('\n') == std::string::npos, "a text is one line");
    if (!has_records(state))
    {
        require(look.snapshot.present.none(), "no records without a state that has them");
        return;
    }
    require(alive == (state == State::live || state == State::starting || state == State::hung), "alive by the lock alone");
    require(published::is_name(look.snapshot.decoder), "a decoder has a valid name");
    for (const records::Component& component : records::components())
    {
        const RecordState record = look.status.records[component.index].state;
        require(look.snapshot.has(component) == (record == RecordState::whole), "what is whole is there");
        require(record != RecordState::busy || alive, "only a living host is busy");
        require(record != RecordState::cut_off || !alive, "only a dead host was cut off");
        const auto bytes = look.snapshot.record(component);
        require(look.snapshot.has(component) || std::ranges::all_of(bytes, [](std::byte byte) { return byte == std::byte{0}; }),
                "what is not there is 0");
    }
    for (std::size_t i = dictionary::field_count; i < look.snapshot.not_measured.size(); ++i)
        require(!look.snapshot.not_measured[i], "what is not measured is a field");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const int file = open_file();
    if (size == 0) return 0;
    const bool alive = (data[0] & is_alive) != 0;
    require(ftruncate(file, 0) == 0 && pwrite(file, data + 1, size - 1, 0) == static_cast<ssize_t>(size - 1), "the file's bytes");
    set_lock(file, alive ? F_WRLCK : F_UNLCK);

    published::Decoder decoder(path());
    if ((data[0] & is_cut_off) != 0) require(ftruncate(file, static_cast<off_t>(size / 2)) == 0, "a shorter file");
    check(decoder.look(), alive);
    check(decoder.look(), alive);
    return 0;
}
