#include "standin/files/specified_objects.h"

#include <algorithm>

namespace standin
{

namespace
{

constexpr std::int64_t longestMilliseconds = 1000;

struct SpecifiedFile
{
    FSSpec spec{};   // volume 0: none
    std::string name;
    ObjectStatus status;
    std::int64_t when = 0;
};

SpecifiedFile &lastOfThread()
{
    static thread_local SpecifiedFile last;
    return last;
}

bool sameName(ConstStr255Param a, ConstStr255Param b)
{
    return std::equal(a, a + a[0] + 1, b, b + b[0] + 1);
}

}   // namespace

void noteSpecified(const Object &object, const FSSpec &spec)
{
    SpecifiedFile &last = lastOfThread();
    last.spec.vRefNum = 0;
    if (!object.status.isRegular())
        return;
    last.name = object.name;
    last.status = object.status;
    last.when = linux_calls::coarseMilliseconds();
    last.spec = spec;
}

bool recallSpecified(FSVolumeRefNum volume, SInt32 directoryID, ConstStr255Param name, Object &object)
{
    const SpecifiedFile &last = lastOfThread();
    const bool isNamed =
        volume != 0 && name && last.spec.vRefNum == volume && last.spec.parID == directoryID && sameName(last.spec.name, name);
    if (!isNamed || linux_calls::coarseMilliseconds() - last.when > longestMilliseconds)
        return false;
    object.volume = findVolume(volume);
    object.parentID = static_cast<UInt32>(directoryID);
    object.name = last.name;
    object.status = last.status;
    return object.volume && openFolder(*object.volume, object.parentID, object.folder) == noErr;
}

}   // namespace standin
