// For fuzz programs: the part that knows characters beyond ASCII is linked with them, and nothing is loaded.
#include "standin/modules.h"
#include "standin/text/module/text_module.h"

#include <string_view>

extern "C" const standin::TextModule *zerbTextModule();

namespace standin
{

void *moduleFunction(const std::string &module, const char *)
{
    return module == textModuleFile ? reinterpret_cast<void *>(&zerbTextModule) : nullptr;
}

const std::string &moduleProblem()
{
    static const std::string &none = *new std::string;
    return none;
}

void notePartMissing(const std::string &) {}

}   // namespace standin
