// The volume's parameters: which services it offers.
#include "platform/platform.h"
#include "standin/files/volume_services.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace standin
{

bool offersCopyFile(const Volume &volume)
{
    return volume.options.copyFileOffered;
}

bool offersMoveRename(const Volume &volume)
{
    return volume.options.moveRenameOffered;
}

bool offersExchange(const Volume &volume)
{
    return volume.options.exchangeOffered && volume.hasAttributes && volume.hasStableInodes;
}

}   // namespace standin

using namespace standin;

namespace
{

constexpr SInt16 parametersVersion = 3;   // the first that has room for the length of names
constexpr UniCharCount longestName = 255;

SInt32 bitIf(bool isOffered, int number)
{
    return isOffered ? SInt32{1} << number : 0;
}

// What is not named here is zero: the volume is a local one, neither faster nor slower than others, and nobody's server.
GetVolParmsInfoBuffer parametersOf(const Volume &volume)
{
    GetVolParmsInfoBuffer parameters{};
    parameters.vMVersion = parametersVersion;
    parameters.vMAttrib = bitIf(offersCopyFile(volume), bHasCopyFile) | bitIf(offersMoveRename(volume), bHasMoveRename);
    parameters.vMExtendedAttributes = bitIf(offersExchange(volume), bSupportsFSExchangeObjects);
    parameters.vMMaxNameLength = longestName;
    return parameters;
}

OSErr getParameters(IOParam &block)
{
    if (block.ioReqCount < 0 || (block.ioReqCount > 0 && !block.ioBuffer))
        return paramErr;
    const VolumeHandle volume = findVolume(block.ioVRefNum);
    if (!volume)
        return nsvErr;
    const GetVolParmsInfoBuffer parameters = parametersOf(*volume);
    block.ioActCount = std::min(block.ioReqCount, static_cast<SInt32>(sizeof parameters));
    if (block.ioActCount > 0)
        std::memcpy(block.ioBuffer, &parameters, static_cast<std::size_t>(block.ioActCount));
    return noErr;
}

}   // namespace

OSErr PBHGetVolParmsSync(HParmBlkPtr block)
try
{
    return block ? block->ioParam.ioResult = getParameters(block->ioParam) : static_cast<OSErr>(paramErr);
}
catch (const std::bad_alloc &)
{
    return block->ioParam.ioResult = memFullErr;
}
