#include "standin/files/errors.h"

#include "standin/standin.h"

#include <cerrno>

namespace standin
{

namespace
{

struct ErrnoRow
{
    int errnoValue;
    OSErr result;
};

constexpr ErrnoRow errnoRows[] = {
    // Not there. A reference that a network file system calls stale names an object that is gone; a link that stands where a
    // file or folder was asked for, or that leads round in a circle, means that the object asked for is not there either.
    {ENOENT, fnfErr},
    {ESTALE, fnfErr},
    {ELOOP, fnfErr},

    // There, but of the wrong kind. ENOTDIR is not dirNFErr: something is there, only no folder.
    {ENOTDIR, errFSNotAFolder},
    {EISDIR, notAFileErr},

    // Names. EILSEQ is what disks that demand valid text say to other bytes.
    {EEXIST, dupFNErr},
    {ENAMETOOLONG, errFSNameTooLong},
    {EILSEQ, bdNamErr},

    // No room: on the disk, in the owner's share of it, for so long a file, for an attribute, for one more link or subfolder.
    {ENOSPC, dskFulErr},
    {EDQUOT, dskFulErr},
    {EFBIG, dskFulErr},
    {E2BIG, dskFulErr},
    {EMLINK, dskFulErr},

    // Not allowed: by the disk as a whole, by access rights, by what the object is (immutable, somebody else's).
    {EROFS, wPrErr},
    {EACCES, afpAccessDenied},
    {EPERM, permErr},

    // In use: a folder with something in it, a mount point, a running program, a lock that another process holds (EAGAIN, EDEADLK).
    {ENOTEMPTY, fBsyErr},
    {EBUSY, fBsyErr},
    {ETXTBSY, fBsyErr},
    {EAGAIN, fBsyErr},
    {EDEADLK, fBsyErr},

    // Used up: descriptors of this process or of the machine, memory.
    {EMFILE, tmfoErr},
    {ENFILE, tmfoErr},
    {ENOMEM, memFullErr},

    // Volumes. Both of the last two say that the device behind the object does not exist (any more).
    {EXDEV, diffVolErr},
    {ENODEV, nsvErr},
    {ENXIO, nsvErr},

    // A wrong call. The last two: this disk or this kernel does not offer what was asked for.
    {EBADF, rfNumErr},
    {EINVAL, paramErr},
    {ENOTSUP, paramErr},
    {ENOSYS, paramErr},

    {EIO, ioErr},
};

struct ResultCodeRow
{
    OSStatus code;
    const char *name;
    const char *meaning;
};

// A row makes code, name and meaning from one symbol, so they cannot disagree.
// clang-format off
#define RESULT_CODE(symbol, meaning) {symbol, #symbol, meaning}
// clang-format on

constexpr ResultCodeRow resultCodeRows[] = {
    RESULT_CODE(noErr, "no error"),

    RESULT_CODE(dskFulErr, "the disk is full"),
    RESULT_CODE(nsvErr, "there is no such volume"),
    RESULT_CODE(ioErr, "reading from or writing to the disk failed"),
    RESULT_CODE(bdNamErr, "the name is not allowed or too long"),
    RESULT_CODE(eofErr, "the end of the file was reached"),
    RESULT_CODE(posErr, "the position lies before the start of the file"),
    RESULT_CODE(tmfoErr, "too many files are open"),
    RESULT_CODE(fnfErr, "there is no such file or folder"),
    RESULT_CODE(wPrErr, "the disk can only be read"),
    RESULT_CODE(fLckdErr, "the file or folder is locked"),
    RESULT_CODE(vLckdErr, "the volume is locked"),
    RESULT_CODE(fBsyErr, "the file or folder is in use, or the folder is not empty"),
    RESULT_CODE(dupFNErr, "there is already a file or folder of that name"),
    RESULT_CODE(opWrErr, "the file is already open for writing"),
    RESULT_CODE(paramErr, "an argument is not valid, or the service is not offered here"),
    RESULT_CODE(rfNumErr, "no file is open under that number"),
    RESULT_CODE(permErr, "the operation is not permitted on this file or folder"),

    RESULT_CODE(memFullErr, "there is not enough memory"),
    RESULT_CODE(nilHandleErr, "the handle is empty"),
    RESULT_CODE(memWZErr, "the pointer or handle is no memory block, or no longer one"),
    RESULT_CODE(dirNFErr, "there is no such folder"),
    RESULT_CODE(badExtResource, "the resource is compressed, or its bytes do not lie in the file"),
    RESULT_CODE(inputOutOfBounds, "the part that was asked for does not lie in the resource"),
    RESULT_CODE(resNotFound, "there is no such resource"),
    RESULT_CODE(resFNotFound, "there is no resource file"),
    RESULT_CODE(mapReadErr, "this is no resource file, or its map is damaged"),
    RESULT_CODE(cDepthErr, "pixels have 32 bits here and no other number"),
    RESULT_CODE(gestaltUndefSelectorErr, "nothing here goes by that selector"),

    RESULT_CODE(fidNotFound, "there is no file with that ID"),
    RESULT_CODE(fidExists, "the file already has an ID"),
    RESULT_CODE(notAFileErr, "a file was expected, but this is a folder"),
    RESULT_CODE(diffVolErr, "the two objects lie on different volumes"),

    RESULT_CODE(errFSBadFSRef, "the reference to a file or folder is not valid"),
    RESULT_CODE(errFSBadForkName, "there is no kind of fork with that name"),
    RESULT_CODE(errFSBadBuffer, "no buffer was given, or it is not valid"),
    RESULT_CODE(errFSBadForkRef, "no fork is open under that number"),
    RESULT_CODE(errFSBadInfoBitmap, "the set of items asked for is not valid"),
    RESULT_CODE(errFSMissingCatInfo, "items are asked for, but no record was given for them"),
    RESULT_CODE(errFSNotAFolder, "a folder was expected, but this is a file"),
    RESULT_CODE(errFSForkNotFound, "the file has no such fork"),
    RESULT_CODE(errFSNameTooLong, "the name is too long"),
    RESULT_CODE(errFSMissingName, "no name was given, or it is empty"),
    RESULT_CODE(errFSBadPosMode, "the way of positioning is not valid"),
    RESULT_CODE(errFSBadAllocFlags, "the way of allocating room is not valid"),
    RESULT_CODE(errFSNoMoreItems, "there are no more items"),
    RESULT_CODE(errFSBadItemCount, "the number of items asked for is not valid"),
    RESULT_CODE(errFSRefsDifferent, "the two references name different objects"),
    RESULT_CODE(errFSForkExists, "the fork exists already"),
    RESULT_CODE(errFSBadIteratorFlags, "the way of iterating is not valid"),
    RESULT_CODE(errFSIteratorNotFound, "there is no such iterator"),

    RESULT_CODE(afpAccessDenied, "access is denied"),
    RESULT_CODE(afpIDExists, "the file already has an ID on its server"),

    RESULT_CODE(kTextUnsupportedEncodingErr, "the text encoding is not supported"),
    RESULT_CODE(kTextMalformedInputErr, "the text is not valid in its encoding"),
    RESULT_CODE(kTECPartialCharErr, "the text ends in the middle of a character"),
    RESULT_CODE(kTECUnmappableElementErr, "a character does not exist in the other encoding"),
    RESULT_CODE(kTECUsedFallbacksStatus, "some characters were replaced by similar ones"),
    RESULT_CODE(kTECOutputBufferFullStatus, "the converted text does not fit into its buffer"),
};

#undef RESULT_CODE

const ResultCodeRow *findResultCode(OSStatus code)
{
    for (const ResultCodeRow &row : resultCodeRows)
        if (row.code == code)
            return &row;
    return nullptr;
}

}   // namespace

OSErr resultFromErrno(int errnoValue)
{
    if (errnoValue == 0)
        return noErr;
    for (const ErrnoRow &row : errnoRows)
        if (row.errnoValue == errnoValue)
            return row.result;
    return ioErr;
}

const char *resultCodeName(OSStatus code)
{
    const ResultCodeRow *row = findResultCode(code);
    return row == nullptr ? nullptr : row->name;
}

const char *resultCodeMeaning(OSStatus code)
{
    const ResultCodeRow *row = findResultCode(code);
    return row == nullptr ? nullptr : row->meaning;
}

}   // namespace standin
