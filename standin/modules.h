// Parts of the stand-in that are loaded when they are first needed: work on files must wait neither for a window system and a font engine, nor
// for a database and all of Unicode where it only has to do with a few names.
//
// A module is a shared library beside libzerbstandin.so, or in the folder zerb-VERSION/ there. It exports one C function, which gives a table of what
// the module does.
#pragma once

#include <string>
#include <utility>

namespace standin
{

// The exported function of a module, as `Function *`; null if the module or the function is not there. Each module is loaded once and stays.
// May be called from any thread.
void *moduleFunction(const std::string &module, const char *function);

// Why the last moduleFunction of this thread gave null, in one sentence without a full stop.
const std::string &moduleProblem();

// Keeps, for missingPart (standin.h), that work had to be done without a part: one sentence without a full stop. The first one stays.
void notePartMissing(const std::string &problem);

// The table that a module's function gives; null, and noted as missing, if it is not there. `part` completes "the part ... cannot be loaded".
template <typename Function>
auto tableOfModule(const char *module, const char *function, const std::string &part) -> decltype(std::declval<Function &>()())
{
    auto *give = reinterpret_cast<Function *>(moduleFunction(module, function));
    if (give == nullptr)
        notePartMissing("the part " + part + " cannot be loaded: " + moduleProblem());
    return give != nullptr ? give() : nullptr;
}

}   // namespace standin
