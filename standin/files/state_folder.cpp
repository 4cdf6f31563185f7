#include "standin/files/state_folder.h"

#include "standin/files/linux_calls.h"
#include "standin/files/linux_users.h"
#include "standin/standin.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <mutex>

namespace standin
{

std::string absolutePathFrom(const char *variable)
{
    const char *value = std::getenv(variable);
    return value && value[0] == '/' ? value : std::string();
}

std::string homeOfUser()
{
    std::string home = absolutePathFrom("HOME");
    if (home.empty())
        linux_calls::homeFolder(linux_calls::effectiveUser(), home);
    return home;
}

namespace
{

struct ChosenFolder
{
    std::mutex mutex;
    std::string path;
};

ChosenFolder &chosen()
{
    static ChosenFolder folder;
    return folder;
}

std::string folderFromEnvironment()
{
    if (std::string named = absolutePathFrom("ZERB_STATE_FOLDER"); !named.empty())
        return named;
    if (const std::string states = absolutePathFrom("XDG_STATE_HOME"); !states.empty())
        return states + "/zerb";
    const std::string home = homeOfUser();
    return home.empty() ? home : home + "/.local/state/zerb";
}

}   // namespace

void useStateFolder(const std::string &directory)
{
    const std::lock_guard lock(chosen().mutex);
    chosen().path = directory;
}

std::string stateFolder()
{
    static const std::string usual = folderFromEnvironment();   // read once: other threads may change it later
    const std::lock_guard lock(chosen().mutex);
    return chosen().path.empty() ? usual : chosen().path;
}

int makeStateFolder(const std::string &path)
{
    constexpr mode_t forOwnerAlone = 0700;
    for (std::size_t end = 0; end != std::string::npos;)
    {
        end = path.find('/', end + 1);
        const int made = linux_calls::makeFolderAt(AT_FDCWD, path.substr(0, end).c_str(), forOwnerAlone);
        const bool mayBeThere = made == 0 || made == -EEXIST || end != std::string::npos;   // what is above may refuse and be there
        if (!mayBeThere)
            return made;
    }
    return 0;
}

}   // namespace standin
