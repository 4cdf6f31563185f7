// Sidecars as we write them, byte by byte, and the Finder records on their way between memory and disk.
#include "standin/files/sidecar_format.h"

#include <cstring>
#include <gtest/gtest.h>
#include <numeric>
#include <string>
#include <string_view>

namespace
{

using namespace standin;
using Bytes = std::vector<std::uint8_t>;

// The bytes that pairs of hexadecimal digits say; spaces are for the reader.
Bytes fromHex(std::string text)
{
    std::erase(text, ' ');
    Bytes bytes;
    for (std::size_t at = 0; at < text.size(); at += 2)
        bytes.push_back(static_cast<std::uint8_t>(std::stoul(text.substr(at, 2), nullptr, 16)));
    return bytes;
}

SidecarFiller fillerOf(std::string_view text)
{
    SidecarFiller filler;
    filler.fill(' ');
    std::copy(text.begin(), text.end(), filler.begin());
    return filler;
}

FinderBytes countingFinderInfo(std::uint8_t first)
{
    FinderBytes info;
    std::iota(info.begin(), info.end(), first);
    return info;
}

// The form that every other system opens: Finder information alone before the fork.
Bytes plainHead(const FinderBytes &info, std::uint32_t forkLength)
{
    const std::vector<SidecarPiece> pieces = {{kFinderInfoEntry, Bytes(info.begin(), info.end())}};
    return buildSidecarHead(pieces, SidecarFiller{}, forkLength);
}

TEST(SidecarBuilding, PlainFormByteByByte)
{
    FinderBytes info = {'T', 'E', 'X', 'T', 't', 't', 'x', 't', 0x01, 0x00};
    const Bytes expected = fromHex("00051607"                                // magic
                                   "00020000"                                // version 2
                                   "0000000000000000 0000000000000000"       // filler
                                   "0002"                                    // two entries
                                   "00000009 00000032 00000020"              // 9 at 50, 32 bytes
                                   "00000002 00000052 00010203"              // 2 at 82
                                   "54455854 74747874 0100 0000 0000 0000"   // Finder information: TEXT, ttxt, flags, location, reserved
                                   "0000000000000000 0000000000000000");     // extended
    EXPECT_EQ(plainHead(info, 0x010203), expected);
}

TEST(SidecarBuilding, PlainFormIsReadBack)
{
    const FinderBytes info = countingFinderInfo(1);
    for (const std::uint32_t forkLength : {0u, 1u, 286u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu})
    {
        SCOPED_TRACE(forkLength);
        SidecarLayout layout;
        ASSERT_EQ(parseSidecar(plainHead(info, forkLength), 82ull + forkLength, layout), SidecarProblem::none);
        EXPECT_EQ(layout.find(kResourceForkEntry)->offset, 82u);
        EXPECT_EQ(layout.find(kResourceForkEntry)->length, forkLength);
        EXPECT_EQ(layout.find(kFinderInfoEntry)->offset, 50u);
    }
}

TEST(SidecarBuilding, HeadByteByByte)
{
    const std::vector<SidecarPiece> pieces = {{8, {1, 2, 3, 4}}, {0x80000001, {}}, {9, {0xF1, 0xF2}}};
    const Bytes expected = fromHex("00051607 00020000"                   // magic, version
                                   "4D6163204F532058 2020202020202020"   // Mac OS X
                                   "0004"                                // four entries
                                   "00000009 0000004A 00000002"          // 9 at 74 although it was given last
                                   "00000008 0000004C 00000004"          // 8 at 76
                                   "80000001 00000050 00000000"          // a private one without bytes
                                   "00000002 00000050 FF000001"          // 2 at 80, where this head ends
                                   "F1F2 01020304");
    EXPECT_EQ(buildSidecarHead(pieces, fillerOf("Mac OS X"), 0xFF000001), expected);
}

TEST(SidecarBuilding, HeadWithoutPieces)
{
    const Bytes head = buildSidecarHead({}, SidecarFiller{}, 3);
    SidecarLayout layout;
    ASSERT_EQ(parseSidecar(head, head.size() + 3, layout), SidecarProblem::none);
    ASSERT_EQ(layout.entries.size(), 1u);
    EXPECT_EQ(layout.entries[0].offset, 38u);
    EXPECT_EQ(layout.entries[0].length, 3u);
}

std::vector<SidecarPiece> somePieces(std::size_t count)
{
    std::vector<SidecarPiece> pieces;
    for (std::size_t index = 0; index < count; ++index)
        pieces.push_back({static_cast<std::uint32_t>(0x80000000 + index), Bytes(index, static_cast<std::uint8_t>(index))});
    return pieces;
}

TEST(SidecarBuilding, AsManyPiecesAsCanBeReadBack)
{
    const auto pieces = somePieces(63);
    const Bytes head = buildSidecarHead(pieces, SidecarFiller{}, 0);
    SidecarLayout layout;
    ASSERT_EQ(parseSidecar(head, head.size(), layout), SidecarProblem::none);
    ASSERT_EQ(layout.entries.size(), 64u);
    for (const SidecarPiece &piece : pieces)
    {
        const SidecarEntry *entry = layout.find(piece.id);
        ASSERT_NE(entry, nullptr);
        const auto begin = head.begin() + static_cast<std::ptrdiff_t>(entry->offset);
        EXPECT_EQ(Bytes(begin, begin + static_cast<std::ptrdiff_t>(entry->length)), piece.bytes);
    }
    EXPECT_EQ(layout.entries.back().id, kResourceForkEntry);
    EXPECT_EQ(layout.entries.back().offset, head.size());
    EXPECT_TRUE(buildSidecarHead(somePieces(64), SidecarFiller{}, 0).empty());
}

TEST(SidecarBuilding, PiecesThatMakeNoTable)
{
    EXPECT_TRUE(buildSidecarHead(std::vector<SidecarPiece>{{0, {1}}}, SidecarFiller{}, 0).empty());
    EXPECT_TRUE(buildSidecarHead(std::vector<SidecarPiece>{{2, {1}}}, SidecarFiller{}, 0).empty());
    EXPECT_TRUE(buildSidecarHead(std::vector<SidecarPiece>{{9, {1}}, {8, {1}}, {9, {1}}}, SidecarFiller{}, 0).empty());
}

TEST(SidecarBuilding, IntegersAreBigEndian)
{
    const std::uint8_t bytes[] = {0xFE, 0xDC, 0xBA, 0x98, 0x76, 0x54, 0x32, 0x10};
    EXPECT_EQ(readBig16(bytes), 0xFEDC);
    EXPECT_EQ(readBig32(bytes), 0xFEDCBA98u);
    EXPECT_EQ(readBig64(bytes), 0xFEDCBA9876543210ull);

    std::uint8_t written[8];
    writeBig64(written, 0xFEDCBA9876543210ull);
    EXPECT_EQ(std::memcmp(written, bytes, 8), 0);
    writeBig32(written, 0x01020304);
    writeBig16(written + 4, 0x0506);
    const std::uint8_t expected[] = {1, 2, 3, 4, 5, 6, 0x32, 0x10};
    EXPECT_EQ(std::memcmp(written, expected, 8), 0);
}

// The records as programs fill them, in the machine's own byte order, whatever that is.
template <typename Info, typename Extended>
Bytes toDisk(const Info &info, const Extended &extended, bool isFolder)
{
    static_assert(sizeof info == 16 && sizeof extended == 16);
    UInt8 first[16], second[16];
    std::memcpy(first, &info, 16);
    std::memcpy(second, &extended, 16);
    const FinderBytes disk = finderBytesToDisk(first, second, isFolder);
    return Bytes(disk.begin(), disk.end());
}

TEST(FinderRecords, FileOnDisk)
{
    FileInfo info = {};
    info.fileType = 0x54455854;
    info.fileCreator = 0x74747874;
    info.finderFlags = kHasCustomIcon | kHasBeenInited | 0x000E;
    info.location.v = -2;
    info.location.h = 0x0102;
    info.reservedField = 0x0A0B;
    ExtendedFileInfo extended = {};
    extended.reserved1[0] = 0x1112;
    extended.reserved1[3] = 0x1314;
    extended.extendedFinderFlags = 0x8001;
    extended.reserved2 = -3;
    extended.putAwayFolderID = 0x21222324;
    EXPECT_EQ(toDisk(info, extended, false), fromHex("54455854 74747874 050E FFFE 0102 0A0B"       // file
                                                     "1112 0000 0000 1314 8001 FFFD 21222324"));   // extended
}

TEST(FinderRecords, FolderOnDisk)
{
    FolderInfo info = {};
    info.windowBounds.top = 0x0102;
    info.windowBounds.left = 0x0304;
    info.windowBounds.bottom = 0x0506;
    info.windowBounds.right = -1;
    info.finderFlags = kIsInvisible;
    info.location.v = 0x0708;
    info.location.h = 0x090A;
    info.reservedField = 0x0B0C;
    ExtendedFolderInfo extended = {};
    extended.scrollPosition.v = 0x1112;
    extended.scrollPosition.h = 0x1314;
    extended.reserved1 = 0x15161718;
    extended.extendedFinderFlags = 0x191A;
    extended.reserved2 = 0x1B1C;
    extended.putAwayFolderID = -2;
    EXPECT_EQ(toDisk(info, extended, true), fromHex("0102 0304 0506 FFFF 4000 0708 090A 0B0C"    // folder
                                                    "1112 1314 15161718 191A 1B1C FFFFFFFE"));   // extended
}

TEST(FinderRecords, EveryByteComesBack)
{
    const FinderBytes disk = countingFinderInfo(0x70);
    for (const bool isFolder : {false, true})
    {
        SCOPED_TRACE(isFolder);
        UInt8 info[16], extended[16];
        finderBytesFromDisk(disk, isFolder, info, extended);
        EXPECT_EQ(finderBytesToDisk(info, extended, isFolder), disk);

        // The flags stand at offset 8 of both shapes.
        std::uint16_t flags;
        std::memcpy(&flags, info + 8, 2);
        EXPECT_EQ(flags, 0x7879);
    }
}

TEST(FinderRecords, ShapesDifferInTheFirstEightBytes)
{
    const FinderBytes disk = countingFinderInfo(1);
    UInt8 file[16], folder[16], extended[16];
    finderBytesFromDisk(disk, false, file, extended);
    finderBytesFromDisk(disk, true, folder, extended);
    FileInfo fileInfo;
    FolderInfo folderInfo;
    std::memcpy(&fileInfo, file, 16);
    std::memcpy(&folderInfo, folder, 16);
    const OSType type = fileInfo.fileType, creator = fileInfo.fileCreator;   // the record is packed to 2 bytes: no reference to its fields
    EXPECT_EQ(type, 0x01020304u);
    EXPECT_EQ(creator, 0x05060708u);
    EXPECT_EQ(folderInfo.windowBounds.top, 0x0102);
    EXPECT_EQ(folderInfo.windowBounds.right, 0x0708);
    EXPECT_EQ(fileInfo.location.h, folderInfo.location.h);
}

}   // namespace
