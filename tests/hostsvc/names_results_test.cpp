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

const std::map<unsigned, std::string> SENTENCES = {
#include "result_sentences.inc"
};

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

TEST(ErrorString, EveryCodeHasItsSentence)
{
    ASSERT_EQ(249U, SENTENCES.size());
    for (const auto& [nCode, sentence] : SENTENCES) EXPECT_EQ(sentence, ErrorText(nCode)) << nCode;
}

TEST(ErrorString, SentencesAreWellFormedAndAllDifferent)
{
    std::map<std::string, unsigned> codeOfSentence;
    for (const auto& [nCode, sentence] : SENTENCES)
    {
        SCOPED_TRACE(std::to_string(nCode) + ": " + sentence);
        const auto [other, isNew] = codeOfSentence.emplace(sentence, nCode);
        EXPECT_TRUE(isNew) << "also the sentence of " << other->second;
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
