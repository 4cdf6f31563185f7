// The strings of Core Foundation, as far as paths need them.
//
// With kCFStringEncodingUnicode the "C string" is UTF-16 in the machine's own byte order, without a byte-order mark and
// without a terminator.

#pragma once

#include "platform/types.h"

using CFTypeRef = const void *;
using CFAllocatorRef = const struct OpaqueCFAllocator *;
using CFStringRef = const struct OpaqueCFString *;
using CFMutableStringRef = struct OpaqueCFString *;

constexpr CFStringEncoding kCFStringEncodingMacRoman = 0;
constexpr CFStringEncoding kCFStringEncodingUnicode = 0x0100;
constexpr CFStringEncoding kCFStringEncodingUTF8 = 0x08000100;

#pragma GCC visibility push(default)
extern "C"
{

CFMutableStringRef CFStringCreateMutable(CFAllocatorRef allocator, CFIndex maxLength);
void CFStringAppendPascalString(CFMutableStringRef string, ConstStr255Param text, CFStringEncoding encoding);
void CFStringAppendCString(CFMutableStringRef string, const char *text, CFStringEncoding encoding);
Boolean CFStringGetCString(CFStringRef string, char *buffer, CFIndex bufferSize, CFStringEncoding encoding);
CFIndex CFStringGetLength(CFStringRef string);   // in UTF-16 code units
void CFRelease(CFTypeRef object);
}
#pragma GCC visibility pop
