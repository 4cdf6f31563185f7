// The host's commands on special folders, paths with colons and small files; and the example that goes the whole round.

#include "tests/standin/processes.h"
#include "tests/whole/host_program.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

using host_tests::HostTest;
using host_tests::Outcome;
using host_tests::runHost;
using host_tests::Setting;
using host_tests::Words;
using nlohmann::json;
using support::bytesOf;
using support::exists;
using support::readFile;
using testing::HasSubstr;

// All of them work on a disk of the test's own.
class HostFolders : public HostTest
{
protected:
    Words onOwnDisk() const { return {"ZERB_STARTUP_VOLUME=" + folder().path()}; }
    Outcome zerbHere(const Words &words) const { return zerb(words, onOwnDisk()); }
    std::string zerbHereWell(const Words &words) const
    {
        const Outcome outcome = zerbHere(words);
        EXPECT_EQ(outcome.status, 0) << outcome.errors;
        EXPECT_EQ(outcome.errors, "");
        return outcome.output;
    }
    mode_t modeOf(const std::string &name) const { return support::statxOf(path(name)).stx_mode & 07777; }
};

// ---------------------------------------------------------------------------------------------------------------------
// folder

TEST_F(HostFolders, FoldersAreShownWithNamePathAndColons)
{
    std::filesystem::create_directories(path("Library/Preferences"));
    EXPECT_EQ(zerbHereWell({"folder", "preferences"}),
              "preferences\n  name        Preferences\n  path        /Library/Preferences\n  colon path  :Library:Preferences:\n");
    const json all = json::parse(zerbHere({"folder", "--json"}).output);
    ASSERT_EQ(all.size(), 3u);
    EXPECT_EQ(all[0]["colon_path"], ":Library:Preferences:");
    EXPECT_EQ(all[1]["kind"], "user-preferences");
    EXPECT_EQ(all[1]["error"]["symbol"], "fnfErr");
    EXPECT_EQ(all[2]["kind"], "system-desktop");
}

