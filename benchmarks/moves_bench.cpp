// Renaming, moving and exchanging through references, beside the bare system calls on as many files: `./bench`, or this program itself.
//
// The folders lie beneath /dev/shm (tmpfs) and beneath $TMPDIR or /var/tmp (work_folder.h). The references come from a listing, as a walk's do.
//
// "the same calls" are those that ours makes, with nothing between them: what such a row shows is our own code, and what it lacks to the row beside the bare
// step is what the other calls cost.

#include "benchmarks/ratio_table.h"
#include "benchmarks/work_folder.h"
#include "platform/platform.h"

#include <algorithm>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <linux/fs.h>
#include <memory>
#include <string>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/xattr.h>
#include <unistd.h>
#include <vector>

namespace
{

constexpr std::size_t fileCount = 2000;                          // an even number
constexpr char changesCost[] = "Renames, moves and exchanges";   // see Aim

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
    explicit Folders(const Disk &disk) : place_(disk)
    {
        for (const char *name : {"one", "two"})
            std::filesystem::create_directory(place_ / name);
        for (std::size_t number = 0; number < fileCount; number += 2)
            makePair(number);
        one_ = open((place_ / "one").c_str(), O_PATH | O_DIRECTORY);
        two_ = open((place_ / "two").c_str(), O_PATH | O_DIRECTORY);
    }
    ~Folders()
    {
        close(one_);
        close(two_);
    }
    Folders(const Folders &) = delete;
    Folders &operator=(const Folders &) = delete;

    const std::string &path() const { return place_.path(); }
    int folder(bool isSecond) const { return isSecond ? two_ : one_; }

    // As a listing gives them, in the order of their names.
    std::vector<FSRef> listedReferences() const
    {
        const FSRef folder = refAt(place_ / "one");
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
    std::string pathOf(std::size_t number) const { return place_ / "one/" + nameOf(number, false); }

    static bool isSameMoment(const statx_timestamp &first, const statx_timestamp &second)
    {
        return first.tv_sec == second.tv_sec && first.tv_nsec == second.tv_nsec;
    }

    // Both of one moment: an exchange of files that differ in their dates of birth has these to keep at their places.
    void makePair(std::size_t number)
    {
        struct statx made[2]{};
        do
        {
            for (const std::size_t which : {0, 1})
            {
                const std::string path = pathOf(number + which);
                unlink(path.c_str());
                close(open(path.c_str(), O_CREAT | O_WRONLY, 0644));
                statx(AT_FDCWD, path.c_str(), AT_SYMLINK_NOFOLLOW, STATX_BTIME, &made[which]);
            }
        } while (!isSameMoment(made[0].stx_btime, made[1].stx_btime));
    }

    WorkFolder place_;
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
    explicit OurRound(const Disk &disk) : folders(disk), refs(folders.listedReferences()) {}

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

    Folders folders;
    std::vector<FSRef> refs;
    FSRef one = refAt(folders.path() + "/one"), two = refAt(folders.path() + "/two");
};

// Every file has metadata of its own, which stay with its place when it is exchanged.
struct OurTypedRound : OurRound
{
    explicit OurTypedRound(const Disk &disk) : OurRound(disk)
    {
        for (std::size_t number = 0; number < refs.size(); ++number)
        {
            FSCatalogInfo info{};
            info.finderInfo[0] = static_cast<UInt8>('A' + number % 26);
            require(FSSetCatalogInfo(&refs[number], kFSCatInfoFinderInfo, &info), "FSSetCatalogInfo");
        }
    }
};

struct BareRound : Round
{
    explicit BareRound(const Disk &disk) : folders(disk) {}

    void rename()
    {
        const std::string from = nameOf(next, isBack), to = nameOf(next, !isBack);
        require(renameat2(folders.folder(false), from.c_str(), folders.folder(false), to.c_str(), RENAME_NOREPLACE), "renameat2");
        advance();
    }

    void renameByPath()
    {
        const std::string folder = folders.path() + "/one/";
        require(std::rename((folder + nameOf(next, isBack)).c_str(), (folder + nameOf(next, !isBack)).c_str()), "rename");
        advance();
    }

    void renameByLibrary()
    {
        const std::string folder = folders.path() + "/one/";
        std::filesystem::rename(folder + nameOf(next, isBack), folder + nameOf(next, !isBack));
        advance();
    }

