// The chain of open resource files: where resources are looked for, and in which order.
#include "tests/standin/resource_bytes.h"

#include <thread>

namespace
{

using namespace support;

constexpr OSType text = code("TEXT");

Bytes forkOf(std::initializer_list<std::pair<SInt16, const char *>> texts)
{
    std::vector<TestResource> resources;
    for (const auto &[id, content] : texts)
        resources.push_back({text, id, bytesOf(content), "Name of " + std::to_string(id)});
    return resourceFork(resources);
}

class ResourceChain : public testing::Test
{
protected:
    TemporaryFolder folder;
    FSRef first = fileWithFork(folder, "first", forkOf({{1, "1 in first"}, {2, "2 in first"}}));
    FSRef second = fileWithFork(folder, "second", forkOf({{1, "1 in second"}, {3, "3 in second"}}));
};

TEST_F(ResourceChain, TheNewestFileIsSearchedFirst)
{
    OpenResources one(first), other(second);
    EXPECT_EQ(CurResFile(), other.number());
    EXPECT_EQ(contentOf(GetResource(text, 1)), "1 in second");
    EXPECT_EQ(contentOf(GetResource(text, 2)), "2 in first");
    EXPECT_EQ(contentOf(GetResource(text, 3)), "3 in second");
    EXPECT_EQ(GetResource(text, 4), nullptr);
    EXPECT_EQ(ResError(), resNotFound);
}

TEST_F(ResourceChain, TheSearchBeginsAtTheCurrentFile)
{
    OpenResources one(first), other(second);
    UseResFile(one.number());
    EXPECT_EQ(ResError(), noErr);
    EXPECT_EQ(CurResFile(), one.number());
    EXPECT_EQ(contentOf(GetResource(text, 1)), "1 in first");
    EXPECT_EQ(GetResource(text, 3), nullptr);   // in a file that was opened later
}

TEST_F(ResourceChain, TheCurrentFileAloneIsSearchedWhereThatIsAskedFor)
{
    OpenResources one(first), other(second);
    EXPECT_EQ(contentOf(Get1Resource(text, 1)), "1 in second");
    EXPECT_EQ(Get1Resource(text, 2), nullptr);
    EXPECT_EQ(ResError(), resNotFound);
    const auto name = reinterpret_cast<ConstStr255Param>("\x09NAME OF 2");
    EXPECT_EQ(Get1NamedResource(text, name), nullptr);
    EXPECT_EQ(contentOf(GetNamedResource(text, name)), "2 in first");
    EXPECT_EQ(Count1Resources(text), 2);
    EXPECT_EQ(Count1Resources(code("none")), 0);
    EXPECT_EQ(Count1Types(), 1);
}

TEST_F(ResourceChain, AHandleKnowsItsFile)
{
    OpenResources one(first), other(second);
    EXPECT_EQ(HomeResFile(GetResource(text, 2)), one.number());
    EXPECT_EQ(HomeResFile(GetResource(text, 3)), other.number());
    EXPECT_EQ(HomeResFile(nullptr), -1);
    EXPECT_EQ(ResError(), resNotFound);
}

TEST_F(ResourceChain, OpeningAgainGivesTheSameNumberAndChangesNothing)
{
    OpenResources one(first), other(second);
    const Handle known = GetResource(text, 2);
    EXPECT_EQ(FSOpenResFile(&first, fsRdPerm), one.number());
    EXPECT_EQ(ResError(), noErr);
    EXPECT_EQ(CurResFile(), other.number());
    EXPECT_EQ(GetResource(text, 2), known);
    move(first, parentOf(first));   // a new reference to the same file
    EXPECT_EQ(FSOpenResFile(&first, fsRdPerm), one.number());
}

TEST_F(ResourceChain, ClosingTheCurrentFileGoesBackToTheOneBefore)
{
    const SInt16 one = FSOpenResFile(&first, fsRdPerm), other = FSOpenResFile(&second, fsRdPerm);
    CloseResFile(other);
    EXPECT_EQ(ResError(), noErr);
    EXPECT_EQ(CurResFile(), one);
    EXPECT_EQ(contentOf(GetResource(text, 1)), "1 in first");
    CloseResFile(one);
    EXPECT_EQ(CurResFile(), -1);
    EXPECT_EQ(GetResource(text, 1), nullptr);
    EXPECT_EQ(Count1Types(), 0);
    EXPECT_EQ(ResError(), resFNotFound);
}

TEST_F(ResourceChain, ClosingTheFirstOneAsTheCurrentOneGoesToTheNewest)
{
    const SInt16 one = FSOpenResFile(&first, fsRdPerm);
    OpenResources other(second);
    UseResFile(one);
    CloseResFile(one);
    EXPECT_EQ(CurResFile(), other.number());
}

TEST_F(ResourceChain, ClosingTheMiddleOneAsTheCurrentOneGoesToTheOneBeforeIt)
{
    OpenResources one(first);
    const SInt16 middle = FSOpenResFile(&second, fsRdPerm);
    OpenResources newest(fileWithFork(folder, "third", forkOf({{9, "9 in third"}})));
    UseResFile(middle);
    CloseResFile(middle);
    EXPECT_EQ(CurResFile(), one.number());
    UseResFile(newest.number());
    EXPECT_EQ(contentOf(GetResource(text, 1)), "1 in first");
}

TEST_F(ResourceChain, ANumberThatIsNotOpenIsRefused)
{
    for (const SInt16 number : {SInt16{-1}, SInt16{0}, SInt16{12345}})
    {
        CloseResFile(number);
        EXPECT_EQ(ResError(), resFNotFound);
        UseResFile(number);
        EXPECT_EQ(ResError(), resFNotFound);
    }
}

TEST_F(ResourceChain, TheNumberIsThatOfTheOpenFork)
{
    OpenResources one(first);
    FSRef ref;
    HFSUniStr255 name;
    ASSERT_EQ(FSGetForkCBInfo(one.number(), 0, nullptr, nullptr, nullptr, &ref, &name), noErr);
    EXPECT_TRUE(sameObject(ref, first));
    EXPECT_EQ(wide(name), u"RESOURCE_FORK");
}

TEST_F(ResourceChain, ClosingClosesTheFork)
{
    const SInt16 number = FSOpenResFile(&first, fsRdPerm);
    CloseResFile(number);
    EXPECT_EQ(FSCloseFork(number), rfNumErr);
}

TEST_F(ResourceChain, TheForkComesBeforeTheData)
{
    const FSRef both = fileWithData(folder, "both", forkOf({{1, "in data"}}));
    ASSERT_EQ(writeFork(both, true, forkOf({{1, "in fork"}})), noErr);
    OpenResources open(both);
    EXPECT_EQ(contentOf(GetResource(text, 1)), "in fork");
}

TEST_F(ResourceChain, EveryFormIsOpened)
{
    const Bytes fork = forkOf({{1, "inside"}}), data = bytesOf("some data");
    const std::pair<const char *, Bytes> forms[] = {{"bare", fork},
                                                    {"double", plainSidecar(fork)},
                                                    {"single", appleSingle(data, fork)},
                                                    {"one", macBinary(data, fork, 1)},
                                                    {"two", macBinary(data, fork, 2)},
                                                    {"three", macBinary(data, fork, 3)}};
    for (const auto &[name, bytes] : forms)
    {
        SCOPED_TRACE(name);
        OpenResources open(fileWithData(folder, name, bytes));
        EXPECT_EQ(contentOf(Get1Resource(text, 1)), "inside");
    }
}

struct Refused
{
    const char *name;
    Bytes data, fork;
    OSErr result;
};

TEST_F(ResourceChain, WhatHasNoResourcesIsRefused)
{
    Bytes cutOff = forkOf({{1, "x"}}), cutOffSingle = appleSingle({}, cutOff);
    cutOff.pop_back();
    cutOffSingle.pop_back();
    const Refused rows[] = {{"empty", {}, {}, eofErr},
                            {"text", bytesOf("Dear Ada, this is a long letter."), {}, mapReadErr},
                            {"short", bytesOf("x"), {}, mapReadErr},
                            {"damaged fork", forkOf({{1, "x"}}), cutOff, mapReadErr},
                            {"damaged data", cutOff, {}, mapReadErr},
                            {"damaged container", cutOffSingle, {}, mapReadErr},
                            {"container without fork", plainSidecar({}), {}, eofErr}};
    OpenResources one(first);
    for (const Refused &row : rows)
    {
        SCOPED_TRACE(row.name);
        const FSRef file = fileWithData(folder, row.name, row.data);
        ASSERT_EQ(row.fork.empty() ? OSErr{noErr} : writeFork(file, true, row.fork), noErr);
        EXPECT_EQ(FSOpenResFile(&file, fsRdPerm), -1);
        EXPECT_EQ(ResError(), row.result);
        EXPECT_EQ(CurResFile(), one.number());
        EXPECT_EQ(infoOf(file).nodeFlags & kFSNodeForkOpenMask, 0);   // nothing was left open
    }
}

TEST_F(ResourceChain, WhatCannotBeOpenedSaysWhy)
{
    const FSRef inside = refAt(folder.path());
    EXPECT_EQ(FSOpenResFile(&inside, fsRdPerm), -1);
    EXPECT_EQ(ResError(), notAFileErr);
    FSRef gone = fileWithData(folder, "gone", {});
    ASSERT_EQ(FSDeleteObject(&gone), noErr);
    EXPECT_EQ(FSOpenResFile(&gone, fsRdPerm), -1);
    EXPECT_EQ(ResError(), fnfErr);
    EXPECT_EQ(FSOpenResFile(nullptr, fsRdPerm), -1);
    EXPECT_EQ(ResError(), paramErr);
}

TEST_F(ResourceChain, AFileWhoseNameHasNoRoomForASidecarIsReadItself)
{
    OpenResources open(fileWithData(folder, std::string(255, 'n'), forkOf({{1, "inside"}})));
    EXPECT_EQ(ResError(), noErr);
    EXPECT_EQ(contentOf(GetResource(text, 1)), "inside");
}

TEST_F(ResourceChain, EachThreadHasItsOwnResult)
{
    OpenResources one(first);
    EXPECT_EQ(GetResource(text, 99), nullptr);
    OSErr others = 1;
    std::thread([&] {
        GetResource(text, 1);
        others = ResError();
    }).join();
    EXPECT_EQ(others, noErr);
    EXPECT_EQ(ResError(), resNotFound);
}

TEST_F(ResourceChain, LargeDataAreReadWhenTheyAreWanted)
{
    constexpr std::uint64_t hole = 12u << 20;
    ForkPlaces places;
    Bytes fork = resourceFork({{text, 1, Bytes(hole, 'x')}, {text, 2, bytesOf("small")}}, &places);
    const FSRef file = fileWithData(folder, "large", fork);
    OpenResources open(file);
    SetResLoad(false);
    EXPECT_EQ(GetResourceSizeOnDisk(GetResource(text, 1)), static_cast<long>(hole));
    EXPECT_EQ(*GetResource(text, 1), nullptr);
    SetResLoad(true);
    EXPECT_EQ(contentOf(GetResource(text, 2)), "small");
    EXPECT_EQ(GetHandleSize(GetResource(text, 1)), static_cast<Size>(hole));
}

}   // namespace
