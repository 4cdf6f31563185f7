// Every way to read, with each of its system calls failing in turn: an error or the truth, a metadata item that could not be read
// at its default, never another object, never a change on the disk. (A call that says ENOENT tells of an object that is gone, and is no failure.)
#include "tests/standin/failing_memory.h"
#include "tests/standin/faults_calls.h"
#include "tests/standin/faults_changes.h"
#include "tests/standin/faults_errnos.h"
#include "tests/standin/faults_scene.h"

#include <cerrno>
#include <new>

namespace
{

using namespace support;

// What a reading gave, item by item.
using Answer = std::map<std::string, std::string>;

// "bare" has the data of "file", but no metadata at all: it shows what the defaults are.
struct ReadingScene
{
    std::string directory;
    FSRef root, file, bare, folder;
    FSSpec spec;
};

void describe(const std::string &place, const FSCatalogInfo &info, Answer &answer)
{
    answer[place + "finder"] = textOfBytes(info.finderInfo) + " " + textOfBytes(info.extFinderInfo);
    answer[place + "created"] = textOfDate(info.createDate);
    answer[place + "backed up"] = textOfDate(info.backupDate);
    answer[place + "modified"] = textOfDate(info.contentModDate);
    answer[place + "flags"] = std::to_string(info.nodeFlags);
    answer[place + "hint"] = std::to_string(info.textEncodingHint);
    answer[place + "sizes"] = std::to_string(info.dataLogicalSize);
    answer[place + "fork"] = std::to_string(info.rsrcLogicalSize);
    answer[place + "node"] = std::to_string(info.nodeID) + " in " + std::to_string(info.parentDirID) + " on " + std::to_string(info.volume);
    answer[place + "valence"] = std::to_string(info.valence);
}

OSErr getEverything(const FSRef &ref, Answer &answer)
{
    FSCatalogInfo info{};
    HFSUniStr255 name{};
    FSSpec spec{};
    FSRef parent{};
    OSErr result = FSGetCatalogInfo(&ref, everything, &info, &name, &spec, &parent);
    if (result != noErr)
        return result;
    describe("", info, answer);
    answer["name"] = textOfName(name);
    answer["spec"] = std::string(spec.name + 1, spec.name + 1 + spec.name[0]) + " in " + std::to_string(spec.parID);
    answer["parent"] = std::string(reinterpret_cast<const char *>(&parent), sizeof parent);
    return noErr;
}

// A reference says nothing by itself: the object that it leads to does, later.
void addReference(const FSRef &ref, Answer &answer)
{
    answer["reference"] = std::string(reinterpret_cast<const char *>(&ref), sizeof ref);
}

OSErr pathToReference(const ReadingScene &scene, Answer &answer)
{
    FSRef ref{};
    OSStatus result = findRef(scene.directory + "/file", ref);
    if (result == noErr)
        addReference(ref, answer);
    return static_cast<OSErr>(result);
}

OSErr referenceToPath(const ReadingScene &scene, Answer &answer)
{
    UInt8 path[4096];
    OSStatus result = FSRefMakePath(&scene.file, path, sizeof path);
    if (result == noErr)
        answer["path"] = reinterpret_cast<const char *>(path);
    return static_cast<OSErr>(result);
}

OSErr nameToReference(const ReadingScene &scene, Answer &answer)
{
    FSRef ref{};
    OSErr result = findChild(scene.root, units("file"), ref);
    if (result == noErr)
        addReference(ref, answer);
    return result;
}

OSErr specToReference(const ReadingScene &scene, Answer &answer)
{
    FSRef ref{};
    OSErr result = findSpec(scene.spec, ref);
    if (result == noErr)
        addReference(ref, answer);
    return result;
}

// What was opened is closed even where the test's own memory runs out in between: an open fork would slow down every test that comes after.
struct ForkClosing
{
    SInt16 fork;
    ~ForkClosing() { EXPECT_EQ(FSCloseFork(fork), noErr); }
};

struct IteratorClosing
{
    FSIterator iterator;
    ~IteratorClosing() { EXPECT_EQ(FSCloseIterator(iterator), noErr); }
};

OSErr readFork(const ReadingScene &scene, Answer &answer)
{
    SInt16 fork = 0;
    if (OSErr result = openFork(scene.file, true, fsRdPerm, fork))
        return result;
    const ForkClosing closing{fork};
    std::string bytes(10000, '\0');
    ByteCount got = 0;
    OSErr result = FSReadFork(fork, fsFromStart, 0, static_cast<ByteCount>(bytes.size()), bytes.data(), &got);
    if (result != eofErr)
    {   // more was asked for than there is
        EXPECT_EQ(got, 0u);
        return result;
    }
    answer["fork"] = bytes.substr(0, got);
    return noErr;
}

OSErr iterateForks(const ReadingScene &scene, Answer &answer)
{
    CatPositionRec position{};
    SInt64 size = 0;
    OSErr result = FSIterateForks(&scene.file, &position, nullptr, &size, nullptr);
    if (result != noErr)
        return result;
    answer["data fork"] = std::to_string(size);
    result = FSIterateForks(&scene.file, &position, nullptr, &size, nullptr);
    if (result == noErr)
        answer["resource fork"] = std::to_string(size);
    return result;
}

// Everything of each item of the scene's folder, three at a time.
OSErr walk(const ReadingScene &scene, Answer &answer)
{
    FSIterator iterator = nullptr;
    OSErr result = FSOpenIterator(&scene.root, kFSIterateFlat, &iterator);
    if (result != noErr)
        return result;
    const IteratorClosing closing{iterator};
    while (result == noErr)
    {
        FSCatalogInfo infos[3]{};
        HFSUniStr255 names[3]{};
        ItemCount count = 0;
        result = FSGetCatalogInfoBulk(iterator, 3, &count, nullptr, everything, infos, nullptr, nullptr, names);
        for (ItemCount i = 0; i < count; ++i)
            describe(textOfName(names[i]) + " ", infos[i], answer);
    }
    return result == errFSNoMoreItems ? noErr : result;
}

struct Reading
{
    const char *name;
    OSErr (*read)(const ReadingScene &scene, Answer &answer);
};

const Reading readings[] = {
    {"GetInfoOfAFile", [](const ReadingScene &s, Answer &answer) { return getEverything(s.file, answer); }},
    {"GetInfoOfAFolder", [](const ReadingScene &s, Answer &answer) { return getEverything(s.folder, answer); }},
    {"PathToReference", pathToReference},
    {"ReferenceToPath", referenceToPath},
    {"NameToReference", nameToReference},
    {"SpecToReference", specToReference},
    {"ReadFork", readFork},
    {"IterateForks", iterateForks},
    {"Walk", walk},
};

void PrintTo(const Reading &reading, std::ostream *stream)
{
    *stream << reading.name;
}

using Row = std::tuple<DiskKind, Reading>;

class FaultsInReading : public DiskRowTest<Row>
{
protected:
    void SetUp() override
    {
        DiskRowTest::SetUp();
        if (IsSkipped())
            return;
        makeScene();
        ASSERT_EQ(read(right_), noErr);
        ASSERT_EQ(getEverything(scene_.bare, defaults_), noErr);
        onDisk_ = pictureOf(scene_.directory);
    }

