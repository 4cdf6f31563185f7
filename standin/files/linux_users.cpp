#include "standin/files/linux_users.h"

#include "standin/files/linux_repeated.h"

#include <algorithm>
#include <cerrno>
#include <grp.h>
#include <pwd.h>
#include <unistd.h>
#include <vector>

namespace standin::linux_calls
{

namespace
{

constexpr std::size_t usualRecord = 1024, largestRecord = 16 * 1024 * 1024;   // a group's record holds all of its members

// "There is none" is said in many ways by the parts that a name service is made of.
bool saysNobody(int failure)
{
    return failure == ENOENT || failure == ESRCH || failure == EBADF || failure == EPERM;
}

// Asks with more and more room. `ask` fills record and found as the C library's calls do; `take` uses what was found while the room is there.
template <typename Record, typename Ask, typename Take>
int lookUp(Ask ask, Take take, const char *call)
{
    std::vector<char> room(usualRecord);
    for (;;)
    {
        Record record{};
        Record *found = nullptr;
        const auto askOnce = [&] {
            errno = ask(&record, room.data(), room.size(), &found);
            return errno == 0 ? 0 : -1;
        };
        const int failure = -repeated(askOnce, call);
        if (failure == ERANGE && room.size() < largestRecord)
            room.resize(room.size() * 2);
        else if (failure != 0)
            return saysNobody(failure) ? -ENOENT : -failure;
        else
            return found ? (take(*found), 0) : -ENOENT;
    }
}

}   // namespace

int userName(std::uint32_t user, std::string &name)
{
    return lookUp<passwd>([&](auto... rest) { return ::getpwuid_r(user, rest...); }, [&](const passwd &found) { name = found.pw_name; },
                          __func__);
}

int groupName(std::uint32_t number, std::string &name)
{
    return lookUp<group>([&](auto... rest) { return ::getgrgid_r(number, rest...); }, [&](const group &found) { name = found.gr_name; },
                         __func__);
}

int userNamed(const std::string &name, std::uint32_t &user)
{
    return lookUp<passwd>([&](auto... rest) { return ::getpwnam_r(name.c_str(), rest...); },
                          [&](const passwd &found) { user = found.pw_uid; }, __func__);
}

int groupNamed(const std::string &name, std::uint32_t &number)
{
    return lookUp<group>([&](auto... rest) { return ::getgrnam_r(name.c_str(), rest...); },
                         [&](const group &found) { number = found.gr_gid; }, __func__);
}

int homeFolder(std::uint32_t user, std::string &path)
{
    return lookUp<passwd>([&](auto... rest) { return ::getpwuid_r(user, rest...); }, [&](const passwd &found) { path = found.pw_dir; },
                          __func__);
}

bool isInGroup(std::uint32_t group)
{
    if (::getegid() == group)
        return true;
    const int count = repeated([] { return ::getgroups(0, nullptr); });
    std::vector<gid_t> groups(static_cast<std::size_t>(std::max(count, 0)));
    const int filled = repeated([&] { return ::getgroups(static_cast<int>(groups.size()), groups.data()); });
    return filled > 0 && std::find(groups.begin(), groups.begin() + filled, group) != groups.begin() + filled;
}

int processNumber()
{
    return ::getpid();
}

}   // namespace standin::linux_calls
