// What the tests of catalog and Finder information share: the double's objects, and outputs that show whether they were written.

#pragma once

#include "files/fstoolkit.h"
#include "tests/contract/platform_double.h"

#include <gtest/gtest.h>

#include <cstring>
#include <ostream>

// A variable for every output there is, filled with a pattern that no call writes.
struct PatternedOutputs
{
    PatternedOutputs() { std::memset(static_cast<void *>(this), pattern, sizeof *this); }

    bool untouched() const
    {
        const UInt8 *bytes = reinterpret_cast<const UInt8 *>(this);
        for (std::size_t index = 0; index < sizeof *this; ++index)
            if (bytes[index] != pattern)
                return false;
        return true;
    }

    static constexpr UInt8 pattern = 0x5A;

    FSSpec spec;
    FSRef ref;
    HFSUniStr255 name;
    SInt32 nodeID;
    UInt32 permissions[4];
    FinderInfo finderInfo;
    ExtendedFinderInfo extendedInfo;
    Boolean isDirectory;
    UInt8 userPrivileges;
};

inline bool operator==(const FSRef &a, const FSRef &b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

inline void PrintTo(const FSRef &ref, std::ostream *stream)
{
    *stream << PlatformDouble::current().files.describe(&ref);
}

inline bool operator==(const UTCDateTime &a, const UTCDateTime &b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

inline void PrintTo(const UTCDateTime &date, std::ostream *stream)
{
    *stream << hex(date.highSeconds) << ' ' << hex(date.lowSeconds) << ' ' << hex(date.fraction);
}

inline bool sameBytes(const FSCatalogInfo &a, const FSCatalogInfo &b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

class CatalogTest : public testing::Test
{
protected:
    FSCatalogInfo &infoOf(const std::string &name) { return platform.files.object(name).info; }

    FileInfo fileInfoOf(const std::string &name) { return platform.files.object(name).fileInfo(); }

    void setFinderFlags(const std::string &name, UInt16 flags)
    {
        FileInfo fileInfo = fileInfoOf(name);
        fileInfo.finderFlags = flags;
        platform.files.object(name).setFileInfo(fileInfo);
    }

    PlatformDouble platform;
    PatternedOutputs outputs;

    const FSRef root = platform.files.ref("root");
    const FSRef folder = platform.files.ref("folder");
    const FSRef file = platform.files.ref("file");
    const FSRef nested = platform.files.ref("nested");
    const FSRef noObject = {{1}};
};
