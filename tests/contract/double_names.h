// The double's text encodings: the script and region of its system, and converters between them and Unicode.
//
// It knows two encodings. In Mac Roman (0) each byte is the code unit of the same number; in the other one (`shifted`) the
// code unit is one higher, so that a name shows which of them has been used.

#pragma once

#include "platform/platform.h"

#include <list>
#include <map>
#include <string>
#include <utility>

struct ConverterObject
{
    bool isFromUnicode;
    TextEncoding encoding;
};

struct NamesDouble
{
    static constexpr TextEncoding shifted = 0x0007;

    long systemScript = 3;
    long systemRegion = 61;

    // What UpgradeScriptInfoToTextEncoding answers for a script and region; where nothing stands, paramErr. The encoding
    // is written whatever the status, so that one that is used after a failure shows.
    struct ScriptAnswer
    {
        OSStatus status;
        TextEncoding encoding;
    };
    std::map<std::pair<ScriptCode, RegionCode>, ScriptAnswer> scriptAnswers = {{{3, 61}, {noErr, shifted}}};

    std::list<ConverterObject> openConverters;

    // "converter 0x7", by its encoding, or "converter ?" if none such is open for that direction.
    std::string describe(const void *converter, bool isFromUnicode) const;
    ConverterObject *find(const void *converter, bool isFromUnicode);

    // Makes a converter for a mapping, or gives null if the double does not know both of its encodings.
    ConverterObject *open(const UnicodeMapping &mapping, bool isFromUnicode);
    OSStatus close(const void *converter, bool isFromUnicode);
};
