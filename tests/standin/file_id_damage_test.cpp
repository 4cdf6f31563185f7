// The database of file IDs, damaged or of another kind: an error, and other work goes on.
#include "tests/standin/file_id_store.h"

#include <random>
#include <sys/stat.h>

namespace
{

using namespace support;

TEST_F(FileIDStore, ADamagedOneIsAnErrorAndStaysAsItIs)
{
    FSRef ref = refAt(fileNamed("file"));
    const UInt32 id = makeID(ref).id;
    for (const std::string_view damage : {"no database at all", "SQLite format 3\0 but then nothing of the kind"})
    {
        useState(states() / ("damaged" + std::to_string(damage.size())));
        mkdir(statePath().c_str(), 0700);
        Bytes bytes = bytesOf(damage);
        bytes.resize(5000, 0x55);
        writeFile(database(), bytes);
        EXPECT_EQ(makeID(ref).result, ioErr);
        EXPECT_EQ(resolveID(volume(), id).result, ioErr);
        EXPECT_EQ(rename(ref, "renamed" + std::to_string(damage.size())), noErr) << "other work goes on";
        EXPECT_EQ(readFile(database()), bytes);
    }
}

TEST_F(FileIDStore, OneOfAnotherKindOrALaterVersionIsAnError)
{
    const FSRef ref = refAt(fileNamed("file"));
    for (const char *change : {"PRAGMA user_version = 2", "PRAGMA application_id = 5", "DROP TABLE files"})
    {
        useState(states() / ("changed" + std::to_string(std::string(change).size())));
        const UInt32 id = makeID(ref).id;
        const std::string intact = statePath();
        {
            OtherConnection other(database());
            other.run(change);
        }
        standin::useStateFolder(states() / "elsewhere");   // so that it is opened anew
        makeID(ref);
        standin::useStateFolder(intact);
        EXPECT_EQ(resolveID(volume(), id).result, ioErr) << change;
        EXPECT_EQ(makeID(ref).result, ioErr) << change;
    }
}

TEST_F(FileIDStore, AnEmptyOneHasNoIDsAndIsFilled)
{
    const FSRef ref = refAt(fileNamed("file"));
    mkdir(statePath().c_str(), 0700);
    writeFile(database());
    EXPECT_EQ(resolveID(volume(), 5).result, fidNotFound);
    EXPECT_EQ(makeID(ref).result, noErr);
}

// Whatever bytes are overwritten: an ID leads to its file or to an error, never to another file.
TEST_F(FileIDStore, OverwrittenBytesNeverLeadToAnotherFile)
{
    constexpr int count = 60, rounds = 30;
    std::vector<UInt32> ids;
    mkdir((files() / "in").c_str(), 0755);
    for (int i = 0; i < count; ++i)
        ids.push_back(makeID(refAt(fileNamed((i % 2 ? "in/" : "") + std::to_string(i)))).id);
    const std::string original = database();
    standin::useStateFolder(states() / "elsewhere");
    makeID(refAt(files() / "0"));   // the first one is closed, and whole
    const Bytes intact = readFile(original);
    std::mt19937 random(4711);
    int found = 0, refused = 0;
    for (int round = 0; round < rounds; ++round)
    {
        useState(states() / ("round" + std::to_string(round)));
        mkdir(statePath().c_str(), 0700);
        Bytes bytes = intact;
        for (int i = 0; i < 1 + round % 40; ++i)
            bytes[random() % bytes.size()] = static_cast<std::uint8_t>(random());
        writeFile(database(), bytes);
        for (int i = 0; i < count; ++i)
        {
            const OSErr result = resolveID(volume(), ids[static_cast<std::size_t>(i)]).result;
            ASSERT_TRUE(result == noErr || result == ioErr || result == fidNotFound) << result;
            (result == noErr ? found : refused)++;
            if (result == noErr)
            {
                ASSERT_EQ(pathOfID(ids[static_cast<std::size_t>(i)]), files() / ((i % 2 ? "in/" : "") + std::to_string(i)));
            }
        }
        const OSErr made = makeID(refAt(files() / "0")).result;
        EXPECT_TRUE(made == fidExists || made == noErr || made == ioErr) << made;
    }
    EXPECT_GT(found, 0);
    EXPECT_GT(refused, 0);
}

// SQLite itself has nothing against these.
TEST_F(FileIDStore, ARowThatNobodyOfUsWroteIsAnError)
{
    int number = 0;
    mkdir((files() / "in").c_str(), 0755);
    fileNamed("in/other");
    fileNamed("file");
    const std::string path = fileNamed("in/file");
    for (const char *change : {"UPDATE files SET name = CAST('other' AS BLOB), inode = 1", "UPDATE files SET folder = 0, inode = 1",
                               "UPDATE files SET birth = 0, inode = 1", "UPDATE folders SET parent = number",
                               "UPDATE folders SET name = ''", "DELETE FROM folders"})
    {
        useState(states() / ("changed" + std::to_string(++number)));
        const UInt32 id = makeID(refAt(path)).id;
        OtherConnection(database()).run(change);
        EXPECT_EQ(resolveID(volume(), id).result, ioErr) << change;
    }
}

TEST_F(FileIDStore, ThatWasTakenAwayIsMadeAnewWithOtherIDs)
{
    const FSRef ref = refAt(fileNamed("file"));
    const UInt32 id = makeID(ref).id;
    runShell("rm -r '" + statePath() + "'");
    EXPECT_EQ(resolveID(volume(), id).result, fidNotFound);
    const NewFileID again = makeID(ref);
    EXPECT_EQ(again.result, noErr);
    EXPECT_NE(again.id, id) << "the first ID is drawn by lot";
    EXPECT_EQ(resolveID(volume(), id).result, fidNotFound);
}

}   // namespace
