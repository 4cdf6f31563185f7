// zerb volumes: which volumes there are, and what they are like.
#include "host/commands.h"

#include "host/catalog_json.h"
#include "host/commands/volume_argument.h"
#include "host/terminal.h"
#include "host/text.h"

#include "platform/files.h"
#include "platform/memory.h"
#include "standin/standin.h"

#include <array>
#include <cstdio>
#include <cstring>
#include <memory>

namespace host
{

namespace
{

struct Options
{
    std::vector<std::string> volumes;   // none: all
    bool json = false;
};

// ---------------------------------------------------------------------------------------------------------------------
// Asking

struct VolumeSheet
{
    FSVolumeRefNum number = 0;
    std::string name, path;
    UInt64 totalBytes = 0, freeBytes = 0;
    UInt16 fileSystemID = 0, signature = 0, flags = 0;
    GetVolParmsInfoBuffer parameters = {};
    standin::VolumeDescription description;

    bool hardwareLocked() const { return (flags & kFSVolFlagHardwareLockedMask) != 0; }
    bool softwareLocked() const { return (flags & kFSVolFlagSoftwareLockedMask) != 0; }
    bool copiesFiles() const { return (parameters.vMAttrib & 1 << bHasCopyFile) != 0; }
    bool movesAndRenames() const { return (parameters.vMAttrib & 1 << bHasMoveRename) != 0; }
    bool exchangesFiles() const { return (parameters.vMExtendedAttributes & 1 << bSupportsFSExchangeObjects) != 0; }
};

OSErr askPlugin(const Plugin &plugin, VolumeSheet &sheet)
{
    HFSUniStr255 name = {};
    UInt32 size = 0;
    if (OSErr result = plugin.FSGetVInfo(sheet.number, &name, &sheet.freeBytes, &sheet.totalBytes))
        return result;
    sheet.name = bytesFromName(name);
    if (OSErr result = plugin.FSGetVolFileSystemID(sheet.number, &sheet.fileSystemID, &sheet.signature))
        return result;
    return plugin.FSGetVolParms(sheet.number, sizeof sheet.parameters, &sheet.parameters, &size);
}

// What the plug-in has no function for.
OSErr askPlatform(VolumeSheet &sheet)
{
    FSVolumeInfo info = {};
    FSRef root;
    if (OSErr result = FSGetVolumeInfo(sheet.number, 0, nullptr, kFSVolInfoFlags, &info, nullptr, &root))
        return result;
    sheet.flags = info.flags;
    if (OSStatus result = pathOfObject(root, sheet.path))
        return static_cast<OSErr>(result);
    return standin::describeVolume(sheet.number, sheet.description);
}

OSErr askAbout(const Plugin &plugin, FSVolumeRefNum number, VolumeSheet &sheet)
{
    sheet.number = number;
    OSErr result = askPlugin(plugin, sheet);
    return result == noErr ? askPlatform(sheet) : result;
}

// The root folders of all volumes, in their order.
OSErr listRoots(const Plugin &plugin, std::vector<FSRef> &roots)
{
    Handle handle = nullptr;
    UInt32 count = 0;
    OSErr result = plugin.FSGetMountedVolumes(&handle, &count);
    if (result != noErr)
        return result;
    roots.resize(count);
    if (count > 0)
        std::memcpy(roots.data(), *handle, count * sizeof(FSRef));
    DisposeHandle(handle);
    return noErr;
}

// A disk that is unmounted meanwhile is none of them any more.
void askAboutAll(Invocation &invocation, std::vector<VolumeSheet> &sheets)
{
    std::vector<FSRef> roots;
    if (OSErr result = listRoots(invocation.plugin, roots))
        return invocation.report.failure("the volumes", result);
    for (const FSRef &root : roots)
    {
        VolumeSheet sheet;
        FSVolumeRefNum number = 0;
        OSErr result = invocation.plugin.FSGetVRefNum(&root, &number);
        if (result == noErr)
            result = askAbout(invocation.plugin, number, sheet);
        if (result == noErr)
            sheets.push_back(std::move(sheet));
        else if (result != nsvErr)
            invocation.report.failure("volume " + std::to_string(number), result);
    }
}

// ---------------------------------------------------------------------------------------------------------------------
// Showing

// 512 bytes, 96.0 MB, 1.2 TB: in powers of a thousand, as disks are sold.
std::string sizeWithUnit(UInt64 bytes)
{
    const char *const units[] = {"KB", "MB", "GB", "TB", "PB", "EB"};
    if (bytes < 1000)
        return std::to_string(bytes) + (bytes == 1 ? " byte" : " bytes");
    double size = static_cast<double>(bytes) / 1000;
    std::size_t unit = 0;
    for (; size >= 999.95; size /= 1000)
        ++unit;
    char text[32];
    std::snprintf(text, sizeof text, "%.1f %s", size, units[unit]);
    return text;
}

std::string locksText(const VolumeSheet &sheet)
{
    if (sheet.hardwareLocked())
        return sheet.softwareLocked() ? "disk, volume" : "disk";
    return sheet.softwareLocked() ? "volume" : "-";
}

std::string servicesText(const VolumeSheet &sheet)
{
    std::string text;
    for (const auto &[isOffered, word] : {std::pair(sheet.copiesFiles(), "copy"), std::pair(sheet.movesAndRenames(), "move"),
                                          std::pair(sheet.exchangesFiles(), "exchange")})
        if (isOffered)
            text += (text.empty() ? "" : ",") + std::string(word);
    return text.empty() ? "-" : text;
}

// Where paths of this program lead to it, and where it lies on Linux if that is another place.
std::string placeText(const VolumeSheet &sheet)
{
    std::string path = printable(sheet.path), place = printable(sheet.description.place);
    return path == place ? path : path + "  (" + place + ")";
}

constexpr std::size_t columnCount = 8;
using Cells = std::array<std::string, columnCount>;

Cells cellsOf(const VolumeSheet &sheet)
{
    std::string kind = sheet.description.fileSystem.empty() ? "?" : printable(sheet.description.fileSystem);
    return {std::to_string(sheet.number),
            printable(sheet.name),
            sizeWithUnit(sheet.totalBytes),
            sizeWithUnit(sheet.freeBytes),
            kind + (sheet.description.isDirectory ? " directory" : ""),
            locksText(sheet),
            servicesText(sheet),
            placeText(sheet)};
}

// In columns that are as wide as what stands in them; sizes line up at their ends.
void showTable(const std::vector<VolumeSheet> &sheets)
{
    std::vector<Cells> lines{{"NUMBER", "NAME", "SIZE", "FREE", "KIND", "LOCKED", "SERVICES", "PLACE"}};
    std::array<std::size_t, columnCount> widths{};
    for (const VolumeSheet &sheet : sheets)
        lines.push_back(cellsOf(sheet));
    for (const Cells &cells : lines)
        for (std::size_t column = 0; column < columnCount; ++column)
            widths[column] = std::max(widths[column], columnsOf(cells[column]));
    Style style = Style::forStandardOutput();
    for (const Cells &cells : lines)
    {
        std::string line;
        for (std::size_t column = 0; column < columnCount; ++column)
        {
            bool isSize = column == 2 || column == 3, isLast = column + 1 == columnCount;
            std::string space(widths[column] - columnsOf(cells[column]), ' ');
            line += isLast ? cells[column] : (isSize ? space + cells[column] : cells[column] + space) + "  ";
        }
        std::printf("%s\n", &cells == lines.data() ? style.label(line).c_str() : line.c_str());
    }
}

const char *kindOf(const VolumeSheet &sheet)
{
    if (sheet.description.isMountedDisk)
        return "disk";
    return sheet.description.isDirectory ? "directory" : "machine";
}

Json volumeJson(const VolumeSheet &sheet)
{
    return {
        {"number", static_cast<SInt16>(sheet.number)},
        {"name", sheet.name},
        {"total_bytes", sheet.totalBytes},
        {"free_bytes", sheet.freeBytes},
        {"kind", kindOf(sheet)},
        {"file_system", sheet.description.fileSystem},
        {"source", sheet.description.source},
        {"file_system_id", sheet.fileSystemID},
        {"signature", sheet.signature},
        {"hardware_locked", sheet.hardwareLocked()},
        {"software_locked", sheet.softwareLocked()},
        {"services", {{"copy_file", sheet.copiesFiles()}, {"move_rename", sheet.movesAndRenames()}, {"exchange", sheet.exchangesFiles()}}},
        {"path", sheet.path},
        {"place", sheet.description.place}};
}

void askAboutSome(Invocation &invocation, const Options &options, std::vector<VolumeSheet> &sheets, Json &list)
{
    for (const std::string &text : options.volumes)
    {
        VolumeSheet sheet;
        FSVolumeRefNum number = 0;
        OSStatus result = findVolume(text, number);
        if (result == noErr)
            result = askAbout(invocation.plugin, number, sheet);
        if (result != noErr)
        {
            invocation.report.failure(text, result);
            list.push_back(errorJson(text, result));
            continue;
        }
        list.push_back(volumeJson(sheet));
        sheets.push_back(std::move(sheet));
    }
}

void showVolumes(Invocation &invocation, const Options &options)
{
    std::vector<VolumeSheet> sheets;
    Json list = Json::array();
    if (!options.volumes.empty())
        askAboutSome(invocation, options, sheets, list);
    else
    {
        askAboutAll(invocation, sheets);
        for (const VolumeSheet &sheet : sheets)
            list.push_back(volumeJson(sheet));
    }
    if (options.json)
        std::fputs(jsonText(list).c_str(), stdout);
    else if (!sheets.empty())
        showTable(sheets);
}

Action declareVolumes(Arguments &arguments)
{
    auto options = std::make_shared<Options>();
    arguments.optionalPaths("VOLUME", options->volumes, "a volume's number, its name, or a path of anything on it; none: all volumes");
    arguments.json(options->json, "one array with one object per volume; \"error\" in it tells of a failure");
    return [options](Invocation &invocation) { showVolumes(invocation, *options); };
}

}   // namespace

const Command volumesCommand = {
    "volumes",
    "List volumes: names, sizes, locks, and what they offer",
    "The startup volume comes first, then directories that were made volumes and mounted disks. The kernel's own file\n"
    "systems, overlays and what is mounted beneath /dev, /proc, /sys, /run (but for /run/media) and the folders of\n"
    "containers and packages are left out; a path leads into them all the same.\n"
    "LOCKED is `disk` where the disk is mounted read-only and `volume` where the volume has a lock of its own.\n"
    "SERVICES are what the volume does in one step. PLACE is where paths lead to it, and in brackets where it lies on\n"
    "Linux if that is another place. A path as VOLUME has a '/' in it. Numbers hold for one run.\n",
    "  zerb volumes\n"
    "  zerb volumes /home Linux\n"
    "  zerb volumes --json | jq -r '.[] | select(.hardware_locked) | .name'\n",
    declareVolumes,
};

}   // namespace host