    OSErr read(Answer &answer) const { return std::get<1>(GetParam()).read(scene_, answer); }
    bool readWith(const Fault &fault);
    bool readWithout(long nth);
    Answer right_;
    int failures_ = 0;

private:
    void makeScene()
    {
        scene_.directory = folder() / "scene";
        makeUsualScene(scene_.directory);
        writeOldFile(scene_.directory + "/bare", "data");
        FSRef file = refAt(scene_.directory + "/file");
        EXPECT_EQ(setLock(file, true), noErr);
        makeOld(scene_.directory + "/file");
        Scene scene = sceneIn(scene_.directory);
        scene_.root = scene.root;
        scene_.file = scene.file;
        scene_.folder = scene.folder;
        scene_.bare = refAt(scene_.directory + "/bare");
        scene_.spec = specOf(scene.file);
    }

    bool isDefault(const std::string &item, const std::string &value) const;

    ReadingScene scene_{};
    Answer defaults_;
    std::string onDisk_;
};

// Only what Linux has no place for has a default. A walk puts the object's name before the item. Of a date there is a second copy in whole seconds.
bool FaultsInReading::isDefault(const std::string &item, const std::string &value) const
{
    for (const char *kept : {"finder", "created", "backed up", "flags", "hint", "fork"})
        if (item == kept || item == std::string("file ") + kept)
        {
            bool isDate = std::string(kept) == "created" || std::string(kept) == "backed up";
            std::string right = right_.at(item);
            return value == defaults_.at(kept) || (isDate && value == right.substr(0, right.find('+')) + "+0");
        }
    return false;
}

bool FaultsInReading::readWith(const Fault &fault)
{
    SCOPED_TRACE(testing::Message() << fault);
    Answer answer;
    long open = openDescriptors();
    OSErr result;
    {
        FaultyCalls faults(fault);
        result = read(answer);
    }
    SCOPED_TRACE(testing::Message() << FaultyCalls::failedCall() << " failed, the result was " << result);
    EXPECT_LE(openDescriptors(), open) << "descriptors before and after, when those kept for earlier work may be gone";
    EXPECT_EQ(pictureOf(scene_.directory), onDisk_);
    for (const auto &[item, value] : answer)
    {
        auto found = right_.find(item);
        EXPECT_TRUE(found != right_.end() && (found->second == value || isDefault(item, value))) << item << " = " << value;
    }
    if (result == noErr)
    {
        EXPECT_EQ(answer.size(), right_.size()) << difference(right_, answer);
    }
    failures_ += FaultyCalls::reached();
    return FaultyCalls::reached();
}

TEST_P(FaultsInReading, GiveAnErrorOrTheTruth)
{
    bool reached = true;
    int nth = 0;
    while (reached && nth < 1000)
    {
        ++nth;
        reached = readWith({nth, EIO, false});
        if (!reached)
            break;
        const std::string call = FaultyCalls::failedCall();
        EXPECT_FALSE(errorNumbersOf(call).empty()) << "nobody says with which error numbers " << call << " can fail";
        for (const int errorNumber : errorNumbersOf(call))
            if (errorNumber != ESTALE)   // which says that the object is gone
                readWith({nth, errorNumber, false});
        readWith({nth, EIO, true});
    }
    EXPECT_GT(nth, 2);
    EXPECT_LT(nth, 1000);
    RecordProperty("failures", failures_);
}

// The test's own pieces of memory are among those that cannot be had.
bool FaultsInReading::readWithout(long nth)
{
    SCOPED_TRACE(testing::Message() << "piece of memory " << nth);
    Answer answer;
    OSErr result = memFullErr;
    {
        const FailingMemory failing(nth, false);
        try
        {
            result = read(answer);
        }
        catch (const std::bad_alloc &)
        {
            answer.clear();
        }
    }
    const bool wasReached = FailingMemory::reached();
    EXPECT_TRUE(result == noErr || (wasReached && result == memFullErr)) << result;
    for (const auto &[item, value] : answer)
        EXPECT_EQ(right_.at(item), value) << item;
    return wasReached;
}

TEST_P(FaultsInReading, GiveAnErrorOrTheTruthWithoutMemory)
{
    long nth = 1;
    while (nth < 3000 && readWithout(nth))
        ++nth;
    EXPECT_LT(nth, 3000);
    RecordProperty("failures", static_cast<int>(nth - 1));
}

TEST_P(FaultsInReading, DoNotComeFromCallsThatAreInterrupted)
{
    Answer answer;
    OSErr result;
    {
        const InterruptedCalls interrupted;
        result = read(answer);
    }
    EXPECT_EQ(result, noErr);
    EXPECT_EQ(answer, right_) << difference(right_, answer);
}

TEST_P(FaultsInReading, DoNotComeFromBytesThatArriveInPieces)
{
    for (const std::size_t most : {1u, 7u})
    {
        Answer answer;
        OSErr result;
        {
            const BytesInPieces pieces(most);
            result = read(answer);
        }
        EXPECT_EQ(result, noErr);
        EXPECT_EQ(answer, right_) << difference(right_, answer);
    }
}

std::string rowName(const testing::TestParamInfo<Row> &row)
{
    return std::string(std::get<1>(row.param).name) + "On" + nameOfKind(std::get<0>(row.param));
}

INSTANTIATE_TEST_SUITE_P(Disks, FaultsInReading,
                         testing::Combine(testing::Values(DiskKind::tmpfs, DiskKind::ramfs), testing::ValuesIn(readings)), rowName);

}   // namespace
