#include "standin/interface/strings.h"

#include "platform/core_foundation.h"

namespace standin
{

std::string utf8Of(const std::string &text)
{
    CFMutableStringRef string = CFStringCreateMutable(nullptr, 0);
    if (string == nullptr)
        return {};
    char buffer[4 * 255 + 1] = "";
    CFStringAppendPascalString(string, PascalText(text).bytes(), kCFStringEncodingMacRoman);
    const bool fits = CFStringGetCString(string, buffer, sizeof buffer, kCFStringEncodingUTF8);
    CFRelease(string);
    return fits ? buffer : "";
}

}   // namespace standin
