// What the tests of folders and small files share: paths, and the calls that a conversion makes.

#pragma once

#include "folders/folderfiles.h"
#include "tests/contract/catalog_fixture.h"

#include <string>

// The path of `text`, as a length-prefixed string.
struct ColonPath
{
    ColonPath(const std::string &text) { storePascalString(text, bytes); }
    operator ConstStr255Param() const { return bytes; }

    Str255 bytes = {};
};

inline Calls pathConversion(const std::string &path, CFStringEncoding encoding = kCFStringEncodingMacRoman)
{
    return {"CFStringCreateMutable(-, 0)", "CFStringAppendPascalString(string, \"" + path + "\", " + hex(encoding) + ")",
            "CFStringGetCString(string, buffer, 512, 0x8000100)", "CFRelease(string)"};
}

inline Calls nameConversion(const std::string &name)
{
    return {"CFStringCreateMutable(-, 0)", "CFStringAppendCString(string, \"" + name + "\", 0x8000100)",
            "CFStringGetCString(string, buffer, 510, 0x100)", "CFStringGetLength(string)", "CFRelease(string)"};
}

inline Calls lookUp(const std::string &posixPath)
{
    return {"FSPathMakeRef(\"" + posixPath + "\", ref, -)"};
}

class FoldersTest : public CatalogTest
{
protected:
    void TearDown() override { EXPECT_TRUE(platform.coreFoundation.strings.empty()) << "a string is not released"; }

    static constexpr SInt32 folderID = 17;
    static constexpr FSVolumeRefNum volume = -100;
};
