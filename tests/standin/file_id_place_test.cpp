// Where the database of file IDs lies, and disks that make trouble.
#include "tests/standin/file_id_store.h"
#include "tests/standin/full_disks.h"

#include <map>
#include <sys/stat.h>

namespace
{

using namespace support;

const Role makesOneID("makesOneID",
                      [](const RoleArguments &arguments) { EXPECT_EQ(makeID(refAt(arguments[0])).result, std::stoi(arguments[1])); });

TEST_F(FileIDStore, LiesWhereTheEnvironmentSays)
{
    const std::string path = fileNamed("file"), here = states().path();
    playRole("makesOneID", {path, "0"}, {0, {"ZERB_STATE_FOLDER=" + here + "/own"}});
    EXPECT_TRUE(exists(here + "/own/file-ids.sqlite"));
    playRole("makesOneID", {path, "0"}, {0, {"ZERB_STATE_FOLDER=", "XDG_STATE_HOME=" + here + "/states"}});
    EXPECT_TRUE(exists(here + "/states/zerb/file-ids.sqlite"));
    playRole("makesOneID", {path, "0"}, {0, {"ZERB_STATE_FOLDER=relative", "XDG_STATE_HOME=", "HOME=" + here + "/home"}});
    EXPECT_TRUE(exists(here + "/home/.local/state/zerb/file-ids.sqlite"));
    EXPECT_EQ(statxOf(here + "/home/.local/state/zerb").stx_mode & 07777u, 0700u) << "nobody else's business";
    writeFile(here + "/file");
    playRole("makesOneID", {path, std::to_string(errFSNotAFolder)}, {0, {"ZERB_STATE_FOLDER=" + here + "/file/in"}});
}

TEST_F(FileIDStore, OnAReadOnlyDiskItIsReadAndNotWritten)
{
    const std::string path = fileNamed("file"), other = fileNamed("other");
    const UInt32 id = makeID(refAt(path)).id;
    standin::useStateFolder(states() / "elsewhere");
    makeID(refAt(path));   // the first one is closed
    ReadOnlyView view(statePath());
    if (!view.problem().empty())
        GTEST_SKIP() << view.problem();
    useState(view.path());
    EXPECT_EQ(pathOfID(id), path);
    EXPECT_EQ(makeID(refAt(other)).result, wPrErr);
    FSRef ref = refAt(path);
    EXPECT_EQ(rename(ref, "renamed"), noErr);
    EXPECT_EQ(pathOfID(id), files() / "renamed") << "by what this process remembers";
    useState(view.path() + "/none");
    EXPECT_EQ(resolveID(volume(), id).result, fidNotFound);
    EXPECT_EQ(makeID(ref).result, wPrErr);
}

const Role seesOthersStore("seesStoreOfAnother", [](const RoleArguments &arguments) {
    const FSVolumeRefNum volume = infoOf(refAt(arguments[0])).volume;
    EXPECT_EQ(resolveID(volume, static_cast<UInt32>(std::stoul(arguments[1]))).result, std::stoi(arguments[2]));
    const OSErr made = makeID(refAt(arguments[0])).result;
    EXPECT_TRUE(made == afpAccessDenied || made == wPrErr) << made;
});

TEST_F(FileIDStore, OfAnotherUserIsReadIfItMayBeRead)
{
    if (!canBecomeOtherUsers())
        GTEST_SKIP() << "this user cannot become another one";
    const std::string path = fileNamed("file"), other = fileNamed("other");
    const std::string id = std::to_string(makeID(refAt(path)).id);
    playRole("seesStoreOfAnother", {other, id, std::to_string(afpAccessDenied)}, sameState(nobody));
    chmod(statePath().c_str(), 0755);
    playRole("seesStoreOfAnother", {other, id, "0"}, sameState(nobody));
    standin::useStateFolder(states() / "elsewhere");
    makeID(refAt(path));   // nobody has it open any more
    playRole("seesStoreOfAnother", {other, id, "0"}, sameState(nobody));
}

TEST_F(FileIDStore, OnAFullDiskGivesNoMoreIDsAndLosesNone)
{
    for (DiskKind kind : {DiskKind::tmpfs, DiskKind::ext4})
    {
        if (!diskOf(kind).problem.empty())
            GTEST_SKIP() << diskOf(kind).problem;
        TemporaryFolder small(kind);
        useState(small / "zerb");
        std::map<UInt32, std::string> made;
        const auto make = [&](int number) {
            const std::string path = fileNamed("file" + std::to_string(number));
            const NewFileID id = makeID(refAt(path));
            if (id.result == noErr)
                made.emplace(id.id, path);
            return id.result;
        };
        ASSERT_EQ(make(0), noErr);
        fillDisk(small.path());
        OSErr result = noErr;
        for (int i = 1; i < 3000 && result == noErr; ++i)
            result = make(i);
        EXPECT_EQ(result, dskFulErr) << nameOfKind(kind);
        for (const auto &[id, path] : made)
            ASSERT_EQ(pathOfID(id), path);
        makeRoom(small.path());
        EXPECT_EQ(make(3001), noErr);
        standin::useStateFolder(states() / "elsewhere");
        makeID(refAt(fileNamed("file")));
        useState(small / "zerb");
        for (const auto &[id, path] : made)
            ASSERT_EQ(pathOfID(id), path);
        standin::useStateFolder(states() / "elsewhere");
        makeID(refAt(fileNamed("file")));
    }
}

}   // namespace
