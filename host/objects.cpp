#include "host/objects.h"

#include "host/text.h"

#include "platform/files.h"
#include "platform/parameter_blocks.h"
#include "platform/results.h"
#include "platform/text.h"

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <system_error>

namespace host
{

namespace
{

const UInt8 *pathBytes(const std::string &path)
{
    return reinterpret_cast<const UInt8 *>(path.c_str());
}

// The folder that serves as the startup volume, without symbolic links; empty if the whole machine does.
std::filesystem::path startupVolumeFolder()
{
    const char *setting = std::getenv("ZERB_STARTUP_VOLUME");
    std::string folder = setting != nullptr ? setting : "";
    std::error_code problem;
    std::filesystem::path found = std::filesystem::canonical(folder, problem);
    for (std::size_t comma; problem && (comma = folder.rfind(',')) != std::string::npos;
         found = std::filesystem::canonical(folder, problem))
        folder.resize(comma);   // an option of the volume and no part of the folder's name
    return found;
}

// The current directory as a path on the startup volume.
std::string currentDirectory()
{
    std::error_code gone;
    std::filesystem::path directory = std::filesystem::current_path(gone);
    std::filesystem::path volume = startupVolumeFolder();
    if (volume.empty())
        return directory;
    std::filesystem::path onVolume = directory.lexically_relative(volume);
    if (onVolume.empty() || *onVolume.begin() == "..")
        return "/";
    return onVolume == "." ? "/" : "/" + onVolume.string();
}

// A last part that is a name. With '/' at the end, or as "." or "..", a path means the folder that it leads to.
bool endsWithName(const std::string &path)
{
    std::string last = path.substr(path.rfind('/') + 1);
    return !last.empty() && last != "." && last != "..";
}

OSStatus makeRefInFolder(const FSRef &folder, const std::string &component, FSRef &ref)
{
    std::optional<HFSUniStr255> name = nameFromPathComponent(component);
    if (!name)
        return errFSNameTooLong;
    FSRefParam block = {};
    block.ref = &folder;
    block.nameLength = name->length;
    block.name = name->unicode;
    block.textEncodingHint = kTextEncodingUnknown;
    block.newRef = &ref;
    return PBMakeFSRefUnicodeSync(&block);
}

OSStatus findWithoutFollowing(const std::string &path, FSRef &ref)
{
    std::size_t slash = path.rfind('/');
    std::string folderPath = path.substr(0, slash);
    FSRef folder;
    OSStatus result = FSPathMakeRef(pathBytes(folderPath.empty() ? "/" : folderPath), &folder, nullptr);
    if (result != noErr)
        return result;
    return makeRefInFolder(folder, path.substr(slash + 1), ref);
}

}   // namespace

std::string absolutePath(const std::string &path)
{
    if (path.empty() || path[0] == '/')
        return path;
    std::string directory = currentDirectory();
    return directory == "/" ? "/" + path : directory + "/" + path;
}

std::string linuxPathOf(const std::string &path)
{
    const std::filesystem::path volume = startupVolumeFolder();
    return volume.empty() ? path : volume.string() + path;
}

OSStatus findObject(const std::string &path, Links links, FSRef &ref)
{
    if (path.empty())
        return fnfErr;
    std::string absolute = absolutePath(path);
    FSRef found;
    OSStatus result = links == Links::follow || !endsWithName(absolute) ? FSPathMakeRef(pathBytes(absolute), &found, nullptr)
                                                                        : findWithoutFollowing(absolute, found);
    if (result == noErr)
        ref = found;
    return result;
}

OSStatus writtenPath(const std::function<OSStatus(UInt8 *buffer, UInt32 size)> &write, std::string &path)
{
    constexpr UInt32 longestPath = 4 * 1024 * 1024;   // deep trees have paths far beyond what Linux calls take
    auto buffer = std::make_unique_for_overwrite<UInt8[]>(longestPath);
    const OSStatus result = write(buffer.get(), longestPath);
    if (result == noErr)
        path = reinterpret_cast<const char *>(buffer.get());
    return result;
}

OSStatus pathOfObject(const FSRef &ref, std::string &path)
{
    return writtenPath([&](UInt8 *buffer, UInt32 size) { return FSRefMakePath(&ref, buffer, size); }, path);
}

}   // namespace host