    void moveByPath()
    {
        const std::string name = '/' + nameOf(next, false);
        const std::string one = folders.path() + "/one" + name, two = folders.path() + "/two" + name;
        require(std::rename((isBack ? two : one).c_str(), (isBack ? one : two).c_str()), "rename");
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

    // As it is done where nobody knows of RENAME_EXCHANGE: for a moment one of the names is not there.
    void exchangeByRenames()
    {
        const std::string folder = folders.path() + "/one/", other = folder + "other";
        const std::string first = folder + nameOf(next, false), second = folder + nameOf((next + 1) % fileCount, false);
        require(std::rename(first.c_str(), other.c_str()), "rename");
        require(std::rename(second.c_str(), first.c_str()), "rename");
        require(std::rename(other.c_str(), second.c_str()), "rename");
        next = (next + 2) % fileCount;
    }

    Folders folders;
};

// The calls that ours makes, in their order: both locks, is it the same, has it a sidecar or attributes, has the new name a sidecar, the step.
struct ReplayedRound : BareRound
{
    explicit ReplayedRound(const Disk &disk) : BareRound(disk)
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

// Its files are made when it is first used, so that rows that nobody wants cost nothing.
template <typename Kind>
class OnFirstUse
{
public:
    explicit OnFirstUse(const Disk &disk) : disk_(disk) {}
    Kind *operator->() const
    {
        if (!*round_)
            *round_ = std::make_unique<Kind>(disk_);
        return round_->get();
    }

private:
    Disk disk_;
    std::shared_ptr<std::unique_ptr<Kind>> round_ = std::make_shared<std::unique_ptr<Kind>>();
};

void addRowsOn(const Disk &disk)
{
    const std::string &diskName = disk.name;
    const auto ours = [&] { return OnFirstUse<OurRound>(disk); };
    const auto bare = [&] { return OnFirstUse<BareRound>(disk); };
    const auto replayed = [&] { return OnFirstUse<ReplayedRound>(disk); };
    const auto typed = [&] { return OnFirstUse<OurTypedRound>(disk); };
    const Aim besideBare{1.05, 0, changesCost}, besideTheSame{1.05, 0, changesCost}, besideExchange{1.1, 0, changesCost};
    addRow(
        {"rename, " + diskName, "renameat2", "", TablePlace::floor, besideBare}, [mine = ours()] { mine->rename(); },
        [their = bare()] { their->rename(); });
    addRow(
        {"rename, " + diskName, "rename, by path", "", TablePlace::peer}, [mine = ours()] { mine->rename(); },
        [their = bare()] { their->renameByPath(); });
    addRow(
        {"rename, " + diskName, "std::filesystem", "", TablePlace::peer}, [mine = ours()] { mine->rename(); },
        [their = bare()] { their->renameByLibrary(); });
    addRow(
        {"rename, our own part, " + diskName, "the same calls", "", TablePlace::floor, besideTheSame}, [mine = ours()] { mine->rename(); },
        [their = replayed()] { their->rename(); });
    addRow(
        {"move, " + diskName, "renameat2", "", TablePlace::floor, besideBare}, [mine = ours()] { mine->move(); },
        [their = bare()] { their->move(); });
    addRow(
        {"move, " + diskName, "rename, by path", "", TablePlace::peer}, [mine = ours()] { mine->move(); },
        [their = bare()] { their->moveByPath(); });
    addRow(
        {"move, our own part, " + diskName, "the same calls", "", TablePlace::floor, besideTheSame}, [mine = ours()] { mine->move(); },
        [their = replayed()] { their->move(); });
    addRow(
        {"exchange, " + diskName, "RENAME_EXCHANGE", "files made at one moment, without metadata", TablePlace::floor, besideExchange},
        [mine = ours()] { mine->exchange(); }, [their = bare()] { their->exchange(); });
    addRow(
        {"exchange, " + diskName, "three renames", "", TablePlace::peer}, [mine = ours()] { mine->exchange(); },
        [their = bare()] { their->exchangeByRenames(); });
    addRow(
        {"exchange, our own part, " + diskName, "the same calls", "", TablePlace::floor, besideTheSame},
        [mine = ours()] { mine->exchange(); }, [their = replayed()] { their->exchange(); });
    addRow(
        {"exchange of files with types, " + diskName, "RENAME_EXCHANGE", "with all metadata kept at their places", TablePlace::floor,
         besideExchange},
        [mine = typed()] { mine->exchange(); }, [their = bare()] { their->exchange(); });
}

}   // namespace

int main(int argumentCount, char **arguments)
{
    for (const Disk &disk : disksWithRoom(std::size_t{256} << 20))
        addRowsOn(disk);
    return runRatioTable(argumentCount, arguments);
}
