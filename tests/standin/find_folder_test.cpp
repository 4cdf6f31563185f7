// FindFolder: where the special folders lie, and how they are made.
#include "tests/standin/processes.h"
#include "tests/standin/test_volume.h"

#include <sys/stat.h>
#include <unistd.h>

namespace
{

using namespace support;

struct Found
{
    OSErr result = 1;
    SInt16 volume = 0;
    SInt32 directory = 0;
};

Found find(SInt16 domain, OSType type, bool make = false)
{
    Found found;
    found.result = FindFolder(domain, type, make ? kCreateFolder : kDontCreateFolder, &found.volume, &found.directory);
    return found;
}

// The path of a directory by its ID.
std::string pathOf(const Found &found)
{
    FSRef ref{};
    FSRefParam block{};
    block.ioVRefNum = found.volume;
    block.ioDirID = found.directory;
    block.newRef = &ref;
    return PBMakeFSRefSync(&block) == noErr ? support::pathOf(ref) : "";
}

std::string userName()
{
    const Ended ended = run({"id", "-un"});
    return ended.output.substr(0, ended.output.find('\n'));
}

SInt16 domainOf(const std::string &text)
{
    return static_cast<SInt16>(std::stoi(text));
}

OSType typeOf(const std::string &text)
{
    return static_cast<OSType>(std::stoul(text));
}

// Arguments: domain, type, whether to make it, the expected result, the expected path.
const Role findsFolder("findsFolder", [](const RoleArguments &arguments) {
    const Found found = find(domainOf(arguments[0]), typeOf(arguments[1]), arguments[2] == "make");
    EXPECT_EQ(found.result, std::stoi(arguments[3])) << arguments[4];
    if (found.result == noErr)
        EXPECT_EQ(pathOf(found), arguments[4]);
    else
        EXPECT_EQ(found.directory, 0) << "outputs are left alone";
});

struct Kind
{
    const char *name;
    SInt16 domain;
    OSType type;
    const char *variable;
    std::string ownPlace;   // on a disk of the host's own; USER is the user's name
    mode_t mode;            // when it was made; 0: whatever the umask leaves
};

void PrintTo(const Kind &kind, std::ostream *stream)
{
    *stream << kind.name;
}

const Kind kinds[] = {
    {"LocalPreferences", kLocalDomain, kPreferencesFolderType, "ZERB_LOCAL_PREFERENCES_FOLDER", "/Library/Preferences", 0},
    {"UserPreferences", kUserDomain, kPreferencesFolderType, "ZERB_USER_PREFERENCES_FOLDER", "/Users/USER/Library/Preferences", 0700},
    {"SystemDesktop", kSystemDomain, kSystemDesktopFolderType, "ZERB_SYSTEM_DESKTOP_FOLDER", "/Desktop", 0},
    {"SharedData", kLocalDomain, kSharedUserDataFolderType, "ZERB_SHARED_DATA_FOLDER", "/Users/Shared", 01777},
};

class SpecialFolders : public testing::TestWithParam<Kind>
{
protected:
    // Runs the role in a process whose startup volume is the test's folder.
    void expect(const std::string &how, int result, const std::string &path, std::vector<std::string> environment = {}) const
    {
        environment.push_back("ZERB_STARTUP_VOLUME=" + disk_.path());
        playRole("findsFolder", words(how, result, path), {.user = 0, .environment = environment});
    }
    RoleArguments words(const std::string &how, int result, const std::string &path) const
    {
        return {std::to_string(GetParam().domain), std::to_string(GetParam().type), how, std::to_string(result), path};
    }
    std::string ownPlace() const
    {
        std::string place = GetParam().ownPlace;
        if (const std::size_t user = place.find("USER"); user != std::string::npos)
            place.replace(user, 4, userName());
        return place;
    }
    TemporaryFolder disk_;
};

TEST_P(SpecialFolders, AreMadeOnlyWhereThatIsWanted)
{
    expect("find", fnfErr, "");
    EXPECT_TRUE(namesIn(disk_.path()).empty());
    expect("make", noErr, ownPlace());
    expect("find", noErr, ownPlace());
    expect("make", noErr, ownPlace());
    const mode_t mode = statxOf(disk_.path() + ownPlace()).stx_mode & 07777;
    EXPECT_EQ(mode, GetParam().mode != 0 ? GetParam().mode : mode & 0777) << "the umask's";
}

TEST_P(SpecialFolders, KeepTheModeThatTheyHave)
{
    ASSERT_EQ(run({"mkdir", "-p", disk_.path() + ownPlace()}).status, 0);
    chmod((disk_.path() + ownPlace()).c_str(), 0750);
    expect("make", noErr, ownPlace());
    EXPECT_EQ(statxOf(disk_.path() + ownPlace()).stx_mode & 07777, 0750);
}

TEST_P(SpecialFolders, LieWhereTheEnvironmentSays)
{
    const std::string variable = GetParam().variable;
    expect("make", noErr, "/Else/where", {variable + "=/Else//where/"});
    EXPECT_TRUE(exists(disk_ / "Else/where"));
    expect("make", noErr, ownPlace(), {variable + "=relative/paths/do/not/count"});
    EXPECT_FALSE(exists(disk_ / "relative"));
}

TEST_P(SpecialFolders, MayBeMadeByTwoProcessesAtOnce)
{
    for (int round = 0; round < 5; ++round)
    {
        const RoleSetting setting{.user = 0, .environment = {"ZERB_STARTUP_VOLUME=" + disk_.path()}};
        Running first = startRole("findsFolder", words("make", noErr, ownPlace()), setting);
        Running second = startRole("findsFolder", words("make", noErr, ownPlace()), setting);
        for (Running *each : {&first, &second})
        {
            const Ended ended = each->wait();
            EXPECT_EQ(ended.status, 0) << ended.output;
        }
        for (const std::string &name : namesIn(disk_.path()))
            removeTree(disk_ / name);
    }
}

TEST_P(SpecialFolders, AreNeverLookedForOutsideOfTheDisk)
{
    const TemporaryFolder outside;
    mkdir((outside / "folder").c_str(), 0755);
    symlink(outside.path().c_str(), (disk_ / "Way").c_str());
    symlink(("../../../../../../../.." + outside.path()).c_str(), (disk_ / "Up").c_str());
    const std::string variable = GetParam().variable;
    expect("find", fnfErr, "", {variable + "=/Way/folder"});
    expect("find", fnfErr, "", {variable + "=/Up/folder"});
    expect("make", fnfErr, "", {variable + "=/Way/new"});
    expect("make", fnfErr, "", {variable + "=/Up/new"});
    EXPECT_EQ(namesIn(outside.path()), std::vector<std::string>{"folder"});
}

TEST_P(SpecialFolders, AFileInTheirPlaceIsNone)
{
    writeFile(disk_ / "File");
    expect("make", errFSNotAFolder, "", {std::string(GetParam().variable) + "=/File"});
    expect("make", errFSNotAFolder, "", {std::string(GetParam().variable) + "=/File/below"});
}

// Paths that programs make of the shared folder have no volume.
TEST_P(SpecialFolders, OnlyTheSharedOneHasToBeOnTheStartupVolume)
{
    const TemporaryFolder other;
    const bool isBound = GetParam().type == kSharedUserDataFolderType;
    const std::vector<std::string> environment = {"ZERB_VOLUMES=Other=" + other.path(),
                                                  std::string(GetParam().variable) + "=/Volumes/Other/inner"};
    expect("make", isBound ? diffVolErr : noErr, "/Volumes/Other/inner", environment);
    EXPECT_EQ(exists(other / "inner"), !isBound);
    EXPECT_FALSE(exists(disk_ / "Volumes"));
}

TEST_P(SpecialFolders, AHostMayPutThemElsewhere)
{
    const std::string place = disk_ / "chosen/by the host";
    ASSERT_EQ(standin::useSpecialFolder(GetParam().domain, GetParam().type, place), noErr);
    // Temporary folders may lie on another disk than `/`, and the shared folder must not.
    const bool isTooFar = GetParam().type == kSharedUserDataFolderType && infoOf(refAt(disk_.path())).volume != infoOf(refAt("/")).volume;
    EXPECT_EQ(find(GetParam().domain, GetParam().type).result, isTooFar ? diffVolErr : fnfErr);
    const Found made = find(GetParam().domain, GetParam().type, true);
    ASSERT_EQ(made.result, isTooFar ? diffVolErr : noErr);
    if (!isTooFar)
    {
        EXPECT_EQ(made.directory, static_cast<SInt32>(nodeOf(refAt(place))));
    }
    EXPECT_EQ(standin::useSpecialFolder(GetParam().domain, GetParam().type, "relative"), paramErr);
    EXPECT_EQ(standin::useSpecialFolder(GetParam().domain, GetParam().type, ""), noErr);
}

INSTANTIATE_TEST_SUITE_P(Kinds, SpecialFolders, testing::ValuesIn(kinds), [](const auto &row) { return row.param.name; });

TEST(SpecialFoldersOfLinux, AreThoseOfTheBaseDirectories)
{
    const TemporaryFolder folder;
    mkdir((folder / "site").c_str(), 0755);
    mkdir((folder / ".config").c_str(), 0755);
    mkdir((folder / "own").c_str(), 0755);
    const auto play = [](SInt16 domain, const std::string &path, const std::vector<std::string> &environment) {
        playRole("findsFolder", {std::to_string(domain), std::to_string(kPreferencesFolderType), "find", "0", path},
                 {.user = 0, .environment = environment});
    };
    play(kLocalDomain, folder / "site", {"XDG_CONFIG_DIRS=" + (folder / "site") + ":/etc/other"});
    play(kUserDomain, folder / "own", {"XDG_CONFIG_HOME=" + (folder / "own"), "HOME=" + folder.path()});
    play(kUserDomain, folder / ".config", {"XDG_CONFIG_HOME=not/absolute", "HOME=" + folder.path()});
}

TEST(FindFolder, RefusesWhatItDoesNotKnow)
{
    SInt16 volume = 7;
    SInt32 directory = 8;
    EXPECT_EQ(FindFolder(kUserDomain, kSharedUserDataFolderType, kDontCreateFolder, &volume, &directory), fnfErr);
    EXPECT_EQ(FindFolder(0, kPreferencesFolderType, kCreateFolder, &volume, &directory), fnfErr);
    EXPECT_EQ(FindFolder(kLocalDomain, code("trsh"), kCreateFolder, &volume, &directory), fnfErr);
    EXPECT_EQ(volume, 7);
    EXPECT_EQ(directory, 8);
    EXPECT_EQ(FindFolder(kLocalDomain, kPreferencesFolderType, kDontCreateFolder, nullptr, &directory), paramErr);
    EXPECT_EQ(FindFolder(kLocalDomain, kPreferencesFolderType, kDontCreateFolder, &volume, nullptr), paramErr);
    EXPECT_EQ(standin::useSpecialFolder(0, kPreferencesFolderType, "/tmp"), fnfErr);
}

}   // namespace
