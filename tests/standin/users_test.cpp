// Names of users and groups, and their numbers.
#include "tests/standin/test_volume.h"

#include "standin/files/linux_calls.h"

#include <cerrno>
#include <cstring>
#include <grp.h>
#include <pwd.h>
#include <string>
#include <unistd.h>

namespace
{

using namespace support;

constexpr SInt16 userToName = 1, groupToName = 2, nameToUser = 3, nameToGroup = 4;

OSErr nameFor(SInt32 number, SInt16 kind, std::string &name, FSVolumeRefNum volume = 0)
{
    Str31 text{};
    HParamBlockRec block{};
    block.objParam.ioVRefNum = volume;
    block.objParam.ioObjType = kind;
    block.objParam.ioObjNamePtr = text;
    block.objParam.ioObjID = number;
    const OSErr result = PBHMapIDSync(&block);
    EXPECT_EQ(block.objParam.ioResult, result);
    name.assign(reinterpret_cast<const char *>(text) + 1, text[0]);
    return result;
}

OSErr numberFor(const std::string &name, SInt16 kind, SInt32 &number, FSVolumeRefNum volume = 0)
{
    Str255 text{};
    text[0] = static_cast<unsigned char>(name.size());
    std::memcpy(text + 1, name.data(), name.size());
    HParamBlockRec block{};
    block.objParam.ioVRefNum = volume;
    block.objParam.ioObjType = kind;
    block.objParam.ioObjNamePtr = text;
    block.objParam.ioObjID = -77;
    const OSErr result = PBHMapNameSync(&block);
    EXPECT_EQ(block.objParam.ioResult, result);
    number = block.objParam.ioObjID;
    return result;
}

// A number that nobody has.
template <typename Lookup>
SInt32 unusedNumber(Lookup lookUp)
{
    unsigned number = 3000000000u;
    while (lookUp(number))
        ++number;
    return static_cast<SInt32>(number);
}

TEST(UserNames, AreThoseOfTheSystem)
{
    const passwd *first = getpwuid(0);
    if (!first)
        GTEST_SKIP() << "this machine knows no users";
    const std::string expected = first->pw_name;
    std::string name;
    SInt32 number = -1;
    EXPECT_EQ(nameFor(0, userToName, name), noErr);
    EXPECT_EQ(name, expected);
    EXPECT_EQ(numberFor(expected, nameToUser, number), noErr);
    EXPECT_EQ(number, 0);
}

TEST(UserNames, OfGroupsAreTheSystemsToo)
{
    const group *first = getgrgid(0);
    if (!first)
        GTEST_SKIP() << "this machine knows no groups";
    const std::string expected = first->gr_name;
    std::string name;
    SInt32 number = -1;
    EXPECT_EQ(nameFor(0, groupToName, name), noErr);
    EXPECT_EQ(name, expected);
    EXPECT_EQ(numberFor(expected, nameToGroup, number), noErr);
    EXPECT_EQ(number, 0);
}

TEST(UserNames, EveryUserAndGroupOfThisMachineComesBack)
{
    int seen = 0;
    setpwent();
    for (const passwd *entry; (entry = getpwent()) != nullptr;)
    {
        const std::string expected = entry->pw_name;
        const auto expectedNumber = static_cast<SInt32>(entry->pw_uid);
        SInt32 number = -1;
        if (expected.size() > 31)
            continue;
        EXPECT_EQ(numberFor(expected, nameToUser, number), noErr) << expected;
        EXPECT_EQ(number, expectedNumber) << expected;
        ++seen;
    }
    endpwent();
    if (seen == 0)
        GTEST_SKIP() << "this machine lists no users";
}

TEST(UserNames, OfNobodyAreNotFound)
{
    std::string name = "as before";
    SInt32 number = 0;
    EXPECT_EQ(nameFor(unusedNumber([](unsigned n) { return getpwuid(n) != nullptr; }), userToName, name), fnfErr);
    EXPECT_EQ(nameFor(unusedNumber([](unsigned n) { return getgrgid(n) != nullptr; }), groupToName, name), fnfErr);
    for (const char *unknown :
         {"no such user here", "", "a:b", "\xA5\xA5", "an extraordinarily long name that nobody could ever have been given"})
        for (SInt16 kind : {nameToUser, nameToGroup})
        {
            EXPECT_EQ(numberFor(unknown, kind, number), fnfErr) << unknown;
            EXPECT_EQ(number, -77) << "untouched";
        }
}

TEST(UserNames, OtherKindsOfMappingAreRefused)
{
    std::string name;
    SInt32 number = 0;
    for (int kind : {-1, 0, 3, 4, 5, 32767})
        EXPECT_EQ(nameFor(0, static_cast<SInt16>(kind), name), paramErr) << kind;
    for (int kind : {-1, 0, 1, 2, 5, 32767})
        EXPECT_EQ(numberFor("root", static_cast<SInt16>(kind), number), paramErr) << kind;
    HParamBlockRec block{};
    block.objParam.ioObjType = userToName;
    EXPECT_EQ(PBHMapIDSync(&block), paramErr) << "no room for the name";
    block.objParam.ioObjType = nameToUser;
    EXPECT_EQ(PBHMapNameSync(&block), paramErr);
    EXPECT_EQ(PBHMapIDSync(nullptr), paramErr);
    EXPECT_EQ(PBHMapNameSync(nullptr), paramErr);
}

TEST(UserNames, BelongToAVolume)
{
    std::string name;
    SInt32 number = 0;
    EXPECT_EQ(nameFor(0, userToName, name, 12345), nsvErr);
    EXPECT_EQ(numberFor("root", nameToUser, number, 12345), nsvErr);
}

int brokenNameService(const char *call)
{
    return std::strstr(call, "user") || std::strstr(call, "group") ? EIO : 0;
}

TEST(UserNames, ANameServiceThatFailsIsNotTakenForNobody)
{
    std::string name;
    SInt32 number = 0;
    standin::linux_calls::setCallFilter(brokenNameService);
    EXPECT_EQ(nameFor(0, userToName, name), ioErr);
    EXPECT_EQ(nameFor(0, groupToName, name), ioErr);
    EXPECT_EQ(numberFor("root", nameToUser, number), ioErr);
    EXPECT_EQ(numberFor("root", nameToGroup, number), ioErr);
    standin::linux_calls::setCallFilter(nullptr);
}

}   // namespace
