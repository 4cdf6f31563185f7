// What a host may ask of the stand-in itself, beyond the platform's own calls.
//
// Everything here is optional: a host that never calls it works on the startup volume `/`, or on what the environment names
// (ZERB_STARTUP_VOLUME, ZERB_VOLUMES).
#pragma once

#include "platform/platform.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#pragma GCC visibility push(default)

namespace standin
{

// How a directory behaves as a volume.
struct VolumeOptions
{
    bool locked = false;             // software lock: every change is refused with vLckdErr
    bool copyFileOffered = true;     // the volume's parameters report bHasCopyFile
    bool moveRenameOffered = true;   // … bHasMoveRename
    bool exchangeOffered = true;     // … bSupportsFSExchangeObjects
};

// Makes `directory` the startup volume: absolute paths then resolve beneath it and cannot leave it.
// Its name is the directory's own. References and volume numbers handed out earlier stop being valid.
// Result: noErr; dirNFErr if it cannot be opened; errFSNotAFolder if it is no directory.
OSErr useStartupVolume(const std::string &directory, const VolumeOptions &options = {});

// Makes `directory` one more volume, reached in a host's own disk at `/Volumes/NAME`.
// `volume` may be null. Result: noErr; dupFNErr if the name is taken; bdNamErr if it is no volume name; dirNFErr, errFSNotAFolder as above.
OSErr addDirectoryVolume(const std::string &name, const std::string &directory, const VolumeOptions &options, FSVolumeRefNum *volume);

// Takes a directory volume away; its references then give nsvErr. Result: noErr; nsvErr; fBsyErr while a fork on it is open.
OSErr removeDirectoryVolume(FSVolumeRefNum volume);

// Sets or clears the software lock of a directory volume. Result: noErr; nsvErr; paramErr if it is no directory volume.
OSErr setVolumeLock(FSVolumeRefNum volume, bool locked);

// Where a volume comes from, on Linux.
struct VolumeDescription
{
    std::string place;            // of its root
    std::string fileSystem;       // such as "ext4", as the kernel calls it; empty where it shows no mounts
    std::string source;           // such as "/dev/sda1"; likewise
    bool isDirectory = false;     // a directory that was made a volume, the startup volume included
    bool isMountedDisk = false;   // one that may be unmounted, and is no volume then any more
};

// Result: noErr; nsvErr; the code of why nobody can tell what is mounted.
OSErr describeVolume(FSVolumeRefNum volume, VolumeDescription &description);

// What is wrong with ZERB_STARTUP_VOLUME or ZERB_VOLUMES, in one sentence without a full stop, or null. With a bad startup volume every call gives nsvErr.
const char *environmentProblem();

// Where file IDs and other lasting state of this user are kept, instead of what ZERB_STATE_FOLDER or XDG_STATE_HOME say. Made when it is first needed.
// An empty path goes back to those.
void useStateFolder(const std::string &directory);

// Where FindFolder finds one of its folders, instead of what the environment says: a path as FSPathMakeRef takes it, beginning with '/'.
// An empty path goes back to that.
// Result: noErr; fnfErr if FindFolder knows no such folder; paramErr for a path that does not begin with '/'.
OSErr useSpecialFolder(SInt16 domain, OSType folderType, const std::string &path);

// Gets every notification that FNNotify sends in this process, on the caller's thread, before FNNotify returns.
using NotificationObserver = std::function<void(const FSRef &object, UInt32 message, OptionBits options)>;

// Registers an observer; the result is its number, for removeNotificationObserver.
int addNotificationObserver(NotificationObserver observer);
void removeNotificationObserver(int number);

// Whether a copied file, its metadata and its name are on the disk itself before PBHCopyFileSync returns. Off at first: then a power cut shortly after a copy
// may lose it, as with every other change. A process that ends loses nothing either way.
void setSyncsCopies(bool syncs);

// Is told how far a copy has come, on the thread that copies: after every 64 MiB at the latest, and at the end. `bytesInAll` counts data and resource fork; a
// file whose blocks are shared is done at once, and an empty one is not reported. It must not copy files itself, nor throw.
using CopyProgress = std::function<void(std::uint64_t bytesDone, std::uint64_t bytesInAll)>;

// Sets who is told; an empty function ends it. A copy that is under way goes on with the one that was set when it began.
void setCopyProgress(CopyProgress progress);

// The part of the stand-in that work in this process had to do without, and why it could not be loaded, in one sentence without a full stop; null
// if none was missing. Names and texts that need the part are refused with paramErr or kTextUnsupportedEncodingErr, file IDs with paramErr.
const char *missingPart();

// Whether Unicode has this character and it can stand in a line of text: it is no control character, no line end, and turns no direction of
// writing. Where characters beyond ASCII are not known, they cannot.
bool isPlainCharacter(char32_t character);

// Text in Unicode's composed form.
std::u16string composedText(std::u16string_view unicode);

// How many system calls the file manager has made in this process so far.
std::uint64_t systemCallCount();

// The name of a result code, such as "fnfErr", or null for a code that has none here.
const char *resultCodeName(OSStatus code);

// What a result code means, in one plain sentence without a full stop, or null.
const char *resultCodeMeaning(OSStatus code);

}   // namespace standin

#pragma GCC visibility pop
