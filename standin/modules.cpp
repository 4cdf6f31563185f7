#include "standin/modules.h"

#include <dlfcn.h>

namespace standin
{

namespace
{

thread_local std::string problem;

// The folder that the stand-in itself was loaded from, with its closing slash.
std::string ownFolder()
{
    Dl_info own{};
    if (dladdr(reinterpret_cast<const void *>(&moduleFunction), &own) == 0 || own.dli_fname == nullptr)
        return {};
    const std::string path = own.dli_fname;
    return path.substr(0, path.rfind('/') + 1);
}

void *noted(void *found)
{
    const char *error = dlerror();
    problem = found == nullptr && error != nullptr ? error : "";
    return found;
}

}   // namespace

void *moduleFunction(const std::string &module, const char *function)
{
    void *library = noted(dlopen((ownFolder() + module).c_str(), RTLD_NOW | RTLD_LOCAL));   // counted: loading it again only finds it
    return library != nullptr ? noted(dlsym(library, function)) : nullptr;
}

const std::string &moduleProblem()
{
    return problem;
}

}   // namespace standin
