// The host's commands for access rights, users and groups, file IDs and the default directory: access, who, id and cd.

#include "tests/whole/host_program.h"

#include <gmock/gmock.h>

#include <unistd.h>

namespace
{

using host_tests::HostTest;
using host_tests::Outcome;
using host_tests::Words;
using nlohmann::json;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

// ---------------------------------------------------------------------------------------------------------------------
// access

class HostAccess : public HostTest
{
protected:
    void SetUp() override
    {
        makeFolder("Work");
        chmod(path("Work").c_str(), 0750);
        makeFile("Letter");
    }
    unsigned mode(std::string_view name) const { return support::statxOf(path(name)).stx_mode & 07777; }
};

TEST_F(HostAccess, IsToldInWords)
{
    const std::string text = zerbWell({"access", "Work"});
    EXPECT_THAT(text, StartsWith("Work\n  owner         " + std::to_string(getuid())));
    EXPECT_THAT(text, HasSubstr("\n  owner may     search, read, write\n  group may     search, read\n  everyone may  nothing\n"
                                "  you may       search, read, write; you may change this\n  blank access  no\n"));
    const json access = json::parse(zerbWell({"access", "--json", "Work"}))[0];
    EXPECT_EQ(access["path"], "Work");
    EXPECT_EQ(access["owner"]["id"], getuid());
    EXPECT_EQ(access["group"]["id"], support::statxOf(path("Work")).stx_gid);
    EXPECT_EQ(access["owner_may"], (json{"search", "read", "write"}));
    EXPECT_EQ(access["group_may"], (json{"search", "read"}));
    EXPECT_EQ(access["everyone_may"], json::array());
    EXPECT_EQ(access["you_are_owner"], true);
    EXPECT_EQ(access["blank_access"], false);
    EXPECT_EQ(access["bits"], "0x87000307");
}

TEST_F(HostAccess, IsSetByDigitsAndByLetters)
{
    EXPECT_EQ(zerbWell({"access", "--rights", "704", "Work"}), "");
    EXPECT_EQ(mode("Work"), 0704u);
    zerbWell({"access", "--rights", "rwxr-x--x", "Work"});
    EXPECT_EQ(mode("Work"), 0751u);
    const json access = json::parse(zerbWell({"access", "--json", "--rights", "rwx-w-r--", "Work"}))[0];
    EXPECT_EQ(access["group_may"], json{"write"});
    EXPECT_EQ(access["everyone_may"], json{"read"});
    EXPECT_EQ(mode("Work"), 0724u);
}

TEST_F(HostAccess, OfTheEnclosingFolderIsTakenAndEnded)
{
    chmod(folder().path().c_str(), 0711);
    zerbWell({"access", "--blank", "Work"});
    EXPECT_EQ(mode("Work"), 0711u);
    EXPECT_THAT(zerbWell({"access", "Work"}), HasSubstr("  blank access  yes"));
    zerbWell({"access", "--rights", "755", "Work"});
    EXPECT_EQ(json::parse(zerbWell({"access", "--json", "Work"}))[0]["blank_access"], false);
    EXPECT_EQ(mode("Work"), 0755u);
    chmod(folder().path().c_str(), 0755);
}

TEST_F(HostAccess, OwnerAndGroupAreNamesOrNumbers)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "only root gives folders away";
    zerbWell({"access", "--owner", "12345", "--group", "daemon", "Work"});
    EXPECT_EQ(support::statxOf(path("Work")).stx_uid, 12345u);
    EXPECT_EQ(support::statxOf(path("Work")).stx_gid, 1u);
    EXPECT_EQ(mode("Work"), 0750u) << "the rights stay";
    EXPECT_THAT(zerbWell({"access", "Work"}), HasSubstr("  owner         12345\n  group         1  daemon\n"));
    zerbWell({"access", "--owner", "root", "Work"});
    EXPECT_EQ(support::statxOf(path("Work")).stx_uid, 0u);
}