TEST_F(HostFolders, MissingFoldersAreNotMade)
{
    const Outcome outcome = zerbHere({"folder"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("system-desktop: fnfErr (-43)"));
    EXPECT_TRUE(support::namesIn(folder().path()).empty());
}

TEST_F(HostFolders, TheSharedFolderIsMadeOnceAndThenFound)
{
    const std::string shown = zerbHereWell({"folder", "shared"});
    EXPECT_EQ(shown, "shared\n  name        Zerb\n  path        /Users/Shared/Zerb\n  colon path  :Users:Shared:Zerb:\n");
    const auto inode = support::statxOf(path("Users/Shared/Zerb")).stx_ino;
    EXPECT_EQ(zerbHereWell({"folder", "shared"}), shown);
    EXPECT_EQ(support::statxOf(path("Users/Shared/Zerb")).stx_ino, inode);
    EXPECT_EQ(support::namesIn(path("Users/Shared")), std::vector<std::string>{"Zerb"});
}

// One of two may be told that the other made it first.
TEST_F(HostFolders, TheSharedFolderIsMadeByTwoProcessesAtOnce)
{
    for (int round = 0; round < 5; ++round)
    {
        std::filesystem::remove_all(path("Users"));
        const std::string program = built("zerb");
        support::Running first = support::start({program, "folder", "shared"}, onOwnDisk());
        support::Running second = support::start({program, "folder", "shared"}, onOwnDisk());
        int made = 0;
        for (support::Running *each : {&first, &second})
        {
            const support::Ended ended = each->wait();
            made += ended.status == 0;
            EXPECT_TRUE(ended.status == 0 || ended.output.find("dupFNErr") != std::string::npos) << ended.output;
        }
        EXPECT_GE(made, 1);
        EXPECT_THAT(zerbHereWell({"folder", "shared"}), HasSubstr(":Users:Shared:Zerb:"));
    }
}

TEST_F(HostFolders, TheEnvironmentPutsThemElsewhere)
{
    Words environment = onOwnDisk();
    environment.push_back("ZERB_SHARED_DATA_FOLDER=/Data/All");
    EXPECT_THAT(zerb({"folder", "shared"}, environment).output, HasSubstr("/Data/All/Zerb\n"));
    EXPECT_TRUE(exists(path("Data/All/Zerb")));
}

TEST_F(HostFolders, UnknownKindsAreRefused)
{
    EXPECT_EQ(zerbHere({"folder", "trash"}).status, 2);
    EXPECT_EQ(zerbHere({"folder", "shared", "trash"}).status, 2);
    EXPECT_TRUE(support::namesIn(folder().path()).empty());
}

// ---------------------------------------------------------------------------------------------------------------------
// colon

TEST_F(HostFolders, PathsComeWithColonsAndBack)
{
    std::filesystem::create_directories(path("Work/Old"));
    makeFile("Work/Reply");
    EXPECT_EQ(zerbHereWell({"colon", ".", "Work", "Work/Old", "Work/Reply"}), ":\n:Work:\n:Work:Old:\n:Work:Reply\n");
    EXPECT_EQ(zerbHereWell({"colon", "--from", ":", ":Work:", ":Work:Old", ":Work:Reply"}), "/\n/Work\n/Work/Old\n/Work/Reply\n");
    const json shown = json::parse(zerbHereWell({"colon", "--json", "Work"}));
    EXPECT_EQ(shown[0], (json{{"asked_for", "Work"}, {"colon_path", ":Work:"}, {"path", "/Work"}, {"leads_back", true}}));
}

// A slash in a name is a colon on the disk; neither that nor a short form is found by a path.
TEST_F(HostFolders, PathsThatDoNotLeadBackAreRemarkedOn)
{
    const std::string longName = "a folder's name of more than 31 bytes";
    std::filesystem::create_directories(path("1:2"));
    std::filesystem::create_directories(path(longName));
    Outcome outcome = zerbHere({"colon", "1:2"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, ":1/2:\n");
    EXPECT_THAT(outcome.errors, HasSubstr("does not lead back"));
    EXPECT_EQ(zerbHere({"new", ":1/2:file"}).status, 1);
    EXPECT_THAT(zerbHere({"colon", longName}).errors, HasSubstr("does not lead back"));
    EXPECT_EQ(json::parse(zerbHere({"colon", "--json", longName}).output)[0]["leads_back"], false);
}

TEST_F(HostFolders, PathsThatAreTooLongAreRefused)
{
    std::string deep;
    for (int level = 0; level < 10; ++level)
        deep += "/" + std::string(29, static_cast<char>('a' + level));
    std::filesystem::create_directories(path("") + deep);
    const Outcome outcome = zerbHere({"colon", deep.substr(1)});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("bdNamErr (-37)"));
}

TEST_F(HostFolders, OtherVolumesHaveNoPathsWithColons)
{
    const support::TemporaryFolder other;
    const Outcome outcome =
        zerb({"colon", "/Volumes/Other"}, {"ZERB_STARTUP_VOLUME=" + folder().path(), "ZERB_VOLUMES=Other=" + other.path()});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("diffVolErr"));
}

// ---------------------------------------------------------------------------------------------------------------------
// new, cat, rm --colon, writable

TEST_F(HostFolders, FilesAreMadeWithTypeAndCreator)
{
    std::filesystem::create_directories(path("Users/Shared"));
    EXPECT_EQ(zerbHereWell({"new", "--type", "TEXT", "--creator", "ttxt", ":Users:Shared:data"}), "");
    const json shown = json::parse(zerbHereWell({"info", "--json", "Users/Shared/data"}));
    EXPECT_EQ(shown[0]["finder"]["type"], "TEXT") << shown[0].dump(1);
    EXPECT_EQ(shown[0]["finder"]["creator"], "ttxt");
    expectFailure(zerbHere({"new", ":Users:Shared:data"}), ":Users:Shared:data", "dupFNErr (-48)");
    expectFailure(zerbHere({"new", ":Nowhere:data"}), ":Nowhere:data", "fnfErr (-43)");
    EXPECT_FALSE(exists(path("Nowhere")));
}

