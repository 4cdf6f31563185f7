// File IDs, and changes of files that have one, with the process ended before each system call that changes a disk, those of the database among them:
// an ID that was there leads to its file and to no other, and new ones can be made.
#include "tests/standin/copies.h"
#include "tests/standin/file_id_store.h"
#include "tests/standin/tracing.h"

#include <functional>
#include <sys/stat.h>

namespace
{

using namespace support;

// "letter" and "other" have IDs, "plain" has none.
struct FileIDScene
{
    FSRef letter, other, plain, folder;
    UInt32 letterID = 0, otherID = 0;
};

struct FileIDAction
{
    const char *name;
    OSErr (*act)(FileIDScene &scene);
    bool deletesLetter = false;
};

const FileIDAction actions[] = {
    {"MakeAnotherID", [](FileIDScene &scene) { return makeID(scene.plain).result; }},
    {"Rename", [](FileIDScene &scene) { return rename(scene.letter, "renamed"); }},
    {"Move", [](FileIDScene &scene) { return move(scene.letter, scene.folder); }},
    {"Delete", [](FileIDScene &scene) { return FSDeleteObject(&scene.letter); }, true},
    {"Exchange", [](FileIDScene &scene) { return FSExchangeObjects(&scene.letter, &scene.other); }},
    {"FindAfterAMoveByOthers",
     [](FileIDScene &scene) {
         moveByProgram(pathOf(scene.letter), pathOf(scene.folder) + "/moved");
         resolveID(infoOf(scene.other).volume, scene.letterID);
         return OSErr{noErr};
     }},
};

void PrintTo(const FileIDAction &action, std::ostream *stream)
{
    *stream << action.name;
}

// Begins an action in a process of its own, which stops before and after it for whoever traces it.
pid_t begin(const std::function<OSErr()> &act)
{
    const pid_t process = fork();
    if (process != 0)
        return process;
    ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
    raise(SIGSTOP);
    const OSErr result = act();
    raise(result == noErr ? SIGSTOP : SIGUSR1);
    _exit(0);
}

End runUpTo(const std::function<OSErr()> &act, int nth)
{
    int status = 0;
    const pid_t process = begin(act);
    const End end = support::runUpTo(process, nth);
    kill(process, SIGKILL);
    while (waitpid(process, &status, __WALL) == process && WIFSTOPPED(status))
        continue;
    return end;
}

class FileIDsCutOff : public FileIDStore, public testing::WithParamInterface<FileIDAction>
{
protected:
    FileIDScene makeScene(const std::string &directory)
    {
        FileIDScene scene;
        mkdir((files() / directory).c_str(), 0755);
        mkdir((files() / (directory + "/folder")).c_str(), 0755);
        scene.folder = refAt(files() / (directory + "/folder"));
        for (FSRef *ref : {&scene.letter, &scene.other, &scene.plain})
        {
            const char *name = ref == &scene.letter ? "letter" : ref == &scene.other ? "other" : "plain";
            writeFile(files() / (directory + "/" + name), name);
            *ref = refAt(files() / (directory + "/" + name));
        }
        scene.letterID = makeID(scene.letter).id;
        scene.otherID = makeID(scene.other).id;
        return scene;
    }

    std::string contentOf(UInt32 id)
    {
        const std::string path = pathOfID(id);
        if (!exists(path))
            return path;
        const Bytes bytes = readFile(path);
        return std::string(bytes.begin(), bytes.end());
    }

    void expectIDsToHold(const FileIDScene &scene, const std::string &directory);
};

// Whether a file that another program moved to another folder is found at all: only where the disk leads from an inode to its file.
bool findsWhatOthersMove(const std::string &folder)
{
    const std::string before = folder + "/moved by others?", place = folder + "/place", after = place + "/moved by others!";
    mkdir(place.c_str(), 0755);
    writeFile(before);
    const FSRef ref = refAt(before);
    ::rename(before.c_str(), after.c_str());
    const bool isFound = checkRef(ref) == noErr;
    ::remove(after.c_str());
    ::remove(place.c_str());
    return isFound;
}

std::string notResolved(OSErr result)
{
    return "not resolved: " + std::to_string(result);
}

void FileIDsCutOff::expectIDsToHold(const FileIDScene &scene, const std::string &directory)
{
    const bool isExchange = std::string(GetParam().name) == "Exchange";
    const std::string letter = contentOf(scene.letterID), other = contentOf(scene.otherID);
    const bool changedPlaces = isExchange && letter == "other" && other == "letter";
    const bool hasLeft = !exists(files() / (directory + "/letter"));
    const bool mayBeGone = hasLeft && (GetParam().deletesLetter || !findsWhatOthersMove(files().path()));
    const bool isGone = mayBeGone && (letter == notResolved(fidNotFound) || letter == notResolved(fnfErr));
    EXPECT_TRUE(letter == "letter" || changedPlaces || isGone) << letter;
    EXPECT_TRUE(other == "other" || changedPlaces) << other;

    NewFileID made = makeID(scene.plain);
    EXPECT_TRUE(made.result == noErr || (made.result == fidExists && std::string(GetParam().name) == "MakeAnotherID")) << made.result;
    EXPECT_EQ(contentOf(made.id), "plain");
    EXPECT_EQ(std::set<UInt32>({made.id, scene.letterID, scene.otherID}).size(), 3u);
}

TEST_P(FileIDsCutOff, LeadToTheirFiles)
{
    End end = End::cutOff;
    int nth = 0;
    while (end == End::cutOff && !HasFailure())
    {
        SCOPED_TRACE(testing::Message() << "cut off before change " << ++nth);
        const std::string directory = std::to_string(nth);
        useState(states() / directory);
        FileIDScene scene = makeScene(directory);
        end = runUpTo([&] { return GetParam().act(scene); }, nth);
        EXPECT_NE(end, End::failed);
        expectIDsToHold(scene, directory);
    }
    EXPECT_GT(nth, 1) << "the action changes nothing";
    RecordProperty("kills", nth - 1);
}

INSTANTIATE_TEST_SUITE_P(Actions, FileIDsCutOff, testing::ValuesIn(actions), [](const auto &row) { return std::string(row.param.name); });

class FirstFileIDCutOff : public FileIDStore
{
};

// The database and its folder come into being with it.
TEST_F(FirstFileIDCutOff, IsMadeByTheNext)
{
    End end = End::cutOff;
    int nth = 0;
    const FSRef file = refAt(fileNamed("file")), later = refAt(fileNamed("later"));
    while (end == End::cutOff && !HasFailure())
    {
        SCOPED_TRACE(testing::Message() << "cut off before change " << ++nth);
        useState(states() / std::to_string(nth));
        end = runUpTo([&] { return makeID(file).result; }, nth);
        EXPECT_NE(end, End::failed);
        const NewFileID made = makeID(file), second = makeID(later);
        EXPECT_TRUE(made.result == noErr || made.result == fidExists) << made.result;
        EXPECT_EQ(second.result, noErr);
        EXPECT_EQ(pathOfID(made.id), files() / "file");
        EXPECT_EQ(pathOfID(second.id), files() / "later");
        EXPECT_NE(made.id, second.id);
    }
    EXPECT_GT(nth, 3);
    RecordProperty("kills", nth - 1);
}

}   // namespace
