// Renaming, moving and exchanging through references, beside the bare system calls on as many files: `./bench`, or this program itself.
//
// The folders lie beneath /dev/shm (tmpfs) and beneath $TMPDIR or /var/tmp, whatever disk that is. The references come from a listing, as a walk's do.
//
// "the same calls" are those that ours makes, with nothing between them: what such a row shows is our own code, and what it lacks to the row beside the bare
// step is what the other calls cost.

#include "benchmarks/ratio_table.h"
#include "platform/platform.h"
#include "standin/standin.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <linux/fs.h>
#include <memory>
#include <stdexcept>
#include <string>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/xattr.h>
#include <unistd.h>
#include <vector>

namespace
{

constexpr std::size_t fileCount = 5000;

void require(OSStatus result, const char *what)
{
    if (result == noErr)
        return;
    std::fprintf(stderr, "%s: %d\n", what, static_cast<int>(result));
    std::exit(1);
}

FSRef refAt(const std::string &path)
{
    FSRef ref;
    require(FSPathMakeRef(reinterpret_cast<const UInt8 *>(path.c_str()), &ref, nullptr), path.c_str());
    return ref;
}

std::string nameOf(std::size_t number, bool isRenamed)
{
    return (isRenamed ? "renamed file " : "original file ") + std::to_string(number);
}

std::vector<UniChar> unitsOf(const std::string &text)
{
    return {text.begin(), text.end()};
}

// A directory of its own with two folders, one of them full of empty files; gone with the object.
class Folders
{
public:
    explicit Folders(const std::string &disk)
    {
        std::string pattern = disk + "/zerb-bench-XXXXXX";
        if (!mkdtemp(pattern.data()))
            throw std::runtime_error("no folder can be made in " + disk);
        path_ = pattern;
        for (const char *name : {"/one", "/two"})
            std::filesystem::create_directory(path_ + name);
        for (std::size_t number = 0; number < fileCount; ++number)
            close(open((path_ + "/one/" + nameOf(number, false)).c_str(), O_CREAT | O_WRONLY, 0644));
        one_ = open((path_ + "/one").c_str(), O_PATH | O_DIRECTORY);
        two_ = open((path_ + "/two").c_str(), O_PATH | O_DIRECTORY);
    }
    ~Folders()
    {
        close(one_);
        close(two_);
        std::filesystem::remove_all(path_);
    }
    Folders(const Folders &) = delete;
    Folders &operator=(const Folders &) = delete;

    const std::string &path() const { return path_; }
    int folder(bool isSecond) const { return isSecond ? two_ : one_; }

    // As a listing gives them, in the order of their names.
    std::vector<FSRef> listedReferences() const
    {
        const FSRef folder = refAt(path_ + "/one");
        std::vector<FSRef> refs(fileCount), sorted(fileCount);
        std::vector<HFSUniStr255> names(fileCount);
        FSIterator iterator;
        ItemCount count = 0;
        require(FSOpenIterator(&folder, kFSIterateFlat, &iterator), "FSOpenIterator");
        FSGetCatalogInfoBulk(iterator, fileCount, &count, nullptr, kFSCatInfoNone, nullptr, refs.data(), nullptr, names.data());
        FSCloseIterator(iterator);
        for (std::size_t i = 0; i < count; ++i)
        {
            const std::string name(names[i].unicode, names[i].unicode + names[i].length);
            sorted[std::stoul(name.substr(name.rfind(' ')))] = refs[i];
        }
        return sorted;
    }

private:
    std::string path_;
    int one_ = -1, two_ = -1;
};

// Which file is next, and whether it goes there or back.
struct Round
{
    std::size_t next = 0;
    bool isBack = false;

    void advance()
    {
        next = (next + 1) % fileCount;
        isBack ^= next == 0;
    }
};

struct OurRound : Round
{
    explicit OurRound(const std::string &disk) : folders(disk), refs(folders.listedReferences()) {}

    void rename()
    {
        const auto name = unitsOf(nameOf(next, !isBack));
        FSRef &ref = refs[next];
        require(FSRenameUnicode(&ref, static_cast<UniCharCount>(name.size()), name.data(), kTextEncodingUnknown, &ref), "FSRenameUnicode");
        advance();
    }

    void move()
    {
        require(FSMoveObject(&refs[next], isBack ? &one : &two, &refs[next]), "FSMoveObject");
        advance();
    }

    // Neighbours change places: the same two again in the next round.
    void exchange()
    {
        require(FSExchangeObjects(&refs[next], &refs[(next + 1) % fileCount]), "FSExchangeObjects");
        next = (next + 2) % fileCount;
    }

    // Every file gets metadata of its own, which stay with its place when it is exchanged.
    void giveTypes()
    {
        for (std::size_t number = 0; number < refs.size(); ++number)
        {
            FSCatalogInfo info{};
            info.finderInfo[0] = static_cast<UInt8>('A' + number % 26);
            require(FSSetCatalogInfo(&refs[number], kFSCatInfoFinderInfo, &info), "FSSetCatalogInfo");
        }
    }

    Folders folders;
    std::vector<FSRef> refs;
    FSRef one = refAt(folders.path() + "/one"), two = refAt(folders.path() + "/two");
};

struct BareRound : Round
{
    explicit BareRound(const std::string &disk) : folders(disk) {}

    void rename()
    {
        const std::string from = nameOf(next, isBack), to = nameOf(next, !isBack);
        require(renameat2(folders.folder(false), from.c_str(), folders.folder(false), to.c_str(), RENAME_NOREPLACE), "renameat2");
        advance();
    }

