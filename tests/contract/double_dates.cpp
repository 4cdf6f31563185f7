#include "tests/contract/platform_double.h"

OSStatus GetUTCDateTime(UTCDateTime *utc, OptionBits options)
{
    PlatformDouble &platform = PlatformDouble::current();
    const OSStatus failure = platform.recordStatus("GetUTCDateTime", {platform.pointer(utc, "date"), decimal(options)});
    if (failure != noErr)
        return failure;
    *utc = platform.dates.now;
    return noErr;
}

OSStatus FNNotify(const FSRef *ref, UInt32 message, OptionBits flags)
{
    PlatformDouble &platform = PlatformDouble::current();
    return platform.recordStatus("FNNotify", {platform.files.describe(ref), decimal(message), decimal(flags)});
}
