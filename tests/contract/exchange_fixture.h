// What the tests of exchanging share: "file" in "folder" with "inner" in "nested", or with "other" in the same folder.

#pragma once

#include "tests/contract/moves_fixture.h"
#include "tests/contract/stack_pattern.h"

class ExchangeTest : public MovesTest
{
protected:
    FileObject &addOther() { return platform.files.add("other", &platform.files.object("folder"), false); }

    // Dates that are never fetched have to be zero by intent, and not because the stack was.
    OSErr exchange()
    {
        return onPatternedStack([this] { return FSExchangeObjectsCompat(&file, &inner, &newSource, &newDestination); });
    }

    OSErr exchangeInOneFolder()
    {
        const FSRef other = platform.files.ref("other");
        return onPatternedStack([&] { return FSExchangeObjectsCompat(&file, &other, &newSource, &newDestination); });
    }

    static std::string reading(const std::string &label) { return "FSGetCatalogInfo(ref:" + label + ", 0x1F2F, info, name, -, parent)"; }

    static std::string informing(const std::string &ref) { return "FSSetCatalogInfo(ref:" + ref + ", 0x1F23, info)"; }

    static std::string restoring(const std::string &ref) { return "FSSetCatalogInfo(ref:" + ref + ", 0x1FE3, info)"; }

    Calls exchangeBetweenFolders() const
    {
        return {readVolumeOfSource,
                readVolume,
                reading("file"),
                reading("inner"),
                lookup("folder", "3D1F5A27"),
                lookup("nested", "3D1F5A27"),
                lookup("folder", "3D1F5A28"),
                lookup("nested", "3D1F5A28"),
                renaming("file", "3D1F5A27", noHint, "newSource"),
                renaming("inner", "3D1F5A28", noHint, "newDestination"),
                moving("file#1", "nested", "newSource"),
                moving("inner#1", "folder", "newDestination"),
                informing("file#2"),
                informing("inner#2"),
                renaming("file#2", "inner", hintOfInner, "newSource"),
                renaming("inner#2", "file", hintOfFile, "newDestination")};
    }

    Calls exchangeWithinAFolder() const
    {
        return {readVolumeOfSource,
                readVolume,
                reading("file"),
                reading("other"),
                lookup("folder", "3D1F5A27"),
                lookup("folder", "3D1F5A27"),
                lookup("folder", "3D1F5A28"),
                lookup("folder", "3D1F5A28"),
                renaming("file", "3D1F5A27", noHint, "newSource"),
                renaming("other", "3D1F5A28", noHint, "newDestination"),
                informing("file#1"),
                informing("other#1"),
                renaming("file#1", "other", hintOfOther, "newSource"),
                renaming("other#1", "file", hintOfFile, "newDestination")};
    }

    // Nothing but the questions was asked, and the outputs are copies.
    void expectRefusal()
    {
        EXPECT_EQ(steps(), (Calls{readVolumeOfSource, readVolume, reading("file"), reading("inner")}));
        EXPECT_EQ(newSource, file);
        EXPECT_EQ(newDestination, inner);
    }

    const std::string readVolumeOfSource = "FSGetCatalogInfo(ref:file, 0x4, info, -, -, -)";
    const std::string readVolume = "PBHGetVolParmsSync(ioNamePtr=-, ioVRefNum=-100, ioReqCount=32, ioBuffer=buffer)";
    const TextEncoding hintOfOther = addOther().info.textEncodingHint;
};
