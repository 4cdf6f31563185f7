// Fork sizes and copying. What holds for every function of the toolkit is told in files/fstoolkit.h.
#pragma once

#include "platform/platform.h"

#pragma GCC visibility push(default)
extern "C"
{

// Gives the logical sizes, in bytes, of a file's data fork and resource fork.
//
// Either pointer may be null; that size is then neither asked for nor written. The File Manager is asked once.
//
// Result: noErr; notAFileErr if `ref` names a folder, and then nothing is written; otherwise FSGetCatalogInfo's code,
// unchanged.
OSErr FSGetForkSizes(const FSRef *ref, UInt64 *dataLogicalSize, UInt64 *rsrcLogicalSize);

// Gives the logical and physical sizes, in bytes, of all forks of a file together, and how many forks it has.
//
// Each output may be null; that size is then not asked for. The forks are gone through one by one in any case. All
// outputs are set to zero first. After a failure they hold the totals of the forks that came before it.
//
// Whether `ref` names a file is not looked at: for a folder the result is what the File Manager says of its forks. A
// folder's contents are not counted.
//
// Result: noErr; otherwise the code of FSIterateForks, unchanged, except for the one that tells the end.
OSErr FSGetTotalForkSizes(const FSRef *ref, UInt64 *totalLogicalSize, UInt64 *totalPhysicalSize, UInt32 *forkCount);

// Allocates a buffer for copying, as large as wanted or as large as memory allows.
//
// The size in bytes is `buffReqSize` rounded down to a multiple of 4096, and at least 4096. Where there is no such block,
// one more is tried: the largest that there is, but for 32768 bytes of free memory that are left to the application, again
// a multiple of 4096 and at least 4096. When less than 32768 bytes are free, the subtraction wraps around to a very large
// number and nothing is left over; this is meant, since a copy then still gets the block that it needs. A failure to get
// the smallest size is final.
//
// Result: the block, whose size in bytes is then in `buffActSize`, or null with 0 in `buffActSize`. The block belongs to
// the caller, who disposes of it with DisposePtr. With a null `buffActSize` the result is null and nothing is allocated.
Ptr GetTempBufferX(UInt32 buffReqSize, UInt32 *buffActSize);

// Copies the contents of one open fork over those of another.
//
// `srcRefNum` is open for reading and `dstRefNum` for writing. The destination first gets the size of the source, so that
// its space is allocated once; then all bytes are copied from start to end, and both marks are left behind the last byte
// copied. The forks stay open.
//
// `copyBufferPtr` points to `copyBufferSize` bytes, which stay the caller's. From 4096 bytes on, as many of them are used
// as make a multiple of 4096; a smaller buffer is used whole. The File Manager is asked not to keep the bytes in its cache.
//
// What each read has given is written before the read's own code is looked at, so that the bytes before a bad place
// arrive, and the end of the fork shows as a last write, which may be of zero bytes. After a failure the destination has
// its new size and whatever has been written; nothing is undone.
//
// Result: noErr; paramErr if `copyBufferPtr` is null or `copyBufferSize` is 0, before either fork is touched; otherwise
// the code of FSGetForkSize, FSSetForkSize, FSSetForkPosition, FSWriteFork or FSReadFork, unchanged. If a read and the
// write after it both fail, the write's code is the result.
OSErr FSCopyFork(SInt16 srcRefNum, SInt16 dstRefNum, void *copyBufferPtr, UInt32 copyBufferSize);

// Has the volume of a file copy it into a folder. There is no copy through this computer's memory.
//
// `copyName` is the copy's name, `nameLength` its length in UTF-16 units; it is converted with UnicodeNameGetHFSName and
// must fit into 31 bytes. With a null `copyName` the copy keeps the name of its source. A name that is given but empty
// counts as given, and is for the volume to refuse.
//
// `newRef`, which may be null, gets a reference to the copy if a `copyName` is given. Without one it gets a reference to
// the folder `dstDirectoryRef` itself, since a location without a name means the directory; this is meant. That the
// reference cannot be made is no error, since the copy is there: the result is noErr, and `newRef` holds whatever
// the File Manager left in it.
//
// Result: noErr; paramErr if the volume of the source has no service that copies files, or does not say whether it has;
// otherwise the code of FSGetCatalogInfo, UnicodeNameGetHFSName or PBHCopyFileSync, unchanged.
OSErr FSCopyFile(const FSRef *srcFileRef, const FSRef *dstDirectoryRef, UniCharCount nameLength, const UniChar *copyName,
                 TextEncoding textEncodingHint, FSRef *newRef);
}
#pragma GCC visibility pop
