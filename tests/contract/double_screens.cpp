#include "tests/contract/platform_double.h"

OSErr Gestalt(OSType selector, SInt32 *response)
{
    PlatformDouble &platform = PlatformDouble::current();
    const OSErr failure = platform.record("Gestalt", {codeText(selector), platform.pointer(response, "response")});
    if (failure == noErr)
        *response = platform.screens.quickdrawVersion;
    return failure;
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
