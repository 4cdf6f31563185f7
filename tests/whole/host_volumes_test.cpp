// The host's commands for volumes: volumes and mount.

#include "tests/standin/mounts.h"
#include "tests/standin/processes.h"
#include "tests/whole/host_program.h"

#include <gmock/gmock.h>

#include <sys/statvfs.h>

namespace
{

using host_tests::HostTest;
using host_tests::Outcome;
using host_tests::Words;
using nlohmann::json;
using support::Bytes;
using support::MountedDisk;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

class HostVolumes : public HostTest
{
protected:
    void SetUp() override
    {
        makeFolder("Startup");
        makeFolder("archive");
        makeFile("archive/file", "data");
    }

    // On a startup volume of their own, with the archive as a locked volume beside it.
    Words ownVolumes() const
    {
        return {"ZERB_STARTUP_VOLUME=" + path("Startup"), "ZERB_VOLUMES=Archive=" + path("archive") + ",locked,nocopyfile"};
    }

    Outcome zerbThere(const Words &words) const { return zerb(words, ownVolumes()); }

    json volumes(const Words &named = {}) const
    {
        Words words{"volumes", "--json"};
        words.insert(words.end(), named.begin(), named.end());
        return json::parse(zerbThere(words).output);
    }

    // Saves the archive's record, and gives its bytes.
    std::string savedRecord() const
    {
        const Outcome outcome = zerbThere({"mount", "save", "Archive", "--to", path("archive.mount")});
        EXPECT_EQ(outcome.status, 0) << outcome.errors;
        EXPECT_EQ(outcome.output, "");
        const Bytes bytes = support::readFile(path("archive.mount"));
        return {bytes.begin(), bytes.end()};
    }
};

TEST_F(HostVolumes, AreListedWithAllThatIsKnown)
{
    const json all = volumes();
    ASSERT_EQ(all.size(), 2u);
    EXPECT_EQ(all[0]["name"], "Startup");
    EXPECT_EQ(all[0]["path"], "/");
    EXPECT_EQ(all[0]["place"], path("Startup"));
    EXPECT_EQ(all[0]["software_locked"], false);
    EXPECT_EQ(all[1]["name"], "Archive");
    EXPECT_EQ(all[1]["path"], "/Volumes/Archive");
    EXPECT_EQ(all[1]["place"], path("archive"));
    EXPECT_EQ(all[1]["kind"], "directory");
    EXPECT_EQ(all[1]["software_locked"], true);
    EXPECT_EQ(all[1]["hardware_locked"], false);
    EXPECT_EQ(all[1]["services"]["copy_file"], false);
    EXPECT_EQ(all[1]["services"]["move_rename"], true);
    struct statvfs disk;
    ASSERT_EQ(statvfs(path("archive").c_str(), &disk), 0);
    EXPECT_EQ(all[1]["total_bytes"], static_cast<std::uint64_t>(disk.f_blocks) * disk.f_frsize);
    EXPECT_NE(all[0]["number"], all[1]["number"]);
}

TEST_F(HostVolumes, AreShownAsATable)
{
    const Outcome outcome = zerbThere({"volumes"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "");
    EXPECT_THAT(outcome.output, StartsWith("NUMBER  NAME"));
    EXPECT_THAT(outcome.output, HasSubstr("\n-100    Startup  "));
    EXPECT_THAT(outcome.output, HasSubstr("\n-101    Archive  "));
    EXPECT_THAT(outcome.output, HasSubstr(" directory  volume  move"));
    EXPECT_THAT(outcome.output, EndsWith("/Volumes/Archive  (" + path("archive") + ")\n"));
}

TEST_F(HostVolumes, AreFoundByNumberNameAndPath)
{
    for (const char *volume : {"Archive", "/Volumes/Archive/file"})
        EXPECT_EQ(volumes({volume}).at(0)["name"], "Archive") << volume;
    EXPECT_EQ(volumes({"--", "-101"}).at(0)["name"], "Archive");
    EXPECT_EQ(volumes({"-101"}).at(0)["name"], "Archive") << "no option is called by a number";
    EXPECT_EQ(volumes({"Archive", "Startup"}).size(), 2u);
}

TEST_F(HostVolumes, ThatAreNotThereAreAFailure)
{
    for (const Words &volume : {Words{"Nothing"}, Words{"12345"}, Words{"--", "-30000"}, Words{"0"}, Words{"999999999999"}})
    {
        Words words{"volumes"};
        words.insert(words.end(), volume.begin(), volume.end());
        expectFailure(zerbThere(words), volume.back(), "nsvErr (-35)");
    }
    const Outcome outcome = zerbThere({"volumes", "--json", "Nothing", "Archive"});
    EXPECT_EQ(outcome.status, 1);
    const json all = json::parse(outcome.output);
    ASSERT_EQ(all.size(), 2u);
    EXPECT_TRUE(all[0].contains("error"));
    EXPECT_EQ(all[1]["name"], "Archive");
}

TEST_F(HostVolumes, OfDisksAreListedWhereTheyAreMounted)
{
    const MountedDisk disk(path("Stick"), MS_RDONLY);
    SKIP_UNLESS_MOUNTED(disk);
    const json all = json::parse(zerbWell({"volumes", "--json"}));
    const auto found = std::find_if(all.begin(), all.end(), [&](const json &each) { return each["path"] == path("Stick"); });
    ASSERT_NE(found, all.end());
    EXPECT_EQ((*found)["name"], "Stick");
    EXPECT_EQ((*found)["kind"], "disk");
    EXPECT_EQ((*found)["file_system"], "tmpfs");
    EXPECT_EQ((*found)["hardware_locked"], true);
    EXPECT_EQ((*found)["total_bytes"], 1 << 20);
    EXPECT_EQ(all[0]["path"], "/");
}

// ---------------------------------------------------------------------------------------------------------------------
// mount

TEST_F(HostVolumes, ARecordBringsADirectoryBack)
{
    savedRecord();
    const Outcome outcome = zerb({"mount", "replay", "--from", "archive.mount"}, {"ZERB_STARTUP_VOLUME=" + path("Startup")});
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, "-101  Archive  /Volumes/Archive\n");
}

TEST_F(HostVolumes, ARecordIsTheSameOnTheStandardOutput)
{
    const std::string record = savedRecord();
    EXPECT_EQ(zerbThere({"mount", "save", "Archive", "--to", "-"}).output, record);
}

TEST_F(HostVolumes, ARecordReplacesNoFile)
{
    makeFile("archive.mount", "precious");
    const Outcome outcome = zerbThere({"mount", "save", "Archive", "--to", path("archive.mount")});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("there is such a file already"));
    EXPECT_EQ(support::readFile(path("archive.mount")), support::bytesOf("precious"));
}

