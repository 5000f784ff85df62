// Writes what the target of the reader of capture files starts from.
//
//     capture_seeds DIRECTORY
#include <filesystem>

#include "captured.h"

int main(int argc, char** argv)
{
    if (argc != 2) return 2;
    const std::filesystem::path folder = std::filesystem::path(argv[1]) / "capture-reader";
    std::filesystem::create_directories(folder);

    // Small records, which are quicker to change everywhere.
    records::Snapshot snapshot = only("usage", Living("idle").snapshot());
    snapshot.not_measured.set(740);
    capture_all(folder / "one", {snapshot});
    {
        capture::Writer writer(folder / "eventful");
        for (int i = 0; i < 8; ++i)
        {
            snapshot.taken_at += i == 5 ? 2 * minute : second;
            snapshot.records.usage.nNumGetStats += 1000;
            if (i == 3) snapshot.instance->id = {7};
            if (i == 6) snapshot.taken_at -= 10 * minute;
            if (i == 4) writer.mark_gap(capture::GapCause::no_source, "stale");
            writer.append(snapshot);
        }
        writer.finish();
    }
    std::vector<records::Snapshot> audio;
    for (const records::Snapshot& one : Living("live-srt-1080i").snapshots(4)) audio.push_back(only("clock-recovery", one));
    capture_all(folder / "clock", audio);
    return 0;
}
