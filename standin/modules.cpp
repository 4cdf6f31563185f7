#include "standin/modules.h"

#include "standin/files/linux_calls.h"
#include "standin/standin.h"

#include <array>
#include <atomic>
#include <dlfcn.h>
#include <fcntl.h>
#include <filesystem>
#include <link.h>
#include <memory>
#include <system_error>

namespace standin
{

namespace
{

thread_local std::string problem;
std::atomic<const std::string *> firstMissing = nullptr;

std::string programPath()
{
    std::array<char, 4096> path{};
    const ssize_t length = linux_calls::readLink(AT_FDCWD, "/proc/self/exe", path);
    return std::string(path.data(), length > 0 ? static_cast<std::size_t>(length) : 0);
}

// Where the stand-in itself was loaded from. Of a program that it is a part of, the loader knows only what its caller made up.
std::string ownPath()
{
    Dl_info own{};
    link_map *map = nullptr;
    if (dladdr1(reinterpret_cast<const void *>(&moduleFunction), &own, reinterpret_cast<void **>(&map), RTLD_DL_LINKMAP) == 0 ||
        map == nullptr)
        return {};
    return map->l_name != nullptr && map->l_name[0] != '\0' ? map->l_name : programPath();
}

// With its closing slash, and wherever the current directory is moved to later. Empty if it is not known.
std::string ownFolder()
{
    std::error_code failure;
    const std::filesystem::path path = std::filesystem::absolute(ownPath(), failure);
    return failure || !path.has_filename() ? std::string() : path.parent_path().string() + '/';
}

// The build's description says which.
const std::string installedFolder = ZERB_MODULE_FOLDER_NAME;

// Asked at the start: once a program has taken mounts of its own, the path that Linux tells of it may lead nowhere.
const std::string folderAtStart = ownFolder();

void *noted(void *found)
{
    const char *error = dlerror();
    problem = found == nullptr && error != nullptr ? error : "";
    return found;
}

// Beside the stand-in where it was built; in a folder of its own below where it is installed, out of the way of libraries that programs are
// linked with. Loading counts: a second time only finds it.
void *loadedModule(const std::string &module)
{
    if (folderAtStart.empty())   // anywhere else could lie anything
    {
        problem = "the folder of libzerbstandin.so is not known";
        return nullptr;
    }
    const std::string installed = folderAtStart + installedFolder + '/' + module;
    ObjectStatus status;
    const bool isInstalled = linux_calls::statusAt(AT_FDCWD, installed.c_str(), status) == 0;
    return noted(dlopen((isInstalled ? installed : folderAtStart + module).c_str(), RTLD_NOW | RTLD_LOCAL));
}

}   // namespace

void *moduleFunction(const std::string &module, const char *function)
{
    void *library = loadedModule(module);
    return library != nullptr ? noted(dlsym(library, function)) : nullptr;
}

const std::string &moduleProblem()
{
    return problem;
}

void notePartMissing(const std::string &sentence)
{
    auto kept = std::make_unique<std::string>(sentence);
    const std::string *none = nullptr;
    if (firstMissing.compare_exchange_strong(none, kept.get()))
        kept.release();   // until the process ends: whoever asked may still hold what it got
}

const char *missingPart()
{
    const std::string *sentence = firstMissing;
    return sentence ? sentence->c_str() : nullptr;
}

}   // namespace standin
