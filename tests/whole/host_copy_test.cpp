// The host's command that copies files: copy.

#include "tests/whole/host_program.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <unistd.h>

namespace
{

using host_tests::HostTest;
using host_tests::Outcome;
using host_tests::Words;
using testing::HasSubstr;
using testing::Not;

class HostCopy : public HostTest
{
protected:
    bool exists(const std::string &name) const { return std::filesystem::exists(std::filesystem::symlink_status(path(name))); }

    std::string contents(const std::string &name) const
    {
        std::ifstream stream(path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    }

    // A file with everything: type, label, an old date, a resource fork of 3 MB.
    void makeLetter() const
    {
        makeFile("Letter", "Dear Ada");
        makeFile("bytes", resource);
        zerbWell({"set", "--type", "TEXT", "--creator", "ttxt", "--label", "red", "--created", "1991-05-13T09:00:00Z", "Letter"});
        zerbWell({"forks", "import", "--resource", "Letter", "--from", "bytes"});
    }

    void expectCopy(const std::string &name) const
    {
        nlohmann::json copy = info(name);
        nlohmann::json original = info("Letter");
        EXPECT_EQ(contents(name), "Dear Ada") << name;
        EXPECT_TRUE(zerbWell({"forks", "dump", "--raw", "--resource", "--", name}) == resource) << name;
        for (const char *member : {"type", "creator", "flags", "label"})
            EXPECT_EQ(copy["finder"][member], original["finder"][member]) << name;
        EXPECT_EQ(copy["dates"]["created"], original["dates"]["created"]) << name;
        EXPECT_EQ(copy["dates"]["modified"], original["dates"]["modified"]) << name;
    }

    void expectNoTemporaries() const
    {
        for (const auto &entry : std::filesystem::recursive_directory_iterator(folder().path()))
            EXPECT_THAT(entry.path().filename().string(), Not(HasSubstr("zerb-")));
    }

    const std::string resource = std::string(1'500'000, 'r') + std::string(1'500'000, '\0') + "end";
};

TEST_F(HostCopy, TakesEverythingAlong)
{
    makeLetter();
    makeFolder("Folder");
    EXPECT_EQ(zerbWell({"copy", "-v", "Letter", "bytes", "Folder"}),
              "Letter -> Folder/Letter, by the volume\nbytes -> Folder/bytes, by the volume\n");
    expectCopy("Folder/Letter");
    EXPECT_EQ(zerbWell({"copy", "-v", "Letter", "Brief"}), "Letter -> ./Brief, by the volume\n");
    expectCopy("Brief");
    EXPECT_EQ(zerbWell({"copy", "-v", "--sync", "Letter", "Folder/Brief"}), "Letter -> Folder/Brief, by the volume\n");
    expectCopy("Folder/Brief");
}

TEST_F(HostCopy, GivesAnyNameByWayOfATemporaryOne)
{
    makeLetter();
    for (const std::string name : {"a name with more than thirty-one characters", "\u65E5\u672C", "\u00E9", "new\nline\u2026", "\u2212-"})
    {
        EXPECT_THAT(zerbWell({"copy", "-v", "Letter", name}), HasSubstr(", by the volume, by way of a temporary name\n"));
        ASSERT_TRUE(exists(name)) << name;
        expectCopy(name);
        expectFailure(zerb({"copy", "Letter", name}), "Letter", "dupFNErr (-48)");
    }
    zerbWell({"copy", "Letter", "bad\xFF"});
    EXPECT_EQ(contents("bad\xFF"), "Dear Ada");
    zerbWell({"set", "--lock", "Letter"});
    zerbWell({"copy", "Letter", "\u65E5\u672C\u8A9E"});
    EXPECT_EQ(info("\u65E5\u672C\u8A9E")["lock"]["locked"], true);
    zerbWell({"set", "--unlock", "\u65E5\u672C\u8A9E"});
    expectNoTemporaries();
}

TEST_F(HostCopy, NeverReplacesAndGoesOn)
{
    makeLetter();
    makeFolder("Folder");
    makeFile("Folder/Letter", "precious");
    makeFile("Other", "other");
    Outcome outcome = zerb({"copy", "Letter", "missing", "Other", "Folder"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("zerb: copy: Letter: copying to Folder/Letter: dupFNErr (-48): there is already a file"));
    EXPECT_THAT(outcome.errors, HasSubstr("zerb: copy: missing: fnfErr (-43)"));
    EXPECT_EQ(contents("Folder/Letter"), "precious");
    EXPECT_EQ(contents("Folder/Other"), "other");
    expectFailure(zerb({"copy", "Letter", "Other"}), "Letter", "dupFNErr (-48)");
    expectFailure(zerb({"copy", "--by-forks", "Letter", "Other"}), "Letter", "dupFNErr (-48)");
    EXPECT_EQ(contents("Other"), "other");
    expectNoTemporaries();
}

TEST_F(HostCopy, RefusesFoldersAndPlacesThatAreNotThere)
{
    makeFile("Letter");
    makeFolder("Folder");
    Outcome outcome = zerb({"copy", "Folder", "Second"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors, "zerb: copy: Folder: is a folder; only files are copied here\n");
    expectFailure(zerb({"copy", "Letter", "missing/"}), "missing/", "copying to it: dirNFErr (-120)");
    expectFailure(zerb({"copy", "Letter", "missing/Letter"}), "missing/Letter", "copying to it: dirNFErr (-120)");
    expectFailure(zerb({"copy", "Letter", "Letter", "missing"}), "missing", "fnfErr (-43)");
    expectFailure(zerb({"copy", "Letter", "Letter/x"}), "Letter", "errFSNotAFolder (-1407)");
}

TEST_F(HostCopy, FollowsLinksUnlessToldNotTo)
{
    makeFile("Letter", "text");
    makeFolder("Folder");
    ASSERT_EQ(symlink("Letter", path("link").c_str()), 0);
    zerbWell({"copy", "link", "Folder"});
    EXPECT_TRUE(std::filesystem::is_regular_file(std::filesystem::symlink_status(path("Folder/link"))));
    EXPECT_EQ(contents("Folder/link"), "text");
    zerbWell({"copy", "-P", "link", "Folder/second"});
    EXPECT_TRUE(std::filesystem::is_symlink(path("Folder/second")));
    expectFailure(zerb({"copy", "-P", "--by-forks", "link", "Folder/third"}), "link", "notAFileErr (-1302): only plain files");
    expectNoTemporaries();
}

TEST_F(HostCopy, GoesForkByForkWhereTheVolumeDoesNotCopy)
{
    makeLetter();
    Words disk = {"ZERB_STARTUP_VOLUME=" + folder().path() + ",nocopyfile"};
    Outcome outcome = zerb({"copy", "Letter", "Copy"}, disk);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("zerb: copy: Letter: copying to ./Copy: paramErr (-50)"));
    EXPECT_THAT(outcome.errors, HasSubstr("has no service that copies files; --by-forks does without"));
    EXPECT_FALSE(exists("Copy"));
    outcome = zerb({"copy", "-v", "--by-forks", "Letter", "Copy"}, disk);
    EXPECT_EQ(outcome.output, "Letter -> ./Copy, fork by fork\n") << outcome.errors;
    expectCopy("Copy");
    EXPECT_EQ(info("Copy")["access"]["mode"], info("Letter")["access"]["mode"]);
    EXPECT_EQ(zerb({"copy", "--by-forks", "--sync", "Letter", "Copy"}).status, 2);
    expectNoTemporaries();
}

TEST_F(HostCopy, TellsHowFarItIs)
{
    makeLetter();
    makeFolder("Folder");
    for (const Words &way : {Words{"copy", "--progress"}, Words{"copy", "--progress", "--by-forks"}})
    {
        Words words = way;
        words.insert(words.end(), {"Letter", "bytes", "Folder/"});
        Outcome outcome = zerb(words);
        EXPECT_EQ(outcome.status, 0);
        EXPECT_EQ(outcome.errors, "copying: 6.0 MB of 6.0 MB\n");
        std::filesystem::remove_all(path("Folder"));
        makeFolder("Folder");
    }
}

}   // namespace
