#include "standin/files/temporary_files.h"

#include "standin/files/linux_copies.h"
#include "standin/files/listings.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace standin
{

namespace
{

std::string freshHiddenName()
{
    static std::atomic<unsigned> count{0};
    return std::string(temporaryPrefix) + std::to_string(::getpid()) + '-' + std::to_string(count.fetch_add(1));
}

}   // namespace

TemporaryFile::~TemporaryFile()
{
    if (!hiddenName_.empty())
        linux_calls::unlinkAt(folder_, hiddenName_.c_str());
}

int TemporaryFile::make(int folder, std::uint32_t mode)
{
    folder_ = folder;
    int opened = linux_calls::openTemporary(folder, mode & 0777);
    const bool diskCannot = opened == -EOPNOTSUPP || opened == -EISDIR || opened == -ENOENT || opened == -EINVAL;
    while (diskCannot)
    {
        hiddenName_ = freshHiddenName();
        opened = linux_calls::openAt(folder, hiddenName_.c_str(), O_RDWR | O_CREAT | O_EXCL, mode & 0777);
        if (opened != -EEXIST)
            break;
    }
    if (opened < 0)
    {
        hiddenName_.clear();
        return opened;
    }
    file_ = Descriptor(opened);
    return 0;
}

int TemporaryFile::makeSymbolicLink(int folder, const char *target)
{
    int result;
    folder_ = folder;
    do
    {
        hiddenName_ = freshHiddenName();
        result = linux_calls::makeSymbolicLink(target, folder, hiddenName_.c_str());
    } while (result == -EEXIST);
    if (result < 0)
        hiddenName_.clear();
    else
        file_ = Descriptor(linux_calls::openAt(folder, hiddenName_.c_str(), O_PATH));
    return result < 0 ? result : std::min(file_.number(), 0);
}

int TemporaryFile::giveHiddenName()
{
    while (hiddenName_.empty())
    {
        std::string name = freshHiddenName();
        const int result = linux_calls::giveName(file_.number(), folder_, name.c_str());
        if (result == 0)
            hiddenName_ = std::move(name);
        else if (result != -EEXIST)
            return result;
    }
    return 0;
}

int TemporaryFile::appear(const char *name)
{
    if (hiddenName_.empty())
        return linux_calls::giveName(file_.number(), folder_, name);
    const int result = linux_calls::renameWithoutReplacing(folder_, hiddenName_.c_str(), folder_, name);
    if (result == 0)
        hiddenName_.clear();
    return result;
}

int TemporaryFile::replace(const char *name)
{
    int result = giveHiddenName();
    if (result == 0)
        result = linux_calls::renameAt(folder_, hiddenName_.c_str(), folder_, name);
    if (result == 0)
        hiddenName_.clear();
    return result;
}

}   // namespace standin
