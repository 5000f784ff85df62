// The version record in the built library, found and decoded as a tool would, without loading the library.

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fstream>
#include <iterator>

#include "qrversioninfo.h"

static const std::string& Library()
{
    static const std::string bytes = []
    {
        std::ifstream file(STATS_LIBRARY, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(file), {});
    }();
    return bytes;
}

static QRVERSIONINFOBLOB Record()
{
    QRVERSIONINFOBLOB record = {};
    const size_t at = Library().find("Q$R$V$B$L$O$B<>.");
    EXPECT_NE(at, std::string::npos);
    EXPECT_LE(at + sizeof record, Library().size());
    memcpy(&record, Library().data() + at, sizeof record);
    return record;
}

// The text of a field; it has to end within its width, and be padded with NUL from there on.
template <size_t Width> static std::string Text(const BYTE (&field)[Width])
{
    const std::string whole(reinterpret_cast<const char*>(field), Width);
    const size_t end = whole.find('\0');
    EXPECT_NE(end, std::string::npos) << whole;
    EXPECT_EQ(whole.find_first_not_of('\0', end), std::string::npos) << whole;
    return whole.substr(0, end);
}

TEST(VersionRecord, TheSignatureStandsInTheLibraryOnce)
{
    const size_t first = Library().find("Q$R$V$B$L$O$B<>.");
    ASSERT_NE(first, std::string::npos);
    EXPECT_EQ(Library().find("Q$R$V$B$L$O$B<>.", first + 1), std::string::npos);
}

TEST(VersionRecord, ItsSizeIs274)
{
    EXPECT_EQ(sizeof(QRVERSIONINFOBLOB), 274u);
    EXPECT_EQ(Record().dwSize, 274u);
    const QRVERSIONINFOBLOB record = Record();
    EXPECT_EQ(memcmp(reinterpret_cast<const char*>(&record) + 16, "\x12\x01\x00\x00", 4), 0);
}

TEST(VersionRecord, DecodesToTheReleasesValues)
{
    const QRVERSIONINFOBLOB record = Record();
    EXPECT_EQ(record.cMajor, 1);
    EXPECT_EQ(record.cMinor, 3);
    EXPECT_EQ(Text(record.szRevision), "22816");
    EXPECT_EQ(Text(record.szDescription), "Statistics Printing Library");
    EXPECT_EQ(Text(record.szCopyright).substr(0, 14), "Copyright (c) ");
    EXPECT_EQ(Text(record.szBuildIdentifier), "tarvex4_dec_v1.3.2-10");
    EXPECT_EQ(Text(record.szNotes), "");
}

TEST(VersionRecord, CarriesTheReleasesMomentUnlessTheEnvironmentSetsAnother)
{
    std::string date = "Jun  6 2022";
    std::string clock = "16:06:55";
    if (const char* epoch = std::getenv("SOURCE_DATE_EPOCH"))
    {
        const time_t moment = static_cast<time_t>(std::strtoll(epoch, nullptr, 10));
        char text[32];
        strftime(text, sizeof text, "%b %e %Y", gmtime(&moment));
        date = text;
        strftime(text, sizeof text, "%H:%M:%S", gmtime(&moment));
        clock = text;
    }
    EXPECT_EQ(Text(Record().szBuildDate), date);
    EXPECT_EQ(Text(Record().szBuildTime), clock);
}

TEST(VersionRecord, ADescriptionOf63CharactersStillEndsWithinItsField)
{
    static constexpr const char longest[] = "123456789012345678901234567890123456789012345678901234567890123";
    static_assert(sizeof longest == sizeof QRVERSIONINFOBLOB::szDescription);
    QRVERSIONINFOBLOB record = {};
    memcpy(record.szDescription, longest, sizeof longest);
    EXPECT_EQ(Text(record.szDescription), longest);
}
