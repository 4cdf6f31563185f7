// `zerb info` on real files and folders, and names of any shape on the command line.

#include "tests/whole/host_program.h"

#include <gmock/gmock.h>

#include <sys/stat.h>
#include <unistd.h>

namespace
{

using host_tests::HostTest;
using host_tests::Outcome;
using host_tests::runHost;
using host_tests::Setting;
using nlohmann::json;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

using HostInfo = HostTest;
using HostNames = HostTest;

// ---------------------------------------------------------------------------------------------------------------------
// info

TEST_F(HostInfo, TellsWhatAFileIs)
{
    makeFile("Letter", "12345");
    ASSERT_EQ(chmod(path("Letter").c_str(), 0640), 0);
    json letter = info("Letter");
    EXPECT_EQ(letter["kind"], "file");
    EXPECT_EQ(letter["name"], "Letter");
    EXPECT_EQ(letter["short_name"], "Letter");
    EXPECT_EQ(letter["path"], path("Letter"));
    EXPECT_EQ(letter["forks"]["data"]["logical_size"], 5);
    EXPECT_EQ(letter["forks"]["resource"]["logical_size"], 0);
    EXPECT_EQ(letter["forks"]["data"]["open"], false);
    EXPECT_EQ(letter["finder"]["type_code"], 0);
    EXPECT_EQ(letter["lock"]["locked"], false);
    EXPECT_EQ(letter["lock"]["check"]["symbol"], "noErr");
    EXPECT_EQ(letter["access"]["mode"], S_IFREG | 0640);
    EXPECT_EQ(letter["access"]["mode_text"], "-rw-r-----");
    EXPECT_EQ(letter["access"]["owner_id"], getuid());
    EXPECT_EQ(letter["dates"]["backed_up"], nullptr);
}

TEST_F(HostInfo, TellsWhatAFolderIs)
{
    makeFolder("Folder");
    makeFile("Folder/one");
    makeFile("Folder/two");
    json folderInfo = info("Folder");
    EXPECT_EQ(folderInfo["kind"], "folder");
    EXPECT_EQ(folderInfo["valence"], 2);
    EXPECT_FALSE(folderInfo.contains("forks"));
    EXPECT_FALSE(folderInfo["finder"].contains("type"));
    EXPECT_EQ(info("Folder/one")["parent_id"], folderInfo["node_id"]);
    EXPECT_EQ(info("Folder/one")["volume"], folderInfo["volume"]);
}

TEST_F(HostInfo, IsReadableForPeople)
{
    makeFile("Letter", "12345");
    zerbWell({"set", "--type", "TEXT", "--creator", "0x00000001", "--flags", "+hasBundle", "--label", "blue", "--lock", "Letter"});
    std::string text = zerbWell({"info", "Letter"});
    EXPECT_THAT(text, StartsWith("Letter  file\n"));
    for (const char *line : {"    type            'TEXT'\n", "    creator         0x00000001\n", "    flags           0x2000  hasBundle\n",
                             "    label           blue\n", "    locked          yes\n", "    may change      no, fLckdErr (-45): ",
                             "    data                          5 bytes", "    backed up       never\n"})
        EXPECT_THAT(text, HasSubstr(line));
    EXPECT_THAT(text, Not(HasSubstr("\x1B"))) << "no colours where there is no terminal";
}

TEST_F(HostInfo, ShowsDatesInLocalTime)
{
    makeFile("Letter");
    zerbWell({"set", "--created", "2001-02-03T04:05:06.5Z", "Letter"});
    Outcome outcome = zerb({"info", "Letter"}, {"TZ=NST3:30"});
    EXPECT_THAT(outcome.output, HasSubstr("created         2001-02-03T00:35:06.50000-03:30  (32768/65536 s)\n"));
}

TEST_F(HostInfo, GoesOnAfterAnErrorAndTellsOfIt)
{
    makeFile("here");
    Outcome outcome = zerb({"info", "--json", "missing", "here"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, StartsWith("zerb: info: missing: fnfErr (-43): "));
    json list = json::parse(outcome.output);
    ASSERT_EQ(list.size(), 2u);
    EXPECT_EQ(list[0]["path"], "missing");
    EXPECT_EQ(list[0]["error"]["code"], -43);
    EXPECT_EQ(list[0]["error"]["symbol"], "fnfErr");
    EXPECT_EQ(list[1]["name"], "here");
}

TEST_F(HostInfo, FollowsALinkOnlyIfItMay)
{
    makeFile("target");
    ASSERT_EQ(symlink("target", path("link").c_str()), 0);
    EXPECT_EQ(info("link")["name"], "target");
    json link = info("link", {"--no-follow"});
    EXPECT_EQ(link["name"], "link");
    EXPECT_EQ(link["kind"], "symbolic_link");
    EXPECT_EQ(link["finder"]["type"], "slnk");
    EXPECT_EQ(link["finder"]["creator"], "rhap");
    EXPECT_EQ(info("target", {"-P"})["kind"], "file");
}

TEST_F(HostInfo, TakesALinkThatLeadsNowhereForItselfAlone)
{
    ASSERT_EQ(symlink("nothing", path("link").c_str()), 0);
    expectFailure(zerb({"info", "link"}), "link", "fnfErr (-43)");
    EXPECT_EQ(info("link", {"-P"})["name"], "link");
}

TEST_F(HostInfo, ChangesNothing)
{
    makeFile("Letter", "12345");
    makeFolder("Folder");
    std::string before = support::pictureOf(folder().path());
    zerbWell({"info", "Letter", "Folder", "."});
    zerbWell({"info", "--json", "Letter", "Folder", "."});
    EXPECT_EQ(support::pictureOf(folder().path()), before);
}

TEST_F(HostInfo, FailsIfItsOutputIsLost)
{
    makeFile("Letter");
    Setting setting;
    setting.directory = folder().path();
    setting.outputFile = "/dev/full";
    Outcome outcome = runHost({"info", "Letter"}, setting);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("could not be written"));
}

// ---------------------------------------------------------------------------------------------------------------------
// Names

TEST_F(HostNames, OfAnyShapeComeThrough)
{
    const char *names[] = {"[a,b]",    "[x]", "{}", "%%", "-dash", "--type=",   "a=b",       "a b",
                           "'quoted'", "\"",  "*",  "\\", "info",  "caf\u00E9", "cafe\u0301"};
    for (const char *name : names)
    {
        makeFile(name);
        EXPECT_EQ(info(name)["path"], path(name));
        EXPECT_EQ(info(name, {"--no-follow"})["path"], path(name));
        EXPECT_EQ(zerb({"set", "--type", "TEXT", "--", name}).status, 0) << name;
        EXPECT_EQ(info(name)["finder"]["type"], "TEXT") << name;
    }
}

TEST_F(HostNames, ThatAreNoTextAreEscaped)
{
    struct Odd
    {
        const char *onDisk, *inJson, *forPeople;
    };
    const Odd odd[] = {{"bad\xFF", R"("name": "bad\udcff")", "bad\\xFF  file\n"},
                       {"half\xED\xA0\x80", R"("name": "half\ud800")", "half\\xED\\xA0\\x80  file\n"},
                       {"a:b", R"("name": "a/b")", "a/b  file\n"},
                       {"line\nend\x1B[31m", R"("name": "line\nend\u001b[31m")", "line\\x0Aend\\x1B[31m  file\n"}};
    for (const Odd &one : odd)
    {
        makeFile(one.onDisk);
        for (const char *links : {"--json", "-P"})   // once by its path, once by its folder and its name
            EXPECT_THAT(zerbWell({"info", "--json", links, one.onDisk}), HasSubstr(one.inJson));
        EXPECT_THAT(zerbWell({"info", one.onDisk}), StartsWith(one.forPeople));
    }
}

TEST_F(HostNames, TooLongForAFileSpecificationHaveAShortOne)
{
    std::string name = "A name that is much longer than thirty-one bytes.txt";
    makeFile(name);
    json longOne = info(name);
    EXPECT_EQ(longOne["name"], name);
    EXPECT_NE(longOne["short_name"], name);
    EXPECT_THAT(zerbWell({"info", name}), HasSubstr("    short name      " + longOne["short_name"].get<std::string>() + "\n"));
}

}   // namespace