TEST_F(HostVolumes, WhatHasNoRecordIsTold)
{
    const Outcome startup = zerbThere({"mount", "save", "Startup", "--to", path("record")});
    expectFailure(startup, "Startup", "paramErr (-50)");
    EXPECT_THAT(startup.errors, HasSubstr("the startup volume cannot be mounted again"));
    expectFailure(zerbThere({"mount", "save", "Nothing", "--to", path("record")}), "Nothing", "nsvErr (-35)");
    EXPECT_FALSE(support::exists(path("record")));
}

TEST_F(HostVolumes, FilesThatHoldNoRecordAreRefused)
{
    const std::string record = savedRecord();
    for (const std::string &text : {std::string(), std::string("x"), record.substr(0, record.size() - 1), record.substr(0, 2),
                                    std::string(40000, '\0'), record + std::string(40000, 'x'), std::string("\x7F\xFF") + record.substr(2)})
    {
        makeFile("hostile", text);
        expectFailure(zerbThere({"mount", "replay", "--from", path("hostile")}), path("hostile"), "paramErr (-50)");
    }
    const Outcome missing = zerbThere({"mount", "replay", "--from", path("nowhere")});
    EXPECT_EQ(missing.status, 1);
    EXPECT_THAT(missing.errors, HasSubstr("nowhere: No such file or directory"));
    EXPECT_EQ(zerbThere({"mount", "replay", "--from", path("archive")}).status, 1);
    EXPECT_EQ(zerbThere({"mount", "replay"}).status, 2);
    EXPECT_EQ(zerbThere({"mount"}).status, 2);
}

TEST_F(HostVolumes, ARecordMountsADiskAgain)
{
    const MountedDisk disk(path("Stick"), MS_NOSUID);
    SKIP_UNLESS_MOUNTED(disk);
    if (!support::programExists("mount"))
        GTEST_SKIP() << "no program mount";
    EXPECT_EQ(zerbWell({"mount", "save", "./Stick", "--to", "stick.mount"}), "");
    ASSERT_EQ(disk.unmountNow(), 0);
    EXPECT_THAT(zerbWell({"mount", "replay", "--from", "stick.mount"}), EndsWith("  Stick  " + path("Stick") + "\n"));
    struct statvfs now;
    ASSERT_EQ(statvfs(path("Stick").c_str(), &now), 0);
    EXPECT_TRUE(now.f_flag & ST_NOSUID);
    EXPECT_THAT(zerbWell({"mount", "replay", "--from", "stick.mount"}), HasSubstr("  Stick  ")) << "it is mounted already";
    ASSERT_EQ(disk.unmountNow(), 0);
    EXPECT_EQ(disk.unmountNow(), EINVAL);
}

}   // namespace