TEST_F(HostAccess, FailuresNameTheObjectAndWhatToDo)
{
    const Outcome file = zerb({"access", "Letter", "Work"});
    EXPECT_EQ(file.status, 1);
    EXPECT_THAT(file.errors, HasSubstr("zerb: access: Letter: dirNFErr (-120): "));
    EXPECT_THAT(file.errors, HasSubstr("only folders have access rights"));
    EXPECT_THAT(file.output, StartsWith("Work\n")) << "the others follow";
    const Outcome nobody = zerb({"access", "--owner", "no such user", "Work"});
    EXPECT_EQ(nobody.status, 1);
    EXPECT_THAT(nobody.errors, HasSubstr("zerb: access: no such user: fnfErr (-43): there is no user of that name"));
    zerbWell({"set", "--lock", "Work"});
    EXPECT_THAT(zerb({"access", "--rights", "700", "Work"}).errors, HasSubstr("fLckdErr (-45)"));
    zerbWell({"set", "--unlock", "Work"});
    EXPECT_EQ(mode("Work"), 0750u);
    for (const char *rights : {"75", "789", "rwxrwxrw", "rwxr-xr-s", "wrxr-xr-x", ""})
        EXPECT_EQ(zerb({"access", "--rights", rights, "Work"}).status, 2) << rights;
    EXPECT_EQ(zerb({"access", "--rights", "700", "--blank", "Work"}).status, 2);
}

// ---------------------------------------------------------------------------------------------------------------------
// who

using HostWho = HostTest;

TEST_F(HostWho, ToldByNumberAndByName)
{
    EXPECT_EQ(zerbWell({"who", "0"}), "user   0  root\ngroup  0  root\n");
    EXPECT_EQ(zerbWell({"who", "root"}), "user   0  root\ngroup  0  root\n");
    EXPECT_EQ(zerbWell({"who", "--user", "root"}), "user   0  root\n");
    EXPECT_EQ(zerbWell({"who", "-g", "0"}), "group  0  root\n");
    const json list = json::parse(zerbWell({"who", "--json", "root", "tty"}));
    EXPECT_EQ(list[0]["user"], (json{{"id", 0}, {"name", "root"}}));
    EXPECT_EQ(list[1]["user"], nullptr) << "no user is called that, but a group";
    EXPECT_EQ(list[1]["group"]["name"], "tty");
}

