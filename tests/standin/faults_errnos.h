// With which error numbers each system call of the file manager can fail.
//
// From the calls' manual pages, with what network disks add (ESTALE, ETIMEDOUT). Left out are those that are answers and no failures: nothing has the
// name (ENOENT), what has it is of another kind (ENOTDIR, EISDIR, ELOOP, ENODEV, ETXTBSY), it is taken (EEXIST, ENOTEMPTY), there is no such attribute
// (ENODATA) or a longer one than there can be (ERANGE), another process has the lock (EWOULDBLOCK), this kernel has no such call (ENOSYS). EINTR has tests
// of its own.
#pragma once

#include <cerrno>
#include <map>
#include <string>
#include <vector>

namespace support
{

inline const std::vector<int> &errorNumbersOf(const std::string &call)
{
    static const std::vector<int> noSuchCall;
    static const std::vector<int> looking{EACCES, EIO, ENOMEM, ESTALE, ETIMEDOUT};
    static const std::vector<int> opening{EACCES, EIO, EMFILE, ENFILE, ENOMEM, EAGAIN, ETIMEDOUT};
    static const std::vector<int> making{EACCES, EDQUOT, EIO, EMLINK, ENOMEM, ENOSPC, EPERM, EROFS, ESTALE};
    static const std::vector<int> naming{EACCES, EBUSY, EDQUOT, EIO, EMLINK, ENOMEM, ENOSPC, EPERM, EROFS, ESTALE, EXDEV};
    static const std::vector<int> removing{EACCES, EBUSY, EDQUOT, EIO, ENOMEM, ENOSPC, EPERM, EROFS, ESTALE};
    static const std::vector<int> changing{EACCES, EDQUOT, EIO, ENOMEM, ENOSPC, EPERM, EROFS, ESTALE};
    static const std::vector<int> settingAttributes{E2BIG, EACCES, EDQUOT, EIO, ENOMEM, ENOSPC, EOPNOTSUPP, EPERM, ERANGE, EROFS};
    static const std::vector<int> readingAttributes{EACCES, EIO, ENOMEM, ESTALE};
    static const std::vector<int> reading{EACCES, EIO, ENOMEM, ESTALE, ETIMEDOUT};
    static const std::vector<int> writing{EDQUOT, EFBIG, EIO, ENOMEM, ENOSPC, EPERM, ESTALE, ETIMEDOUT};
    static const std::vector<int> sizing{EDQUOT, EFBIG, EIO, ENOMEM, ENOSPC, EPERM, EROFS, ETXTBSY};
    static const std::vector<int> copying{EBUSY, EDQUOT, EFBIG, EINVAL, EIO, ENOMEM, ENOSPC, EOPNOTSUPP, EOVERFLOW, EPERM, ETXTBSY, EXDEV};

    static const std::map<std::string, const std::vector<int>> rows{
        {"status", looking},
        {"modificationOf", {EIO, ESTALE}},
        {"mayAccess", looking},
        {"diskStatistics", looking},
        {"diskKind", looking},

        {"openAt", {EACCES, EBUSY, EDQUOT, EIO, EMFILE, ENFILE, ENOMEM, ENOSPC, EOVERFLOW, EPERM, EROFS, ESTALE}},
        {"openAbsoluteFolder", opening},
        {"openFolderBeneath", opening},
        {"openListedFolder", opening},
        {"openTemporary", {EACCES, EDQUOT, EIO, EMFILE, ENFILE, ENOMEM, ENOSPC, EOPNOTSUPP, EPERM, EROFS}},
        {"openByInode", {EACCES, EIO, EMFILE, ENFILE, ENOMEM, EOPNOTSUPP, EPERM, ESTALE}},

        {"readDirectory", {EACCES, EIO, ENOMEM, ESTALE}},
        {"readLink", looking},
        {"readAt", reading},
        {"readPassingBy", {EAGAIN, EINVAL, EIO, ENOMEM, EOPNOTSUPP}},
        {"readMountList", {EACCES, EIO, EMFILE, ENFILE, ENOMEM}},

        {"listAttributes", readingAttributes},
        {"listAttributesOf", readingAttributes},
        {"getAttribute", readingAttributes},
        {"getAttributeOf", readingAttributes},
        {"setAttribute", settingAttributes},
        {"setAttributeOf", settingAttributes},
        {"removeAttribute", changing},

        {"setTimes", changing},
        {"setMode", changing},
        {"setModeOf", changing},
        {"setOwner", changing},

        {"linkAt", {EACCES, EDQUOT, EIO, EMLINK, ENOMEM, ENOSPC, EOPNOTSUPP, EPERM, EROFS, ESTALE, EXDEV}},
        {"giveName", naming},
        {"renameAt", naming},
        {"renameWithoutReplacing", naming},
        {"exchangeNames", naming},
        {"makeFolderAt", making},
        {"makeSymbolicLink", making},
        {"unlinkAt", removing},
        {"removeFolderAt", removing},

        {"writeAt", writing},
        {"setSize", sizing},
        {"allocateRoom", {EDQUOT, EFBIG, EIO, ENOMEM, ENOSPC, EOPNOTSUPP, EPERM, ETXTBSY}},
        {"copyBytes", copying},
        {"copyRange", copying},
        {"shareBlocks", copying},
        {"sendBytes", {EAGAIN, EINVAL, EIO, ENOMEM, EOVERFLOW}},
        {"nextData", {EINVAL, EIO}},
        {"nextHole", {EINVAL, EIO}},
        {"flushToDisk", {EDQUOT, EIO, ENOSPC, EROFS}},

        {"tryLock", {EIO, ENOLCK, ENOMEM, EOPNOTSUPP}},
        {"unlock", {EIO, ENOLCK}},
    };
    const auto row = rows.find(call);
    return row == rows.end() ? noSuchCall : row->second;
}

}   // namespace support
