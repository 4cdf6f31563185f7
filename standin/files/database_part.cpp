#include "standin/files/database_part.h"

#include "standin/modules.h"

namespace standin
{

const DatabaseModule *databasePart()
{
    static const DatabaseModule *const part =
        tableOfModule<DatabaseModuleFunction>(databaseModuleFile, databaseModuleFunction, "that keeps file IDs");
    return part;
}

}   // namespace standin
