// What the tests of moving, renaming and exchanging share. The objects are "file" in "folder" and "inner" in "nested".

#pragma once

#include "tests/contract/catalog_fixture.h"

#include <algorithm>
#include <string>

class MovesTest : public testing::Test
{
protected:
    MovesTest()
    {
        platform.nameAddress(&newRef, "new");
        platform.nameAddress(&newSource, "newSource");
        platform.nameAddress(&newDestination, "newDestination");
    }

    FSCatalogInfo &infoOf(const std::string &label) { return platform.files.object(label).info; }

    GetVolParmsInfoBuffer &parameters() { return platform.files.volumes.front().parameters; }

    // An object whose name is not what lines call it: there may be others of that name elsewhere.
    void add(const std::string &label, const std::string &name, const std::string &parent)
    {
        platform.files.add(label, &platform.files.object(parent), false).name = name;
    }

    // The calls without those that only copy references from one variable to another.
    Calls steps()
    {
        Calls lines;
        std::copy_if(platform.calls().begin(), platform.calls().end(), std::back_inserter(lines),
                     [](const std::string &line) { return !line.starts_with("BlockMoveData("); });
        return lines;
    }

    // Those of them that come after number `nth`.
    Calls stepsAfter(int nth)
    {
        Calls lines = steps();
        lines.erase(lines.begin(), lines.begin() + std::min(nth, static_cast<int>(lines.size())));
        return lines;
    }

    // The first so many lines, if there are so many.
    static Calls firstOf(Calls lines, std::size_t count)
    {
        lines.resize(std::min(count, lines.size()));
        return lines;
    }

    // Folder and name of an object: "folder:file"
    std::string placeOf(const std::string &label)
    {
        const FileObject &object = platform.files.object(label);
        return object.parent->label + ':' + object.name;
    }

    static std::string lookup(const std::string &folder, const std::string &name)
    {
        return "PBMakeFSRefUnicodeSync(ref=ref:" + folder + ", name=\"" + name + "\", textEncodingHint=0xFFFF, newRef=ref)";
    }

    static std::string renaming(const std::string &ref, const std::string &name, UInt64 hint, const std::string &output)
    {
        return "FSRenameUnicode(ref:" + ref + ", \"" + name + "\", " + hex(hint) + ", " + output + ")";
    }

    static std::string moving(const std::string &ref, const std::string &folder, const std::string &output)
    {
        return "FSMoveObject(ref:" + ref + ", ref:" + folder + ", " + output + ")";
    }

    static constexpr OSErr someCode = -12345;   // no code that anything here knows
    static constexpr TextEncoding noHint = 0xFFFF;

    PlatformDouble platform;
    FSRef newRef = {{0x5A}}, newSource = {{0x5B}}, newDestination = {{0x5C}};
    const FSRef file = platform.files.ref("file"), inner = platform.files.ref("inner");
    const FSRef folder = platform.files.ref("folder"), nested = platform.files.ref("nested");
    const TextEncoding hintOfFile = infoOf("file").textEncodingHint, hintOfInner = infoOf("inner").textEncodingHint;
};