TEST_F(HostFolders, BytesOfFilesAreWrittenOut)
{
    std::string all;
    for (int byte = 0; byte < 256; ++byte)
        all += static_cast<char>(byte);
    makeFile("first", all);
    makeFile("second", "end");
    EXPECT_EQ(zerbHereWell({"cat", ":first", ":second"}), all + "end");
    expectFailure(zerbHere({"cat", ":missing"}), ":missing", "fnfErr (-43)");
}

struct EncodedPath
{
    const char *encoding, *typed, *onDisk;
};

class HostEncodedPaths : public HostFolders, public testing::WithParamInterface<EncodedPath>
{
};

TEST_P(HostEncodedPaths, ReachTheSameFile)
{
    const auto &[encoding, typed, onDisk] = GetParam();
    std::filesystem::create_directories(std::filesystem::path(path(onDisk)).parent_path());
    zerbHereWell({"new", "--encoding", encoding, typed});
    ASSERT_TRUE(exists(path(onDisk)));
    makeFile(onDisk, "text");
    EXPECT_EQ(zerbHereWell({"cat", typed}), "text");
    EXPECT_EQ(zerbHereWell({"cat", "--encoding", encoding, typed}), "text");
    EXPECT_EQ(zerbHereWell({"rm", "--force", "--verbose", "--colon", "--encoding", encoding, typed}),
              std::string("deleted ") + typed + "\n");
    EXPECT_FALSE(exists(path(onDisk)));
}

INSTANTIATE_TEST_SUITE_P(Encodings, HostEncodedPaths,
                         testing::Values(EncodedPath{"utf-8", ":Résumés:Ärger…", "Résumés/Ärger…"},
                                         EncodedPath{"roman", ":Résumés:Ärger…", "Résumés/Ärger…"},
                                         EncodedPath{"cyrillic", ":Папка:Файл", "Папка/Файл"},
                                         EncodedPath{"japanese", ":日本:本", "日本/本"}),
                         [](const auto &row) {
                             std::string name = row.param.encoding;
                             std::erase(name, '-');
                             return name;
                         });

