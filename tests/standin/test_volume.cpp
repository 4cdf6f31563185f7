#include "tests/standin/test_volume.h"

#include <algorithm>
#include <cstring>

bool operator==(const UTCDateTime &a, const UTCDateTime &b)
{
    return a.highSeconds == b.highSeconds && a.lowSeconds == b.lowSeconds && a.fraction == b.fraction;
}

void PrintTo(const UTCDateTime &date, std::ostream *stream)
{
    *stream << support::secondsOf(date) << "+" << date.fraction << "/65536";
}

namespace support
{

namespace
{

void appendUnits(std::vector<UniChar> &list, char32_t character)
{
    if (character < 0x10000)
        return list.push_back(static_cast<UniChar>(character));
    list.push_back(static_cast<UniChar>(0xD7C0 + (character >> 10)));
    list.push_back(static_cast<UniChar>(0xDC00 + (character & 0x3FF)));
}

FSRef required(OSStatus result, const FSRef &ref, const std::string &what)
{
    EXPECT_EQ(result, noErr) << "no reference for " << what;
    return result == noErr ? ref : FSRef{};
}

}   // namespace

// Only valid UTF-8 is ever given here.
std::vector<UniChar> units(std::string_view utf8)
{
    std::vector<UniChar> list;
    for (std::size_t i = 0; i < utf8.size();)
    {
        unsigned lead = static_cast<unsigned char>(utf8[i++]);
        int more = lead < 0x80 ? 0 : lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
        char32_t character = more == 0 ? lead : lead & (0x3Fu >> more);
        for (; more > 0 && i < utf8.size(); --more)
            character = character << 6 | (static_cast<unsigned char>(utf8[i++]) & 0x3F);
        appendUnits(list, character);
    }
    return list;
}

std::u16string wide(const HFSUniStr255 &name)
{
    return std::u16string(name.unicode, name.unicode + name.length);
}

UTCDateTime dateOf(std::uint64_t secondsSince1904, UInt16 fraction)
{
    UTCDateTime date;
    date.highSeconds = static_cast<UInt16>(secondsSince1904 >> 32);
    date.lowSeconds = static_cast<UInt32>(secondsSince1904);
    date.fraction = fraction;
    return date;
}

UTCDateTime dateOfUnix(std::int64_t seconds, UInt16 fraction)
{
    return dateOf(static_cast<std::uint64_t>(seconds + 2082844800), fraction);
}

std::uint64_t secondsOf(const UTCDateTime &date)
{
    return static_cast<std::uint64_t>(date.highSeconds) << 32 | date.lowSeconds;
}

OSStatus findRef(const std::string &path, FSRef &ref)
{
    Boolean isFolder = 0;
    return FSPathMakeRef(reinterpret_cast<const UInt8 *>(path.c_str()), &ref, &isFolder);
}

FSRef refAt(const std::string &path)
{
    FSRef ref{};
    return required(findRef(path, ref), ref, path);
}

std::string pathOf(const FSRef &ref)
{
    std::vector<UInt8> path(1 << 16);
    EXPECT_EQ(FSRefMakePath(&ref, path.data(), static_cast<UInt32>(path.size())), noErr);
    return reinterpret_cast<const char *>(path.data());
}

OSErr findChild(const FSRef &folder, const std::vector<UniChar> &name, FSRef &ref)
{
    FSRefParam block{};
    block.ref = &folder;
    block.nameLength = static_cast<UniCharCount>(name.size());
    block.name = name.data();
    block.textEncodingHint = kTextEncodingUnknown;
    block.newRef = &ref;
    return PBMakeFSRefUnicodeSync(&block);
}

FSRef childOf(const FSRef &folder, std::string_view name)
{
    FSRef ref{};
    return required(findChild(folder, units(name), ref), ref, std::string(name));
}

FSRef parentOf(const FSRef &ref)
{
    FSRef parent{};
    return required(FSGetCatalogInfo(&ref, kFSCatInfoNone, nullptr, nullptr, nullptr, &parent), parent, "the parent");
}

FSSpec specOf(const FSRef &ref)
{
    FSSpec spec{};
    EXPECT_EQ(FSGetCatalogInfo(&ref, kFSCatInfoNone, nullptr, nullptr, &spec, nullptr), noErr);
    return spec;
}

OSErr findSpec(const FSSpec &spec, FSRef &ref)
{
    FSSpec copy = spec;
    FSRefParam block{};
    block.ioVRefNum = copy.vRefNum;
    block.ioDirID = copy.parID;
    block.ioNamePtr = copy.name;
    block.newRef = &ref;
    return PBMakeFSRefSync(&block);
}

std::u16string nameOf(const FSRef &ref)
{
    HFSUniStr255 name{};
    EXPECT_EQ(FSGetCatalogInfo(&ref, kFSCatInfoNone, nullptr, &name, nullptr, nullptr), noErr);
    return wide(name);
}

OSErr checkRef(const FSRef &ref)
{
    return FSGetCatalogInfo(&ref, kFSCatInfoNone, nullptr, nullptr, nullptr, nullptr);
}

UInt32 nodeOf(const FSRef &ref)
{
    return infoOf(ref, kFSCatInfoNodeID).nodeID;
}

bool sameObject(const FSRef &a, const FSRef &b)
{
    FSCatalogInfo first = infoOf(a, kFSCatInfoNodeID | kFSCatInfoVolume | kFSCatInfoParentDirID);
    FSCatalogInfo second = infoOf(b, kFSCatInfoNodeID | kFSCatInfoVolume | kFSCatInfoParentDirID);
    return first.nodeID == second.nodeID && first.volume == second.volume && first.parentDirID == second.parentDirID;
}

FSCatalogInfo infoOf(const FSRef &ref, FSCatalogInfoBitmap which)
{
    FSCatalogInfo info{};
    EXPECT_EQ(FSGetCatalogInfo(&ref, which, &info, nullptr, nullptr, nullptr), noErr);
    return info;
}

OSErr change(const FSRef &ref, FSCatalogInfoBitmap which, const FSCatalogInfo &info)
{
    return FSSetCatalogInfo(&ref, which, &info);
}

FileInfo fileInfo(const FSCatalogInfo &info)
{
    FileInfo file;
    std::memcpy(&file, info.finderInfo, sizeof file);
    return file;
}

void setFileInfo(FSCatalogInfo &info, const FileInfo &file)
{
    std::memcpy(info.finderInfo, &file, sizeof file);
}

OSErr setType(const FSRef &ref, OSType type, OSType creator, UInt16 flags)
{
    FSCatalogInfo info{};
    OSErr result = FSGetCatalogInfo(&ref, kFSCatInfoFinderInfo, &info, nullptr, nullptr, nullptr);
    if (result != noErr)
        return result;
    FileInfo file = fileInfo(info);
    file.fileType = type;
    file.fileCreator = creator;
    file.finderFlags = flags;
    setFileInfo(info, file);
    return FSSetCatalogInfo(&ref, kFSCatInfoFinderInfo, &info);
}

OSType typeOf(const FSRef &ref)
{
    return fileInfo(infoOf(ref, kFSCatInfoFinderInfo)).fileType;
}

OSErr setLock(const FSRef &ref, bool locked)
{
    FSCatalogInfo info{};
    info.nodeFlags = locked ? kFSNodeLockedMask : 0;
    return FSSetCatalogInfo(&ref, kFSCatInfoNodeFlags, &info);
}

bool isLocked(const FSRef &ref)
{
    return (infoOf(ref, kFSCatInfoNodeFlags).nodeFlags & kFSNodeLockedMask) != 0;
}

bool offersExchange(const FSRef &ref)
{
    HParamBlockRec block{};
    GetVolParmsInfoBuffer parameters{};
    block.ioParam.ioVRefNum = infoOf(ref, kFSCatInfoVolume).volume;
    block.ioParam.ioBuffer = reinterpret_cast<Ptr>(&parameters);
    block.ioParam.ioReqCount = sizeof parameters;
    EXPECT_EQ(PBHGetVolParmsSync(&block), noErr);
    return (parameters.vMExtendedAttributes & 1 << bSupportsFSExchangeObjects) != 0;
}

OSErr makeFile(const FSRef &folder, std::string_view name, FSRef *made)
{
    std::vector<UniChar> list = units(name);
    return FSCreateFileUnicode(&folder, static_cast<UniCharCount>(list.size()), list.data(), kFSCatInfoNone, nullptr, made, nullptr);
}

OSErr makeFolder(const FSRef &folder, std::string_view name, FSRef *made)
{
    std::vector<UniChar> list = units(name);
    return FSCreateDirectoryUnicode(&folder, static_cast<UniCharCount>(list.size()), list.data(), kFSCatInfoNone, nullptr, made, nullptr,
                                    nullptr);
}

OSErr rename(FSRef &ref, std::string_view name)
{
    std::vector<UniChar> list = units(name);
    FSRef renamed{};
    OSErr result = FSRenameUnicode(&ref, static_cast<UniCharCount>(list.size()), list.data(), kTextEncodingUnknown, &renamed);
    if (result == noErr)
        ref = renamed;
    return result;
}

OSErr move(FSRef &ref, const FSRef &folder)
{
    FSRef moved{};
    OSErr result = FSMoveObject(&ref, &folder, &moved);
    if (result == noErr)
        ref = moved;
    return result;
}

std::vector<UniChar> resourceForkName()
{
    HFSUniStr255 name{};
    EXPECT_EQ(FSGetResourceForkName(&name), noErr);
    return std::vector<UniChar>(name.unicode, name.unicode + name.length);
}

OSErr openFork(const FSRef &ref, bool resource, SInt8 permission, SInt16 &fork)
{
    std::vector<UniChar> name = resource ? resourceForkName() : std::vector<UniChar>{};
    return FSOpenFork(&ref, static_cast<UniCharCount>(name.size()), name.data(), permission, &fork);
}

OSErr writeFork(const FSRef &ref, bool resource, const Bytes &bytes)
{
    SInt16 fork = 0;
    OSErr result = openFork(ref, resource, fsRdWrPerm, fork);
    if (result != noErr)
        return result;
    ByteCount written = 0;
    result = FSSetForkSize(fork, fsFromStart, 0);
    if (result == noErr)
        result = FSWriteFork(fork, fsFromStart, 0, static_cast<ByteCount>(bytes.size()), bytes.data(), &written);
    OSErr closing = FSCloseFork(fork);
    EXPECT_TRUE(result != noErr || written == bytes.size());
    return result != noErr ? result : closing;
}

OSErr writeAt(SInt16 fork, SInt64 position, const Bytes &bytes)
{
    return FSWriteFork(fork, fsFromStart, position, static_cast<ByteCount>(bytes.size()), bytes.data(), nullptr);
}

SInt64 sizeOf(SInt16 fork)
{
    SInt64 size = -1;
    EXPECT_EQ(FSGetForkSize(fork, &size), noErr);
    return size;
}

Bytes forkOf(const FSRef &ref, bool resource)
{
    SInt16 fork = 0;
    SInt64 size = 0;
    OSErr result = openFork(ref, resource, fsRdPerm, fork);
    EXPECT_EQ(result, noErr);
    if (result != noErr)
        return {};
    EXPECT_EQ(FSGetForkSize(fork, &size), noErr);
    Bytes bytes(static_cast<std::size_t>(size));
    ByteCount count = 0;
    if (size > 0)
    {
        EXPECT_EQ(FSReadFork(fork, fsFromStart, 0, static_cast<ByteCount>(size), bytes.data(), &count), noErr);
    }
    EXPECT_EQ(FSCloseFork(fork), noErr);
    EXPECT_EQ(count, bytes.size());
    return bytes;
}

void appendBig(Bytes &bytes, std::uint64_t value, int width)
{
    for (int shift = 8 * (width - 1); shift >= 0; shift -= 8)
        bytes.push_back(static_cast<std::uint8_t>(value >> shift));
}

std::uint32_t big32(const Bytes &bytes, std::size_t at)
{
    std::uint32_t value = 0;
    for (std::size_t i = at; i < at + 4; ++i)
        value = value << 8 | bytes.at(i);
    return value;
}

Bytes sidecarOf(const std::vector<Piece> &pieces, std::string_view filler)
{
    Bytes bytes;
    appendBig(bytes, 0x00051607, 4);
    appendBig(bytes, 0x00020000, 4);
    bytes.insert(bytes.end(), filler.begin(), filler.end());
    bytes.resize(24);
    appendBig(bytes, pieces.size(), 2);
    for (const Piece &piece : pieces)
    {
        appendBig(bytes, piece.id, 4);
        appendBig(bytes, piece.offset, 4);
        appendBig(bytes, piece.bytes.size(), 4);
    }
    for (const Piece &piece : pieces)
    {
        bytes.resize(std::max(bytes.size(), piece.offset + piece.bytes.size()));
        std::copy(piece.bytes.begin(), piece.bytes.end(), bytes.begin() + piece.offset);
    }
    return bytes;
}

Bytes plainSidecar(const Bytes &fork, const Bytes &finderInfo)
{
    return sidecarOf({{9, 50, finderInfo}, {2, 82, fork}});
}

}   // namespace support
