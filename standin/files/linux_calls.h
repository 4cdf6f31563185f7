// The only door to Linux for the file manager: thin system calls, interrupted ones repeated, every call counted.
//
// Every call gives 0 or more on success and the negative errno on failure. Nothing here ever follows a symbolic link in the last component.
// A place is a folder's descriptor (O_PATH is enough) and a name in it; the name "." stands for the folder itself.
#pragma once

#include <cstdint>
#include <ctime>
#include <span>
#include <string>
#include <sys/types.h>
#include <utility>

struct statvfs;

namespace standin
{

// Owns a descriptor. Made from a failed call it is not open, and its number is the negative errno.
class Descriptor
{
public:
    Descriptor() = default;
    explicit Descriptor(int number) : number_(number) {}
    Descriptor(Descriptor &&other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Descriptor &operator=(Descriptor &&other) noexcept;
    ~Descriptor() { reset(); }

    int number() const { return number_; }
    bool isOpen() const { return number_ >= 0; }
    void reset();

private:
    int number_ = -1;
};

// What Linux knows about an object, from one call.
struct ObjectStatus
{
    std::uint64_t device = 0, inode = 0, mount = 0;
    std::uint32_t mode = 0, links = 0, user = 0, group = 0;
    std::uint64_t size = 0, allocated = 0;   // bytes
    std::timespec access{}, change{}, modification{}, birth{};
    bool hasBirth = false;
    bool isMountPoint = false;
    bool mountIsUnique = false;   // no later mount gets its number

    bool isFolder() const { return (mode & 0170000) == 0040000; }
    bool isRegular() const { return (mode & 0170000) == 0100000; }
    bool isSymbolicLink() const { return (mode & 0170000) == 0120000; }
};

namespace linux_calls
{

std::uint64_t count();
void doNotCountOnThisThread();   // what it closes; for a thread that works for nobody

// Lets a test have calls fail: asked before each call, the filter gives 0 or the errno to fail with instead. Closing always closes. Null ends it.
// It is told the name of the function here that is about to make the call. After EINTR the call is made again, as after a signal, and it is asked again.
using CallFilter = int (*)(const char *call);
void setCallFilter(CallFilter filter);

// Lets a test have bytes go in pieces, as network disks and signals make them: no call that reads, writes or copies moves more. 0 ends it.
void setMostBytesAtOnce(std::size_t most);

std::timespec now();                 // the exact clock, never the coarse one
std::int64_t milliseconds();         // a clock that only goes forward
std::int64_t coarseMilliseconds();   // the same, cheaper, and some milliseconds behind
void sleepMilliseconds(int milliseconds);

// Whether a look that failed says that nothing has the name, which a disk may not even allow. After any other failure nobody knows.
bool saysAbsent(int failure);

// Whether a failure says nothing of the disk but only that this process or the machine has no more descriptors or memory.
bool saysUsedUp(int failure);

int statusAt(int folder, const char *name, ObjectStatus &status);
int statusOf(int descriptor, ObjectStatus &status);
int modificationOf(int descriptor, std::timespec &time);   // costs less than the whole status

int openAt(int folder, const char *name, int flags, mode_t mode = 0);
int openAbsoluteFolder(const char *path);                      // follows links: only for what the host itself names
int openFolderBeneath(int folder, const char *relativePath);   // no links, no mounts, not above; -ENOSYS on old kernels
int openListedFolder(int folder, const char *name);            // for reading; likewise
int openTemporary(int folder, mode_t mode);                    // a file without a name: linux_copies.h gives it one
int openByInode(int anyDescriptorOnDisk,
                std::uint64_t inode);   // needs a privilege, and a disk whose handles can be made from an inode number

ssize_t readDirectory(int descriptor, std::span<char> buffer);
ssize_t readLink(int folder, const char *name, std::span<char> target);
std::string pathOf(int descriptor);   // where the kernel says that it lies, or empty
std::string currentDirectory();       // or empty

ssize_t listAttributes(int folder, const char *name, std::span<char> names);
ssize_t getAttribute(int folder, const char *name, const char *attribute, std::span<std::uint8_t> value);
int setAttribute(int descriptor, const char *attribute, std::span<const std::uint8_t> value);   // O_PATH is enough
int removeAttribute(int descriptor, const char *attribute);                                     // likewise

int setTimes(int descriptor, const std::timespec times[2]);   // O_PATH is enough, for these three
int setMode(int descriptor, std::uint32_t mode);
int setOwner(int descriptor, std::uint32_t user, std::uint32_t group);

int linkAt(int fromFolder, const char *fromName, int toFolder, const char *toName);
int renameAt(int fromFolder, const char *fromName, int toFolder, const char *toName);   // may replace
int renameWithoutReplacing(int fromFolder, const char *fromName, int toFolder, const char *toName);
int exchangeNames(int firstFolder, const char *firstName, int secondFolder, const char *secondName);   // both must be there
int unlinkAt(int folder, const char *name);
int removeFolderAt(int folder, const char *name);
int makeFolderAt(int folder, const char *name, mode_t mode);

ssize_t readAt(int descriptor, std::span<std::uint8_t> bytes, std::uint64_t offset);      // until full or the end of the file
int writeAt(int descriptor, std::span<const std::uint8_t> bytes, std::uint64_t offset);   // all or a failure
int setSize(int descriptor, std::uint64_t size);

// Makes a file longer, with zeros, and has the disk set room aside for them, where it can do that. A failure leaves the file as long as it was.
int growAllocated(int descriptor, std::uint64_t from, std::uint64_t to);

// Like readAt, but the page cache keeps no more than it had before. -EOPNOTSUPP or -EINVAL where kernel or disk cannot do that.
ssize_t readPassingBy(int descriptor, std::span<std::uint8_t> bytes, std::uint64_t offset);

// Says that what is read through a descriptor is read once: it then never displaces what others use again and again.
int expectNoReuse(int descriptor);

int copyBytes(int from, std::uint64_t fromOffset, int to, std::uint64_t toOffset, std::uint64_t length);   // in the kernel where it can

int tryLock(int descriptor);   // -EWOULDBLOCK while another description of the same object holds it
int unlock(int descriptor);
int diskStatistics(int descriptor, struct statvfs &statistics);
std::int64_t diskKind(int descriptor);   // the kernel's magic number for the file system
bool mayAccess(int folder, const char *name, int mode);
std::uint32_t effectiveUser();

}   // namespace linux_calls
}   // namespace standin
