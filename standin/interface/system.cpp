// What this system has: a table for Gestalt, and the main screen.
#include "platform/system.h"

#include "standin/interface/screen.h"

#include "platform/drawing.h"

using namespace standin;

namespace
{

struct Answer
{
    OSType selector;
    SInt32 response;
};

constexpr Answer answers[] = {
    {gestaltQuickdrawVersion, 0x0230},   // with colours, 32 bits deep
    {gestaltSystemVersion, 0x1049},      // the last one whose calls these are
};

}   // namespace

// The response is written only on success. Result: noErr; gestaltUndefSelectorErr; paramErr for a null pointer.
OSErr Gestalt(OSType selector, SInt32 *response)
{
    if (response == nullptr)
        return paramErr;
    for (const Answer &answer : answers)
        if (answer.selector == selector)
            return *response = answer.response, noErr;
    return gestaltUndefSelectorErr;
}

// The one device there is. Its record is filled anew with each call.
GDHandle GetMainDevice(void)
{
    static GDevice device;
    static GDevice *handle = &device;
    device.gdRect = theScreen().bounds();
    return &handle;
}

// The screen's pixels themselves are out of reach: only the bounds are told.
BitMap *GetQDGlobalsScreenBits(BitMap *screenBits)
{
    if (screenBits != nullptr)
        *screenBits = {nullptr, 0, theScreen().bounds()};
    return screenBits;
}
