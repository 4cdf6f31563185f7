// zerb mount: the record from which a volume is mounted again, to a file and back.
#include "host/commands.h"

#include "host/commands/output_file.h"
#include "host/commands/parts.h"
#include "host/commands/volume_argument.h"
#include "host/text.h"

#include "platform/files.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

namespace host
{

namespace
{

constexpr std::size_t longestRecord = 0x7FFF;   // its length is a 16-bit number

// ---------------------------------------------------------------------------------------------------------------------
// save

struct SaveOptions
{
    std::string volume, file;
};

OSStatus recordOf(const Plugin &plugin, const std::string &volume, std::vector<char> &record)
{
    FSVolumeRefNum number = 0;
    SInt16 size = 0;
    if (OSStatus result = findVolume(volume, number))
        return result;
    if (OSErr result = plugin.FSGetVolMountInfoSize(number, &size))
        return result;
    record.resize(longestRecord);   // should it have become longer meanwhile
    if (OSErr result = plugin.FSGetVolMountInfo(number, record.data()))
        return result;
    record.resize(static_cast<std::size_t>(size));
    return noErr;
}

void save(Invocation &invocation, const SaveOptions &options)
{
    std::vector<char> record;
    OutputFile output;
    if (OSStatus result = recordOf(invocation.plugin, options.volume, record))
    {
        invocation.report.failure(options.volume, result, "saving how it is mounted");
        if (result == paramErr)
            invocation.report.remark(options.volume, "the startup volume cannot be mounted again: it is always there");
        return;
    }
    if (!output.open(options.file))
        return invocation.report.problem(options.file, whyNoOutput(errno));
    if (!output.write(record) || !output.finish())
        invocation.report.problem(options.file, std::strerror(errno));
}

Action declareSave(Arguments &arguments)
{
    auto options = std::make_shared<SaveOptions>();
    arguments.path("VOLUME", options->volume, "a volume's number, its name, or a path of anything on it");
    arguments
        .text(
            "--to", "FILE", [options](const std::string &typed) { options->file = typed; },
            "the file to make, or - for the standard output")
        .require();
    return [options](Invocation &invocation) { save(invocation, *options); };
}

const Part savePart = {
    "save",
    "Save how a volume is mounted",
    "The record holds what a disk is, where it is mounted and how; or a directory's place, name and options. It does\n"
    "not hold passwords, nor anything of what is on the volume.\n",
    "  zerb mount save /media/ada/Stick --to stick.mount\n"
    "  zerb mount save Archive --to archive.mount\n",
    declareSave,
};

// ---------------------------------------------------------------------------------------------------------------------
// replay

struct ReplayOptions
{
    std::string file;
};

// Zeros follow the file's bytes, as far as the longest record goes: it tells its own length, which need not be true. False with errno.
bool readRecord(const std::string &name, std::vector<char> &record)
{
    record.assign(longestRecord + 1, 0);
    std::FILE *file = name == standardStream ? stdin : std::fopen(name.c_str(), "rb");
    if (file == nullptr)
        return false;
    std::size_t length = std::fread(record.data(), 1, record.size(), file);
    bool isRead = std::ferror(file) == 0;
    if (length > longestRecord)   // no record, whatever it begins with
        record.assign(longestRecord + 1, 0);
    if (file != stdin)
        std::fclose(file);
    return isRead;
}

void showVolume(FSVolumeRefNum number)
{
    HFSUniStr255 name = {};
    FSRef root;
    std::string path;
    if (FSGetVolumeInfo(number, 0, nullptr, kFSVolInfoNone, nullptr, &name, &root) != noErr || pathOfObject(root, path) != noErr)
        return;
    std::printf("%d  %s  %s\n", int{number}, printable(bytesFromName(name)).c_str(), printable(path).c_str());
}

// What a code means here, where that is more than it says itself.
const char *remarkOn(OSErr result)
{
    switch (result)
    {
    case paramErr: return "it holds no whole record, or paths cannot lead to the record's place here, or there is no mount program";
    case permErr: return "the system's table of disks (fstab) decides what others than root may mount";
    case fBsyErr: return "another disk is mounted at the record's place";
    case nsvErr: return "the record's device is not there";
    case dirNFErr:
    case errFSNotAFolder: return "the record's place is no folder";
    case dupFNErr: return "another volume has the record's name";
    case ioErr: return "the mount program failed; it says more when it is run by hand";
    default: return nullptr;
    }
}

void replay(Invocation &invocation, const ReplayOptions &options)
{
    std::vector<char> record;
    FSVolumeRefNum number = 0;
    if (!readRecord(options.file, record))
        return invocation.report.problem(options.file, std::strerror(errno));
    OSErr result = invocation.plugin.FSVolumeMount(record.data(), &number);
    if (result == noErr)
        return showVolume(number);
    invocation.report.problem(options.file, "mounting: " + describeResult(result) + ": " + meaningOfResult(result));
    if (const char *remark = remarkOn(result))
        invocation.report.remark(options.file, remark);
}

Action declareReplay(Arguments &arguments)
{
    auto options = std::make_shared<ReplayOptions>();
    arguments
        .text(
            "--from", "FILE", [options](const std::string &typed) { options->file = typed; },
            "the file with the record, or - for the standard input")
        .require();
    return [options](Invocation &invocation) { replay(invocation, *options); };
}

const Part replayPart = {
    "replay",
    "Mount a volume again as it was saved",
    "Shows the volume's number, name and path. A disk that is mounted already is left as it is, and shown. Otherwise the\n"
    "system's own mount program mounts it: as the system's table of disks (fstab) says if that lists the place, else,\n"
    "for root, as the record says. A record can mount anything anywhere: root should replay none that others made.\n"
    "A directory becomes a volume for this run alone, so replaying one shows whether it could.\n",
    "  zerb mount replay --from stick.mount\n",
    declareReplay,
};

const Part *const partOrder[] = {&savePart, &replayPart};

Action declareMount(Arguments &arguments)
{
    return declareParts(arguments, partOrder);
}

}   // namespace

const Command mountCommand = {
    "mount",
    "Save how a volume is mounted, and mount it again",
    "`zerb mount PART --help` explains each part.\n",
    "  zerb mount save /media/ada/Stick --to stick.mount\n"
    "  zerb mount replay --from stick.mount\n",
    declareMount,
};

}   // namespace host
