#include "standin/files/database_part.h"

#include "standin/modules.h"

namespace standin
{

namespace
{

const DatabaseModule *load()
{
    auto *function = reinterpret_cast<DatabaseModuleFunction *>(moduleFunction(databaseModuleFile, databaseModuleFunction));
    if (function == nullptr)
        notePartMissing("the part that keeps file IDs cannot be loaded: " + moduleProblem());
    return function != nullptr ? function() : nullptr;
}

}   // namespace

const DatabaseModule *databasePart()
{
    static const DatabaseModule *const part = load();
    return part;
}

}   // namespace standin
