// What the tests of names share: names as the converters take and give them, and the calls that a conversion makes.

#pragma once

#include "tests/contract/catalog_fixture.h"

#include <string>
#include <vector>

inline std::vector<UniChar> unitsOf(const std::string &text)
{
    std::vector<UniChar> units;
    for (const char each : text)
        units.push_back(static_cast<UInt8>(each));
    return units;
}

inline std::string textOf(const HFSUniStr255 &name)
{
    return textOf(name.unicode, name.length);
}

// The mapping for a hint that is not 0xFFFF, or for what became of that.
inline Calls mappingCalls(TextEncoding hint)
{
    return {"CreateTextEncoding(0x103, 2, 0)", "GetTextEncodingBase(" + hex(hint) + ")"};
}

inline Calls conversionToText(TextEncoding encoding, UInt32 byteLength, int capacity)
{
    const std::string other = hex(encoding);
    return {"CreateUnicodeToTextInfo(unicodeEncoding=0x20103, otherEncoding=" + other + ", mappingVersion=4, converter)",
            "ConvertFromUnicodeToText(converter " + other + ", " + decimal(byteLength) + ", name, 0x20, 0, -, -, -, " + decimal(capacity) +
                ", read, written, text)",
            "DisposeUnicodeToTextInfo(converter " + other + ")"};
}

inline Calls conversionToUnicode(TextEncoding encoding, int byteLength)
{
    const std::string other = hex(encoding);
    return {"CreateTextToUnicodeInfo(unicodeEncoding=0x20103, otherEncoding=" + other + ", mappingVersion=4, converter)",
            "ConvertFromTextToUnicode(converter " + other + ", " + decimal(byteLength) +
                ", text, 0x0, 0, -, -, -, 510, read, written, name)",
            "DisposeTextToUnicodeInfo(converter " + other + ")"};
}

class NamesTest : public CatalogTest
{
protected:
    NamesTest() { std::memset(shortName, 0x5A, sizeof shortName); }

    void TearDown() override { EXPECT_TRUE(platform.names.openConverters.empty()) << "a converter is left open"; }

    OSErr toShortName(const std::string &name, TextEncoding hint = kTextEncodingMacRoman, Boolean isVolumeName = false)
    {
        const std::vector<UniChar> units = unitsOf(name);
        return UnicodeNameGetHFSName(static_cast<UniCharCount>(units.size()), units.data(), hint, isVolumeName, shortName);
    }

    OSErr toUnicodeName(const std::string &name, TextEncoding hint = kTextEncodingMacRoman)
    {
        Str255 text;
        storePascalString(name, text);
        return HFSNameGetUnicodeName(text, hint, &outputs.name);
    }

    unsigned char shortName[40];   // longer than a short name, so that what is written behind it shows
};
