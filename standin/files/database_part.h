// The part `zerbdatabase.so`, loaded when it is first asked for.
#pragma once

#include "standin/files/module/database_module.h"

namespace standin
{

// Null if it is not there or cannot be loaded; missingPart (standin.h) then says why. From any thread.
const DatabaseModule *databasePart();

}   // namespace standin
