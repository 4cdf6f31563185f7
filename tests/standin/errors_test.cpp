// Linux's error numbers as result codes, and the names and meanings of result codes.
#include "standin/files/errors.h"
#include "standin/standin.h"
#include "tests/data/samples.h"

#include <cerrno>
#include <gtest/gtest.h>
#include <regex>
#include <set>

namespace
{

using namespace standin;

struct ErrnoCase
{
    int errnoValue;
    int result;
};

TEST(Errors, ResultForEachErrno)
{
    const ErrnoCase rows[] = {
        {0, 0},         {ENOENT, -43},         {ESTALE, -43},     {ELOOP, -43},       {ENOTDIR, -1407}, {EISDIR, -1302},
        {EEXIST, -48},  {ENAMETOOLONG, -1410}, {EILSEQ, -37},     {ENOSPC, -34},      {EDQUOT, -34},    {EFBIG, -34},
        {E2BIG, -34},   {EMLINK, -34},         {EROFS, -44},      {EACCES, -5000},    {EPERM, -54},     {ENOTEMPTY, -47},
        {EBUSY, -47},   {ETXTBSY, -47},        {EAGAIN, -47},     {EWOULDBLOCK, -47}, {EDEADLK, -47},   {EMFILE, -42},
        {ENFILE, -42},  {ENOMEM, -108},        {EXDEV, -1303},    {ENODEV, -35},      {ENXIO, -35},     {EBADF, -51},
        {EINVAL, -50},  {ENOTSUP, -50},        {EOPNOTSUPP, -50}, {ENOSYS, -50},      {EIO, -36},       {EFAULT, -36},
        {ENODATA, -36}, {ENOTCONN, -36},   // the last three have no row
    };
    for (const ErrnoCase &row : rows)
        EXPECT_EQ(resultFromErrno(row.errnoValue), row.result) << row.errnoValue;
}

TEST(Errors, NoErrnoPassesForSuccess)
{
    for (int errnoValue = 1; errnoValue < 1000; ++errnoValue)
    {
        const OSErr result = resultFromErrno(errnoValue);
        EXPECT_LT(result, 0) << errnoValue;
        EXPECT_NE(resultCodeName(result), nullptr) << errnoValue;
    }
    EXPECT_EQ(resultFromErrno(-ENOENT), ioErr);   // a negative number is no errno
    EXPECT_EQ(resultFromErrno(INT32_MAX), ioErr);
}

TEST(ResultCodes, NamesAndMeanings)
{
    EXPECT_STREQ(resultCodeName(0), "noErr");
    EXPECT_STREQ(resultCodeName(-43), "fnfErr");
    EXPECT_STREQ(resultCodeMeaning(-43), "there is no such file or folder");
    EXPECT_STREQ(resultCodeName(-8785), "kTECOutputBufferFullStatus");
    EXPECT_STREQ(resultCodeName(-1417), "errFSNoMoreItems");
}

TEST(ResultCodes, OthersHaveNone)
{
    for (const OSStatus code : {1, 43, -1, -38, -1408, -32768, -65579})   // the last one is fnfErr in its low half
    {
        EXPECT_EQ(resultCodeName(code), nullptr) << code;
        EXPECT_EQ(resultCodeMeaning(code), nullptr) << code;
    }
}

TEST(ResultCodes, EveryDeclaredCodeHasItsRow)
{
    const auto header = readWholeFile(repositoryRoot() / "platform/results.h");
    const std::string text(header.begin(), header.end());
    const std::regex declaration(R"(constexpr\s+OS(?:Err|Status)\s+(\w+)\s*=\s*(-?\d+);)");
    int declared = 0;
    for (std::sregex_iterator match(text.begin(), text.end(), declaration); match != std::sregex_iterator(); ++match)
    {
        const std::string name = (*match)[1];
        const OSStatus code = static_cast<OSStatus>(std::stol((*match)[2]));
        ASSERT_NE(resultCodeName(code), nullptr) << name;
        EXPECT_EQ(resultCodeName(code), name);
        ++declared;
    }
    EXPECT_GT(declared, 50);
}

TEST(ResultCodes, MeaningsArePlainSentencesOfTheirOwn)
{
    std::set<std::string> names, meanings;
    int found = 0;
    for (OSStatus code = -9000; code <= 0; ++code)
    {
        const char *meaning = resultCodeMeaning(code);
        if (meaning == nullptr)
            continue;
        ++found;
        names.insert(resultCodeName(code));
        meanings.insert(meaning);
        EXPECT_NE(std::string(meaning).back(), '.') << meaning;
    }
    EXPECT_EQ(names.size(), static_cast<std::size_t>(found));
    EXPECT_EQ(meanings.size(), static_cast<std::size_t>(found));
}

}   // namespace
