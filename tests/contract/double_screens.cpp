#include "tests/contract/platform_double.h"

OSErr Gestalt(OSType selector, SInt32 *response)
{
    PlatformDouble &platform = PlatformDouble::current();
    const OSErr failure = platform.record("Gestalt", {codeText(selector), platform.pointer(response, "response")});
    if (failure != noErr)
        return failure;
    *response = platform.screens.quickdrawVersion;
    return platform.screens.codeBesideTheVersion;
}

BitMap *GetQDGlobalsScreenBits(BitMap *screenBits)
{
    PlatformDouble &platform = PlatformDouble::current();
    platform.note("GetQDGlobalsScreenBits", {platform.pointer(screenBits, "bits")});
    *screenBits = {nullptr, 64, platform.screens.oldScreen};
    return screenBits;
}

GDHandle GetMainDevice()
{
    PlatformDouble &platform = PlatformDouble::current();
    platform.note("GetMainDevice", {});
    return &platform.screens.mainDeviceMaster;
}
