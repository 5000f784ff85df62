// The sentences of the result codes, and the text of codes that have none.
#include <algorithm>
#include <climits>
#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "hostsvc.h"
#include "sessmgr_const.h"

namespace
{

using Service = char* (*)(int, char*, size_t);

std::string Text(Service service, int nErrorCode)
{
    char szBuffer[1024];
    return service(nErrorCode, szBuffer, sizeof szBuffer);
}

std::string ErrorText(unsigned nErrorCode)
{
    return Text(SessMgr_GetErrorString, static_cast<int>(nErrorCode));
}

std::string CodecText(int nErrorCode)
{
    return Text(SessMgr_GetVCUDecoderErrorString, nErrorCode);
}

// Written out by value: the test must not follow the enumeration if a code is moved.
std::vector<unsigned> AllCodes()
{
    struct Run
    {
        unsigned nFirst;
        unsigned nLast;
    };
    const Run runs[] = {
        {0,          95        },
        {1000,       1123      },
        {1125,       1140      },
        {1150,       1154      },
        {0x10000000, 0x10000002},
        {0x80000000, 0x80000000},
        {0x80000002, 0x80000005}
    };
    std::vector<unsigned> codes;
    for (const Run& run : runs)
        for (unsigned n = run.nFirst; n <= run.nLast; n++) codes.push_back(n);
    return codes;
}

// Every size from nothing to more than enough: the text's beginning, its NUL, and not a byte behind nSize.
void ExpectCutAtEverySize(Service service, int nErrorCode, const std::string& expected)
{
    constexpr char GUARD = '\x5A';
    for (size_t nSize = 0; nSize <= expected.size() + 2; nSize++)
    {
        SCOPED_TRACE("nSize " + std::to_string(nSize));
        std::vector<char> buffer(expected.size() + 16, GUARD);
        EXPECT_EQ(buffer.data(), service(nErrorCode, buffer.data(), nSize));
        if (nSize > 0)
        {
            EXPECT_EQ(expected.substr(0, nSize - 1), std::string(buffer.data()));
        }
        EXPECT_TRUE(std::all_of(buffer.begin() + static_cast<std::ptrdiff_t>(nSize), buffer.end(), [](char c) { return c == GUARD; }));
    }
}

TEST(ErrorString, EveryCodeHasASentenceOfItsOwn)
{
    std::map<std::string, unsigned> codeOfSentence;
    const std::vector<unsigned> codes = AllCodes();
    ASSERT_EQ(249U, codes.size());
    for (const unsigned nCode : codes)
    {
        SCOPED_TRACE(nCode);
        const std::string sentence = ErrorText(nCode);
        ASSERT_FALSE(sentence.empty());
        const auto [other, isNew] = codeOfSentence.emplace(sentence, nCode);
        EXPECT_TRUE(isNew) << sentence << " is also the sentence of " << other->second;
    }
}

TEST(ErrorString, SentencesAreWellFormed)
{
    for (const unsigned nCode : AllCodes())
    {
        const std::string sentence = ErrorText(nCode);
        SCOPED_TRACE(std::to_string(nCode) + ": " + sentence);
        ASSERT_FALSE(sentence.empty());
        EXPECT_LE(sentence.size(), 100U);
        EXPECT_TRUE(sentence.front() >= 'A' && sentence.front() <= 'Z');
        EXPECT_EQ('.', sentence.back());
        EXPECT_EQ(std::string::npos, sentence.find(". ")) << "more than one sentence";
        EXPECT_EQ(std::string::npos, sentence.find("  "));
        EXPECT_EQ(std::string::npos, sentence.find('_')) << "a code name";
        EXPECT_EQ(std::string::npos, sentence.find("Unknown"));
        EXPECT_TRUE(std::all_of(sentence.begin(), sentence.end(), [](char c) { return c >= ' ' && c <= '~'; }));
    }
}

TEST(ErrorString, ExplainsCodesOfTheFirstRange)
{
    EXPECT_EQ("The request succeeded.", ErrorText(SMGR_ERROR_SUCCESS));
    EXPECT_EQ("The request failed; no reason was given.", ErrorText(1));
    EXPECT_EQ("A message from the session manager came out of sequence.", ErrorText(11));
    EXPECT_EQ("The video format is not supported.", ErrorText(SMGR_ERROR_UNSUPPORTED_VIDEO_FORMAT));
    EXPECT_EQ("The system time clock (STC) source cannot be changed for SDI audio.", ErrorText(83));
    EXPECT_EQ("The BNC output is not available.", ErrorText(95));
}

TEST(ErrorString, ExplainsCodesOfTheSecondRange)
{
    EXPECT_EQ("The session manager did not answer in time.", ErrorText(1000));
    EXPECT_EQ("The stream passphrase is too short.", ErrorText(SMGR_ERROR_STREAM_PASSPHRASE_TOO_SHORT));
    EXPECT_EQ("A video encoder can have only one region of interest.", ErrorText(1035));
    EXPECT_EQ("Cursor on Target does not support mission reclassification.", ErrorText(1089));
    EXPECT_EQ("H.265/HEVC video is not supported in RTMP streams.", ErrorText(1100));
    EXPECT_EQ("A privacy region of interest is not supported on interlaced video.", ErrorText(1123));
    EXPECT_EQ("The stream passphrase is not valid.", ErrorText(1125));
    EXPECT_EQ("No decoder is assigned to the stream.", ErrorText(SMGR_ERROR_NO_DECODER_ASSIGNED_TO_STREAM));
    EXPECT_EQ("Access to the network-attached storage (NAS) was denied; check the user name and password.", ErrorText(1140));
    EXPECT_EQ("Interlaced H.264 video is not supported.", ErrorText(1150));
    EXPECT_EQ("A second 4K H.264 4:2:2 10-bit video is not supported.", ErrorText(1151));
    EXPECT_EQ("The secondary network interface of the stream is not valid.", ErrorText(1154));
}

TEST(ErrorString, ExplainsCodesOfTheFlaggedRanges)
{
    EXPECT_EQ("The request failed; a separate text describes the error.", ErrorText(0x10000000));
    EXPECT_EQ("The stream is already assigned to a decoder.", ErrorText(0x10000001));
    EXPECT_EQ("The BNC output is already assigned to a decoder.", ErrorText(0x10000002));
    EXPECT_EQ("The request succeeded, but with a warning.", ErrorText(0x80000000));
    EXPECT_EQ("The request succeeded, but RTSP was already started.", ErrorText(0x80000005));
}

TEST(ErrorString, TranslatesAWarningHeldInANegativeNumber)
{
    EXPECT_EQ("The request succeeded, but a content source of the stream is not started.", Text(SessMgr_GetErrorString, -2147483646));
    EXPECT_EQ("The request succeeded, but with a warning.", Text(SessMgr_GetErrorString, INT_MIN));
}

TEST(ErrorString, ShowsTheNumberOfAnUnknownCode)
{
    EXPECT_EQ("Unknown (96)", ErrorText(96));
    EXPECT_EQ("Unknown (999)", ErrorText(999));
    EXPECT_EQ("Unknown (1124)", ErrorText(1124));
    EXPECT_EQ("Unknown (1141)", ErrorText(1141));
    EXPECT_EQ("Unknown (1149)", ErrorText(1149));
    EXPECT_EQ("Unknown (1155)", ErrorText(1155));
    EXPECT_EQ("Unknown (268435455)", ErrorText(0x0FFFFFFF));
    EXPECT_EQ("Unknown (536870912)", ErrorText(0x20000000));
    EXPECT_EQ("Unknown (1073741824)", ErrorText(0x40000000));
}

TEST(ErrorString, ShowsAnUnknownFlaggedCodeInHexadecimalToo)
{
    EXPECT_EQ("Unknown (268435459, 0x10000003)", ErrorText(0x10000003));
    EXPECT_EQ("Unknown (805306368, 0x30000000)", ErrorText(0x30000000));
    EXPECT_EQ("Unknown (2147483647, 0x7FFFFFFF)", ErrorText(0x7FFFFFFF));
    EXPECT_EQ("Unknown (-2147483647, 0x80000001)", ErrorText(0x80000001));
    EXPECT_EQ("Unknown (-2147483642, 0x80000006)", ErrorText(0x80000006));
    EXPECT_EQ("Unknown (-1412567295, 0xABCDEF01)", ErrorText(0xABCDEF01));
    EXPECT_EQ("Unknown (-1, 0xFFFFFFFF)", Text(SessMgr_GetErrorString, -1));
}

TEST(ErrorString, CutsTheTextAtTheSizeOfTheBuffer)
{
    ExpectCutAtEverySize(SessMgr_GetErrorString, 1026, "The stream passphrase is too short.");
    ExpectCutAtEverySize(SessMgr_GetErrorString, 96, "Unknown (96)");
    ExpectCutAtEverySize(SessMgr_GetErrorString, -2147483647, "Unknown (-2147483647, 0x80000001)");
}

TEST(ErrorString, WritesNothingIntoABufferOfSizeZero)
{
    EXPECT_EQ(nullptr, SessMgr_GetErrorString(SMGR_ERROR_SUCCESS, nullptr, 0));
    EXPECT_EQ(nullptr, SessMgr_GetErrorString(96, nullptr, 0));
    EXPECT_EQ(nullptr, SessMgr_GetErrorString(-1, nullptr, 0));
    EXPECT_EQ(nullptr, SessMgr_GetVCUDecoderErrorString(0, nullptr, 0));
    EXPECT_EQ(nullptr, SessMgr_GetVCUDecoderErrorString(1, nullptr, 0));
}

TEST(VCUDecoderErrorString, NamesTheAbsenceOfAnError)
{
    EXPECT_EQ("No error", CodecText(0));
}

TEST(VCUDecoderErrorString, ShowsTheNumberOfEveryOtherCode)
{
    EXPECT_EQ("Unknown (1)", CodecText(1));
    EXPECT_EQ("Unknown (-1)", CodecText(-1));
    EXPECT_EQ("Unknown (1026)", CodecText(1026));
    EXPECT_EQ("Unknown (2147483647)", CodecText(INT_MAX));
    EXPECT_EQ("Unknown (-2147483648)", CodecText(INT_MIN));
}

TEST(VCUDecoderErrorString, CutsTheTextAtTheSizeOfTheBuffer)
{
    ExpectCutAtEverySize(SessMgr_GetVCUDecoderErrorString, 0, "No error");
    ExpectCutAtEverySize(SessMgr_GetVCUDecoderErrorString, INT_MIN, "Unknown (-2147483648)");
}

} // namespace