// What stands before the last of two colons is the root; before a single one there is nothing.
TEST_F(HostFolders, AFileInTheRootIsMadeWithTwoColons)
{
    const Outcome outcome = zerbHere({"new", ":Notes"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("fnfErr (-43)"));
    EXPECT_THAT(outcome.errors, HasSubstr("::Notes"));
    zerbHereWell({"new", "::Notes"});
    EXPECT_EQ(support::namesIn(folder().path()), std::vector<std::string>{"Notes"});
    EXPECT_EQ(zerbHereWell({"cat", ":Notes", "::Notes"}), "");
}

// New names are stored composed; others store them decomposed.
TEST_F(HostFolders, ComposedAndDecomposedPathsReachTheSameFile)
{
    const std::string composed = "R\u00E9sum\u00E9", decomposed = "Re\u0301sume\u0301";
    zerbHereWell({"new", "::" + decomposed});
    EXPECT_EQ(support::namesIn(folder().path()), std::vector<std::string>{composed});
    makeFile(composed, "text");
    makeFolder(decomposed + " folder");
    makeFile(decomposed + " folder/" + decomposed, "below");
    for (const char *encoding : {"utf-8", "roman"})
        for (const std::string &form : {composed, decomposed})
        {
            EXPECT_EQ(zerbHereWell({"cat", "--encoding", encoding, ":" + form}), "text");
            EXPECT_EQ(zerbHereWell({"cat", "--encoding", encoding, ":" + form + " folder:" + form}), "below");
        }
    makeFile(decomposed, "of its own");
    EXPECT_EQ(zerbHereWell({"cat", ":" + decomposed}), "of its own") << "the path's own form comes first";
    EXPECT_EQ(zerbHereWell({"cat", ":" + composed}), "text");
}

TEST_F(HostFolders, PathsThatAnEncodingCannotSayAreRefused)
{
    const Outcome outcome = zerbHere({"new", "--encoding", "roman", ":Папка"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("cannot be said in this encoding"));
    EXPECT_EQ(zerbHere({"new", ":" + std::string(255, 'x')}).status, 1);
    EXPECT_EQ(zerbHere({"new", "--encoding", "klingon", ":x"}).status, 2);
    EXPECT_TRUE(support::namesIn(folder().path()).empty());
}

TEST_F(HostFolders, NothingIsReachedOutsideOfTheDisk)
{
    const support::TemporaryFolder outside;
    support::writeFile(outside / "secret", "secret");
    symlink(outside.path().c_str(), path("Way").c_str());
    EXPECT_EQ(zerbHere({"cat", ":Way:secret"}).status, 1);
    EXPECT_EQ(zerbHere({"new", ":Way:file"}).status, 1);
    EXPECT_EQ(zerbHere({"rm", "--force", "--colon", ":Way:secret"}).status, 1);
    EXPECT_EQ(support::namesIn(outside.path()), std::vector<std::string>{"secret"});
}

TEST_F(HostFolders, DeletingByColonsAsksAndTakesNoFullFolders)
{
    std::filesystem::create_directories(path("Work/Old"));
    makeFile("Work/Reply");
    symlink("Work/Reply", path("Way").c_str());
    EXPECT_THAT(zerbHere({"rm", "--colon", ":Work:Reply"}).errors, HasSubstr("no terminal to ask at"));
    EXPECT_TRUE(exists(path("Work/Reply")));
    expectFailure(zerbHere({"rm", "--force", "--colon", ":Work"}), ":Work", "fBsyErr (-47)");
    zerbHereWell({"rm", "--force", "--colon", ":Work:Old:", ":Way"});
    EXPECT_TRUE(exists(path("Way"))) << "the link was followed";
    EXPECT_TRUE(support::namesIn(path("Work")).empty());
    EXPECT_EQ(zerbHere({"rm", "--colon", "--recursive", ":Work"}).status, 2);
    EXPECT_EQ(zerbHere({"rm", "--encoding", "roman", "Work"}).status, 2);
}

TEST_F(HostFolders, EverybodyMayWriteAfterwards)
{
    const std::pair<mode_t, mode_t> modes[] = {{0644, 0666}, {0600, 0622}, {0444, 0666}, {0750, 0772}, {04755, 04777}};
    makeFile("file");
    for (const auto &[before, after] : modes)
    {
        ASSERT_EQ(chmod(path("file").c_str(), before), 0);
        zerbHereWell({"writable", "file"});
        EXPECT_EQ(modeOf("file"), after);
    }
    expectFailure(zerbHere({"writable", "missing"}), "missing", "fnfErr (-43)");
}

TEST_F(HostFolders, ALockedFileDoesNotBecomeWritable)
{
    makeFile("file");
    ASSERT_EQ(chmod(path("file").c_str(), 0644), 0);
    zerbHereWell({"set", "--lock", "file"});
    expectFailure(zerbHere({"writable", "file"}), "file", "fLckdErr (-45)");
    EXPECT_EQ(modeOf("file"), 0644u);
}

// ---------------------------------------------------------------------------------------------------------------------
// The example

TEST_F(HostFolders, TheExampleGoesTheWholeRound)
{
    Setting setting{.directory = folder().path(), .environment = onOwnDisk(), .outputFile = {}, .program = built("small_files")};
    makeFolder("Work");
    const Outcome outcome = runHost({":Work:Hello"}, setting);
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_EQ(outcome.output, "Hello from a path with colons.\n");
    EXPECT_TRUE(support::namesIn(path("Work")).empty());
    EXPECT_THAT(runHost({":Nowhere:Hello"}, setting).errors, HasSubstr("making: fnfErr (-43)"));
    makeFile("Work/Mine", "mine");
    EXPECT_THAT(runHost({":Work:Mine"}, setting).errors, HasSubstr("making: dupFNErr (-48)"));
    EXPECT_EQ(readFile(path("Work/Mine")), bytesOf("mine"));
}

}   // namespace
