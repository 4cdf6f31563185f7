// What a host may ask about where a volume comes from.
#include "standin/files/mounted_disks.h"

namespace standin
{

OSErr describeVolume(FSVolumeRefNum number, VolumeDescription &description)
{
    std::vector<Mount> mounts;
    const VolumeHandle volume = findVolume(number);
    if (!volume)
        return nsvErr;
    if (OSErr result = readMounts(mounts))
        return result;
    const std::string path = volume->root.path();
    const Mount *mount = mountOfPlace(mounts, path.empty() ? "/" : path);
    description = {};
    description.place = path.empty() ? "/" : path;
    description.isDirectory = volume->isDirectoryVolume;
    description.isMountedDisk = volume->isMountedDisk;
    description.fileSystem = mount ? mount->kind : "";
    description.source = mount ? mount->source : "";
    return noErr;
}

}   // namespace standin
