// Extended attributes, by folder and name or through a descriptor.
#include "standin/files/linux_repeated.h"

#include <fcntl.h>
#include <sys/syscall.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace standin::linux_calls
{

namespace
{

// Linux 6.13; older headers do not know them.
constexpr long getAttributeAtCall = 464;
constexpr long listAttributesAtCall = 465;
std::atomic<bool> attributesAtFolders{true};   // until the kernel says that it has no such call

struct AttributeArguments   // the kernel's struct xattr_args
{
    std::uint64_t value;
    std::uint32_t size;
    std::uint32_t flags;
};

}   // namespace

ssize_t listAttributes(int folder, const char *name, std::span<char> names)
{
    if (attributesAtFolders.load(std::memory_order_relaxed))
    {
        const auto result =
            repeated([&] { return ::syscall(listAttributesAtCall, folder, name, AT_SYMLINK_NOFOLLOW, names.data(), names.size()); });
        if (result != -ENOSYS)
            return static_cast<ssize_t>(result);
        attributesAtFolders = false;
    }
    const std::string path = throughDescriptor(folder, name);
    return repeated([&] { return ::llistxattr(path.c_str(), names.data(), names.size()); });
}

ssize_t getAttribute(int folder, const char *name, const char *attribute, std::span<std::uint8_t> value)
{
    if (attributesAtFolders.load(std::memory_order_relaxed))
    {
        AttributeArguments arguments{reinterpret_cast<std::uintptr_t>(value.data()), static_cast<std::uint32_t>(value.size()), 0};
        const auto result = repeated(
            [&] { return ::syscall(getAttributeAtCall, folder, name, AT_SYMLINK_NOFOLLOW, attribute, &arguments, sizeof arguments); });
        if (result != -ENOSYS)
            return static_cast<ssize_t>(result);
        attributesAtFolders = false;
    }
    const std::string path = throughDescriptor(folder, name);
    return repeated([&] { return ::lgetxattr(path.c_str(), attribute, value.data(), value.size()); });
}

int setAttribute(int descriptor, const char *attribute, std::span<const std::uint8_t> value)
{
    const std::string path = throughDescriptor(descriptor);
    return repeated([&] { return ::setxattr(path.c_str(), attribute, value.data(), value.size(), 0); });
}

int removeAttribute(int descriptor, const char *attribute)
{
    const std::string path = throughDescriptor(descriptor);
    return repeated([&] { return ::removexattr(path.c_str(), attribute); });
}

}   // namespace standin::linux_calls
