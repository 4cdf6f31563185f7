// The part `zerbtext.so`, loaded when it is first asked for.
#pragma once

#include "standin/text/module/text_module.h"

namespace standin
{

// Null if it is not there or cannot be loaded; missingPart (standin.h) then says why. From any thread.
const TextModule *textPart();

}   // namespace standin
