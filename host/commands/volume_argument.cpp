#include "host/commands/volume_argument.h"

#include "host/objects.h"
#include "host/text.h"

#include "platform/files.h"

namespace host
{

namespace
{

bool isNumber(const std::string &text)
{
    return !text.empty() && text.find_first_not_of("0123456789", text[0] == '-' ? 1 : 0) == std::string::npos && text != "-";
}

OSErr volumeNumbered(const std::string &text, FSVolumeRefNum &volume)
{
    long number = text.size() > 6 ? 0 : std::stol(text);
    if (number == kFSInvalidVolumeRefNum || number < -32768 || number > 32767)
        return nsvErr;
    volume = static_cast<FSVolumeRefNum>(number);
    return noErr;
}

OSErr volumeNamed(const std::string &name, FSVolumeRefNum &volume)
{
    for (ItemCount index = 1;; ++index)
    {
        HFSUniStr255 volumeName = {};
        FSVolumeRefNum found = 0;
        OSErr result = FSGetVolumeInfo(kFSInvalidVolumeRefNum, index, &found, kFSVolInfoNone, nullptr, &volumeName, nullptr);
        if (result != noErr)
            return result;
        if (bytesFromName(volumeName) != name)
            continue;
        volume = found;
        return noErr;
    }
}

}   // namespace

OSStatus volumeOfPath(const std::string &path, FSVolumeRefNum &volume)
{
    FSRef ref;
    FSCatalogInfo catalog = {};
    OSStatus result = findObject(path, Links::follow, ref);
    if (result == noErr)
        result = FSGetCatalogInfo(&ref, kFSCatInfoVolume, &catalog, nullptr, nullptr, nullptr);
    if (result == noErr)
        volume = catalog.volume;
    return result;
}

OSStatus findVolume(const std::string &text, FSVolumeRefNum &volume)
{
    if (isNumber(text))
        return volumeNumbered(text, volume);
    return text.find('/') == std::string::npos ? volumeNamed(text, volume) : volumeOfPath(text, volume);
}

}   // namespace host
