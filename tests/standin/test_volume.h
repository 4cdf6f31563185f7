// Short forms of the platform's calls for tests. Where a form gives no result code, the call must succeed: a failure of it is a failure of the test.
#pragma once

#include "tests/standin/disks.h"

#include "platform/platform.h"
#include "standin/standin.h"

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

// Dates compare and print as wholes.
bool operator==(const UTCDateTime &a, const UTCDateTime &b);
void PrintTo(const UTCDateTime &date, std::ostream *stream);

namespace support
{

constexpr FSCatalogInfoBitmap everything = 0x0003FFFF;
constexpr FSCatalogInfoBitmap finderBits = kFSCatInfoFinderInfo | kFSCatInfoFinderXInfo;

// Names: UTF-8 in tests, UTF-16 in the platform. The name's own ':' and '/' are the platform's.
std::vector<UniChar> units(std::string_view utf8);
std::u16string wide(const HFSUniStr255 &name);

constexpr OSType code(const char (&letters)[5])
{
    OSType value = 0;
    for (int i = 0; i < 4; ++i)
        value = value << 8 | static_cast<unsigned char>(letters[i]);
    return value;
}

UTCDateTime dateOf(std::uint64_t secondsSince1904, UInt16 fraction = 0);
UTCDateTime dateOfUnix(std::int64_t seconds, UInt16 fraction = 0);
std::uint64_t secondsOf(const UTCDateTime &date);

// References
FSRef refAt(const std::string &path);
OSStatus findRef(const std::string &path, FSRef &ref);
std::string pathOf(const FSRef &ref);
FSRef childOf(const FSRef &folder, std::string_view name);
OSErr findChild(const FSRef &folder, const std::vector<UniChar> &name, FSRef &ref);
FSRef parentOf(const FSRef &ref);
FSSpec specOf(const FSRef &ref);
OSErr findSpec(const FSSpec &spec, FSRef &ref);
std::u16string nameOf(const FSRef &ref);
OSErr checkRef(const FSRef &ref);   // FSGetCatalogInfo with nothing asked for
UInt32 nodeOf(const FSRef &ref);
bool sameObject(const FSRef &a, const FSRef &b);   // same volume and node

// Catalog information
FSCatalogInfo infoOf(const FSRef &ref, FSCatalogInfoBitmap which = everything);
OSErr change(const FSRef &ref, FSCatalogInfoBitmap which, const FSCatalogInfo &info);
FileInfo fileInfo(const FSCatalogInfo &info);
void setFileInfo(FSCatalogInfo &info, const FileInfo &file);
OSErr setType(const FSRef &ref, OSType type, OSType creator, UInt16 flags = 0);
OSType typeOf(const FSRef &ref);
OSErr setLock(const FSRef &ref, bool locked);
bool isLocked(const FSRef &ref);

// Objects
OSErr makeFile(const FSRef &folder, std::string_view name, FSRef *made = nullptr);
OSErr makeFolder(const FSRef &folder, std::string_view name, FSRef *made = nullptr);
OSErr rename(FSRef &ref, std::string_view name);   // `ref` becomes the new reference
OSErr move(FSRef &ref, const FSRef &folder);

// Volumes
bool offersExchange(const FSRef &ref);   // whether the object's volume says that it exchanges files

// Forks
std::vector<UniChar> resourceForkName();
OSErr openFork(const FSRef &ref, bool resource, SInt8 permission, SInt16 &fork);
OSErr writeFork(const FSRef &ref, bool resource, const Bytes &bytes);   // replaces what it held
Bytes forkOf(const FSRef &ref, bool resource = true);
OSErr writeAt(SInt16 fork, SInt64 position, const Bytes &bytes);   // of an open one
SInt64 sizeOf(SInt16 fork);

// Sidecars, put together by hand
struct Piece
{
    std::uint32_t id;
    std::uint32_t offset;
    Bytes bytes;
};
Bytes sidecarOf(const std::vector<Piece> &pieces, std::string_view filler = "Netatalk        ");
void appendBig(Bytes &bytes, std::uint64_t value, int width);
std::uint32_t big32(const Bytes &bytes, std::size_t at);

// A sidecar in the common form, 9@50+32 and 2@82.
Bytes plainSidecar(const Bytes &fork, const Bytes &finderInfo = Bytes(32));

}   // namespace support