    void renameByPath()
    {
        const std::string folder = folders.path() + "/one/";
        std::filesystem::rename(folder + nameOf(next, isBack), folder + nameOf(next, !isBack));
        advance();
    }

    void move()
    {
        const std::string name = nameOf(next, false);
        require(renameat2(folders.folder(isBack), name.c_str(), folders.folder(!isBack), name.c_str(), RENAME_NOREPLACE), "renameat2");
        advance();
    }

    void exchange()
    {
        const std::string first = nameOf(next, false), second = nameOf((next + 1) % fileCount, false);
        require(renameat2(folders.folder(false), first.c_str(), folders.folder(false), second.c_str(), RENAME_EXCHANGE), "renameat2");
        next = (next + 2) % fileCount;
    }

    Folders folders;
};

// The calls that ours makes, in their order: both locks, is it the same, has it a sidecar or attributes, has the new name a sidecar, the step.
struct ReplayedRound : BareRound
{
    explicit ReplayedRound(const std::string &disk) : BareRound(disk)
    {
        for (const char *name : {"/one", "/two"})
            locks.push_back(open((folders.path() + name).c_str(), O_RDONLY | O_DIRECTORY));
    }
    ~ReplayedRound()
    {
        for (const int lock : locks)
            close(lock);
    }

    static void lookAt(int folder, const std::string &name)
    {
        struct statx status;
        statx(folder, name.c_str(), AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT, STATX_BASIC_STATS | STATX_BTIME | STATX_MNT_ID, &status);
    }

    static void listAttributes(int folder, const std::string &name)
    {
        constexpr long listAttributesAtCall = 465;   // Linux 6.13
        char list[4096];
        if (syscall(listAttributesAtCall, folder, name.c_str(), AT_SYMLINK_NOFOLLOW, list, sizeof list) < 0)
            llistxattr(("/proc/self/fd/" + std::to_string(folder) + '/' + name).c_str(), list, sizeof list);
    }

    void look(int from, const std::string &name, int to, const std::string &newName) const
    {
        lookAt(from, name);
        lookAt(from, "._" + name);
        listAttributes(from, name);
        lookAt(to, "._" + newName);
    }

    void rename()
    {
        flock(locks[0], LOCK_EX | LOCK_NB);
        look(folders.folder(false), nameOf(next, isBack), folders.folder(false), nameOf(next, !isBack));
        BareRound::rename();
        flock(locks[0], LOCK_UN);
    }

    void move()
    {
        for (const int lock : locks)
            flock(lock, LOCK_EX | LOCK_NB);
        look(folders.folder(isBack), nameOf(next, false), folders.folder(!isBack), nameOf(next, false));
        BareRound::move();
        for (const int lock : locks)
            flock(lock, LOCK_UN);
    }

    void exchange()
    {
        flock(locks[0], LOCK_EX | LOCK_NB);
        for (const std::size_t number : {next, (next + 1) % fileCount})
        {
            lookAt(folders.folder(false), nameOf(number, false));
            lookAt(folders.folder(false), "._" + nameOf(number, false));
            listAttributes(folders.folder(false), nameOf(number, false));
        }
        BareRound::exchange();
        flock(locks[0], LOCK_UN);
    }

    std::vector<int> locks;
};

void addRowsOn(const std::string &disk, const std::string &diskName)
{
    const auto ours = [&] { return std::make_shared<OurRound>(disk); };
    const auto bare = [&] { return std::make_shared<BareRound>(disk); };
    const auto replayed = [&] { return std::make_shared<ReplayedRound>(disk); };
    const auto typed = [&] {
        auto round = std::make_shared<OurRound>(disk);
        round->giveTypes();
        return round;
    };
    addRow(
        {"rename, " + diskName, "renameat2", ""}, [mine = ours()] { mine->rename(); }, [their = bare()] { their->rename(); });
    addRow(
        {"rename, " + diskName, "the same calls", ""}, [mine = ours()] { mine->rename(); }, [their = replayed()] { their->rename(); });
    addRow(
        {"rename, " + diskName, "std::filesystem", ""}, [mine = ours()] { mine->rename(); }, [their = bare()] { their->renameByPath(); });
    addRow(
        {"move, " + diskName, "renameat2", ""}, [mine = ours()] { mine->move(); }, [their = bare()] { their->move(); });
    addRow(
        {"move, " + diskName, "the same calls", ""}, [mine = ours()] { mine->move(); }, [their = replayed()] { their->move(); });
    addRow(
        {"exchange, " + diskName, "RENAME_EXCHANGE", "files made at one moment, without metadata"}, [mine = ours()] { mine->exchange(); },
        [their = bare()] { their->exchange(); });
    addRow(
        {"exchange, " + diskName, "the same calls", "the same files"}, [mine = ours()] { mine->exchange(); },
        [their = replayed()] { their->exchange(); });
    addRow(
        {"exchange of files with types, " + diskName, "RENAME_EXCHANGE", "with all metadata kept at their places"},
        [mine = typed()] { mine->exchange(); }, [their = bare()] { their->exchange(); });
}

std::string diskFolder()
{
    const char *chosen = std::getenv("TMPDIR");
    return chosen ? chosen : "/var/tmp";
}

}   // namespace

int main(int argumentCount, char **arguments)
{
    standin::useStateFolder(diskFolder() + "/zerb-bench-without-file-ids");   // those of who measures would be looked up with each change
    addRowsOn("/dev/shm", "tmpfs");
    addRowsOn(diskFolder(), "disk");
    return runRatioTable(argumentCount, arguments);
}