TEST_F(HostWho, NobodyHasIsAFailure)
{
    const Outcome outcome = zerb({"who", "no such name", "4294967294", "root"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("zerb: who: no such name: fnfErr (-43): no user or group"));
    EXPECT_THAT(outcome.errors, HasSubstr("zerb: who: 4294967294: fnfErr (-43)"));
    EXPECT_THAT(outcome.output, HasSubstr("user   0  root")) << "the others follow";
    EXPECT_EQ(json::parse(zerb({"who", "--json", "no such name"}).output)[0]["error"]["code"], -43);
    EXPECT_EQ(zerb({"who", "4294967296"}).status, 2);
}

// ---------------------------------------------------------------------------------------------------------------------
// id

class HostID : public HostTest
{
protected:
    void SetUp() override { makeFile("Letter", "Dear Sir"); }
    Outcome zerbWithState(const Words &words) const { return zerb(words, {"ZERB_STATE_FOLDER=" + path("state")}); }
    std::string idOf(const std::string &name) const { return json::parse(zerbWithState({"id", "--json", name}).output)[0]["id"].dump(); }
};

TEST_F(HostID, IsGivenOnceAndFindsTheFileAgain)
{
    const json given = json::parse(zerbWithState({"id", "--json", "Letter"}).output)[0];
    EXPECT_EQ(given["path"], "Letter");
    EXPECT_EQ(given["is_new"], true);
    const std::string id = given["id"].dump();
    EXPECT_EQ(zerbWithState({"id", "-v", "Letter"}).output, id + "  Letter  (as before)\n");
    EXPECT_EQ(zerbWithState({"id", "Letter"}).status, 0) << "that it had one is no failure";
    const Words find = {"id", "--find", "--on", folder().path(), id};
    EXPECT_EQ(zerbWithState(find).output, path("Letter") + "\n");
    makeFolder("Work");
    ASSERT_EQ(zerbWithState({"mv", "Letter", "Work"}).status, 0);
    ASSERT_EQ(zerbWithState({"rename", "Work/Letter", "Reply"}).status, 0);
    EXPECT_EQ(zerbWithState(find).output, path("Work/Reply") + "\n");
    EXPECT_EQ(idOf("Work/Reply"), id);
    const json found = json::parse(zerbWithState({"id", "--json", "--find", "--on", folder().path(), id}).output)[0];
    EXPECT_EQ(found, (json{{"id", given["id"]}, {"path", path("Work/Reply")}}));
}

TEST_F(HostID, FailuresNameTheObjectAndWhatToDo)
{
    makeFolder("Work");
    const Outcome outcome = zerbWithState({"id", "Work", "missing", "Letter"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("zerb: id: Work: notAFileErr (-1302): "));
    EXPECT_THAT(outcome.errors, HasSubstr("only files have IDs"));
    EXPECT_THAT(outcome.errors, HasSubstr("zerb: id: missing: fnfErr (-43): "));
    EXPECT_THAT(outcome.output, EndsWith("  Letter\n")) << "the others follow";
    const Outcome unknown = zerbWithState({"id", "--find", "--on", folder().path(), "7"});
    EXPECT_EQ(unknown.status, 1);
    EXPECT_THAT(unknown.errors, HasSubstr("zerb: id: 7: fidNotFound (-1300): "));
    EXPECT_THAT(unknown.errors, HasSubstr("`--on PATH`"));
    EXPECT_EQ(zerbWithState({"id", "--find", "x"}).status, 2);
    EXPECT_EQ(zerbWithState({"id", "--on", "/", "Letter"}).status, 2);
}

TEST_F(HostID, OfADamagedDatabaseTellWhichFileThatIs)
{
    makeFolder("state");
    makeFile("state/file-ids.sqlite", std::string(5000, 'x'));
    const Outcome outcome = zerbWithState({"id", "Letter"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("zerb: id: Letter: ioErr (-36): "));
    EXPECT_THAT(outcome.errors, HasSubstr("file-ids.sqlite"));
    EXPECT_EQ(zerbWithState({"rename", "Letter", "Reply"}).status, 0) << "other work goes on";
}

// ---------------------------------------------------------------------------------------------------------------------
// cd

const std::string program = built("zerb");

class HostCd : public HostTest
{
protected:
    void SetUp() override
    {
        makeFolder("Work");
        makeFolder("Work/O'Brien's");
        makeFile("Letter");
    }
};

TEST_F(HostCd, RunsAProgramWithBothDirectories)
{
    EXPECT_EQ(zerbWell({"cd"}), "/\n");
    EXPECT_EQ(zerbWell({"cd", "Work", "--", program, "cd"}), path("Work") + "\n");
    EXPECT_EQ(zerbWell({"cd", "Work", "--", "pwd"}), path("Work") + "\n");
    EXPECT_EQ(zerbWell({"cd", "Work", "--", program, "cd", "O'Brien's", "--", program, "cd"}), path("Work/O'Brien's") + "\n");
    EXPECT_EQ(zerbWell({"cd", "Work", "--", "printf", "%s|", "-l", "--", "a b"}), "-l|--|a b|") << "the program's own words stay its own";
    EXPECT_EQ(zerb({"cd", "Work", "--", "sh", "-c", "exit 7"}).status, 7);
}

TEST_F(HostCd, RunsAShellOrPrintsLinesForOne)
{
    EXPECT_EQ(zerb({"cd", "Work"}, {"SHELL=/bin/pwd"}).output, path("Work") + "\n");
    makeFile("here.sh", "eval \"$(" + program + " cd --script \"$1\")\" && pwd && " + program + " cd\n");
    const Outcome outcome = zerb({"cd", ".", "--", "sh", "here.sh", "Work/O'Brien's"});
    EXPECT_EQ(outcome.output, path("Work/O'Brien's") + "\n" + path("Work/O'Brien's") + "\n") << outcome.errors;
}

TEST_F(HostCd, GoesByTheStartupVolume)
{
    const Words onDisk = {"ZERB_STARTUP_VOLUME=" + folder().path()};
    EXPECT_EQ(zerb({"cd", "/Work", "--", "pwd"}, onDisk).output, path("Work") + "\n");
    EXPECT_EQ(zerb({"cd", "/Work", "--", program, "cd"}, onDisk).output, "/Work\n");
}

TEST_F(HostCd, FailuresNameTheObject)
{
    const Outcome file = zerb({"cd", "Letter", "--", "pwd"});
    EXPECT_EQ(file.status, 1);
    EXPECT_EQ(file.output, "");
    EXPECT_THAT(file.errors, HasSubstr("zerb: cd: Letter: making it the default directory: dirNFErr (-120)"));
    EXPECT_THAT(zerb({"cd", "missing", "--", "pwd"}).errors, HasSubstr("zerb: cd: missing: making it the default directory: fnfErr (-43)"));
    const Outcome command = zerb({"cd", "Work", "--", "no-such-program"});
    EXPECT_EQ(command.status, 1);
    EXPECT_THAT(command.errors, HasSubstr("zerb: cd: no-such-program: cannot be started: "));
    EXPECT_EQ(zerb({"cd", "--script"}).status, 2);
    const Outcome environment = zerb({"info", "Letter"}, {"ZERB_DEFAULT_DIRECTORY=/no/such/folder"});
    EXPECT_EQ(environment.status, 1);
    EXPECT_THAT(environment.errors, HasSubstr("ZERB_DEFAULT_DIRECTORY: /no/such/folder: dirNFErr (-120)"));
}

}   // namespace
