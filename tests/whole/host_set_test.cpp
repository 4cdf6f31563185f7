// The host's commands that change what is known of an object: set, touch and attrs.

#include "tests/whole/host_program.h"

#include <gmock/gmock.h>

namespace
{

using host_tests::HostTest;
using host_tests::Outcome;
using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

using HostSet = HostTest;
using HostTouch = HostTest;
using HostAttrs = HostTest;

json flagNames(const json &info)
{
    return info["finder"]["flags"]["names"];
}

// ---------------------------------------------------------------------------------------------------------------------
// set

TEST_F(HostSet, ChangesManyThingsAtOnce)
{
    makeFile("Letter");
    EXPECT_EQ(zerbWell({"set", "Letter", "--type", "TEXT", "--creator", "ttxt", "--flags", "+hasBundle,+isShared", "--label", "red",
                        "--invisible", "--created", "1991-05-13T09:00:00Z", "--modified", "1995-08-24T12:30:15.5Z", "--backup",
                        "@1000000000", "--encoding", "7"}),
              "");
    json letter = info("Letter");
    EXPECT_EQ(letter["finder"]["type"], "TEXT");
    EXPECT_EQ(letter["finder"]["creator"], "ttxt");
    EXPECT_THAT(flagNames(letter), ElementsAre("isShared", "hasBundle", "isInvisible"));
    EXPECT_EQ(letter["finder"]["label"]["name"], "red");
    EXPECT_EQ(letter["dates"]["created"]["iso"], "1991-05-13T09:00:00Z");
    EXPECT_EQ(letter["dates"]["modified"]["iso"], "1995-08-24T12:30:15.50000Z");
    EXPECT_EQ(letter["dates"]["modified"]["fraction_65536"], 32768);
    EXPECT_EQ(letter["dates"]["backed_up"]["seconds_since_1904"], 1000000000 + 2082844800LL);
    EXPECT_EQ(letter["text_encoding"]["hint"], 7);
}

TEST_F(HostSet, LeavesTheRestAlone)
{
    makeFile("Letter", "12345");
    zerbWell({"set", "--type", "TEXT", "--creator", "ttxt", "--stationery", "--backup", "@5", "Letter"});
    json before = info("Letter");
    zerbWell({"set", "--creator", "R*ch", "Letter"});
    json after = info("Letter");
    before["finder"]["creator"] = "R*ch";
    before["finder"]["creator_code"] = 0x522A6368;
    before["dates"]["attributes_modified"] = after["dates"]["attributes_modified"];
    EXPECT_EQ(after, before);
}

TEST_F(HostSet, SetsACodeToNone)
{
    makeFile("Letter");
    zerbWell({"set", "--type", "TEXT", "--creator", "ttxt", "Letter"});
    zerbWell({"set", "--type", "0", "Letter"});
    EXPECT_EQ(info("Letter")["finder"]["type_code"], 0);
    EXPECT_EQ(info("Letter")["finder"]["creator"], "ttxt");
    zerbWell({"set", "--creator=", "--type", "PICT", "Letter"});
    EXPECT_EQ(info("Letter")["finder"]["type"], "PICT");
    EXPECT_EQ(info("Letter")["finder"]["creator_code"], 0);
}

TEST_F(HostSet, SwitchesEachFlagOnAndOff)
{
    struct Switch
    {
        const char *on, *off, *flag;
    };
    const Switch switches[] = {{"--invisible", "--visible", "isInvisible"},
                               {"--name-locked", "--name-unlocked", "nameLocked"},
                               {"--stationery", "--no-stationery", "isStationery"},
                               {"--custom-icon", "--no-custom-icon", "hasCustomIcon"}};
    makeFile("Letter");
    for (const Switch &one : switches)
    {
        zerbWell({"set", one.on, "Letter"});
        EXPECT_THAT(flagNames(info("Letter")), ElementsAre(one.flag));
        zerbWell({"set", one.off, "Letter"});
        EXPECT_EQ(flagNames(info("Letter")), json::array()) << one.off;
    }
}

TEST_F(HostSet, ClearsTheFindersMark)
{
    makeFile("Letter");
    zerbWell({"set", "--set-flags", "0x4100", "Letter"});
    zerbWell({"set", "--clear-inited", "Letter"});
    EXPECT_EQ(info("Letter")["finder"]["flags"]["value"], 0x4000);
    zerbWell({"set", "--clear-flags", "0x4000", "Letter"});
    EXPECT_EQ(info("Letter")["finder"]["flags"]["value"], 0);
}

TEST_F(HostSet, ChangesALabelWithoutATraceOfTheOldOne)
{
    makeFile("Letter");
    for (const char *label : {"orange", "gray", "red", "none"})
    {
        zerbWell({"set", "--label", label, "Letter"});
        EXPECT_EQ(info("Letter")["finder"]["label"]["name"], label);
    }
}

TEST_F(HostSet, RefusesToChangeWhatIsLocked)
{
    makeFile("Letter");
    zerbWell({"set", "--type", "TEXT", "--lock", "Letter"});
    EXPECT_EQ(info("Letter")["lock"]["locked"], true);
    EXPECT_EQ(info("Letter")["lock"]["check"]["symbol"], "fLckdErr");
    Outcome outcome = zerb({"set", "--type", "PICT", "Letter"});
    expectFailure(outcome, "Letter", "fLckdErr (-45)");
    EXPECT_THAT(outcome.errors, HasSubstr("type and creator: "));
    EXPECT_THAT(outcome.errors, HasSubstr("--unlock"));
    EXPECT_EQ(info("Letter")["finder"]["type"], "TEXT");
}

TEST_F(HostSet, UnlocksBeforeItChanges)
{
    makeFile("Letter");
    zerbWell({"set", "--lock", "Letter"});
    zerbWell({"set", "--type", "PICT", "--unlock", "Letter"});
    EXPECT_EQ(info("Letter")["lock"]["locked"], false);
    EXPECT_EQ(info("Letter")["finder"]["type"], "PICT");
}

TEST_F(HostSet, DoesNotLockAfterAFailure)
{
    makeFolder("Folder");
    expectFailure(zerb({"set", "--type", "PICT", "--lock", "Folder"}), "Folder", "notAFileErr (-1302)");
    EXPECT_EQ(info("Folder")["lock"]["locked"], false);
}

TEST_F(HostSet, GivesFoldersNoTypeButFlags)
{
    makeFolder("Folder");
    expectFailure(zerb({"set", "--type", "0", "Folder"}), "Folder", "notAFileErr (-1302)");
    zerbWell({"set", "--invisible", "--label", "green", "Folder"});
    EXPECT_THAT(flagNames(info("Folder")), ElementsAre("isInvisible"));
    EXPECT_EQ(info("Folder")["finder"]["label"]["number"], 2);
}

TEST_F(HostSet, GoesOnToTheNextObjectAfterAFailure)
{
    makeFile("first");
    makeFile("last");
    Outcome outcome = zerb({"set", "--type", "TEXT", "first", "missing", "last"});
    expectFailure(outcome, "missing", "fnfErr (-43)");
    EXPECT_EQ(info("first")["finder"]["type"], "TEXT");
    EXPECT_EQ(info("last")["finder"]["type"], "TEXT");
}

TEST_F(HostSet, ReadsLocalDates)
{
    makeFile("Letter");
    EXPECT_EQ(zerb({"set", "--created", "2001-02-03T05:05:06", "Letter"}, {"TZ=CET-1"}).status, 0);
    EXPECT_EQ(info("Letter")["dates"]["created"]["iso"], "2001-02-03T04:05:06Z");
    zerbWell({"set", "--created", "never", "Letter"});
    EXPECT_EQ(info("Letter")["dates"]["created"], nullptr);
}

TEST_F(HostSet, ReadsAccentsAsMacRoman)
{
    makeFile("Letter");
    zerbWell({"set", "--type", "R\u00E9s1", "Letter"});
    EXPECT_EQ(info("Letter")["finder"]["type_code"], 0x528E7331);
    EXPECT_EQ(info("Letter")["finder"]["type"], "R\u00E9s1");
}

// ---------------------------------------------------------------------------------------------------------------------
// touch and attrs

TEST_F(HostTouch, SetsTheModificationDate)
{
    makeFile("Letter");
    zerbWell({"set", "--modified", "1999-01-01T00:00:00Z", "Letter"});
    Outcome outcome = zerb({"touch", "-v", "Letter"}, {"TZ=UTC0"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, StartsWith("Letter: 1999-01-01T00:00:00+00:00 -> 2"));
    EXPECT_GT(info("Letter")["dates"]["modified"]["seconds_since_1904"], 3800000000);
    EXPECT_EQ(zerbWell({"touch", "Letter"}), "");
}

TEST_F(HostTouch, SaysThatALockedDateStays)
{
    makeFile("Letter");
    zerbWell({"set", "--modified", "1999-01-01T00:00:00Z", "--lock", "Letter"});
    Outcome outcome = zerb({"touch", "-v", "Letter"});
    expectFailure(outcome, "Letter", "fLckdErr (-45)");
    EXPECT_THAT(outcome.errors, HasSubstr("could not be changed"));
    EXPECT_EQ(info("Letter")["dates"]["modified"]["iso"], "1999-01-01T00:00:00Z");
}

TEST_F(HostTouch, MakesNothing)
{
    expectFailure(zerb({"touch", "missing"}), "missing", "fnfErr (-43)");
    EXPECT_TRUE(support::namesIn(folder().path()).empty());
}

TEST_F(HostAttrs, CopiesEverythingButTheLock)
{
    makeFile("Original", "12345");
    makeFile("Copy", "1");
    zerbWell({"set", "--type", "TEXT", "--creator", "ttxt", "--set-flags", "0x4100", "--created", "@5", "--lock", "Original"});
    zerbWell({"attrs", "Original", "Copy"});
    json copy = info("Copy");
    EXPECT_EQ(copy["finder"]["type"], "TEXT");
    EXPECT_EQ(copy["finder"]["creator"], "ttxt");
    EXPECT_THAT(flagNames(copy), ElementsAre("isInvisible")) << "the mark of the Finder is not copied";
    EXPECT_EQ(copy["dates"]["created"]["iso"], "1970-01-01T00:00:05Z");
    EXPECT_EQ(copy["lock"]["locked"], false);
    EXPECT_EQ(copy["forks"]["data"]["logical_size"], 1);
}

TEST_F(HostAttrs, CopiesTheLockIfAsked)
{
    makeFile("Original");
    makeFile("one");
    makeFile("two");
    zerbWell({"set", "--lock", "Original"});
    zerbWell({"attrs", "Original", "one", "two", "--with-lock"});
    EXPECT_EQ(info("one")["lock"]["locked"], true);
    EXPECT_EQ(info("two")["lock"]["locked"], true);
}

TEST_F(HostAttrs, KeepsFilesAndFoldersApart)
{
    makeFile("Original");
    makeFolder("Folder");
    zerbWell({"set", "--type", "TEXT", "Original"});
    expectFailure(zerb({"attrs", "Original", "Folder"}), "Folder", "is a folder");
    expectFailure(zerb({"attrs", "Folder", "Original"}), "Original", "is a file");
    EXPECT_EQ(info("Folder")["finder"]["window_bounds"]["top"], 0);
    EXPECT_EQ(info("Original")["finder"]["type"], "TEXT");
}

}   // namespace
