// The part `zerbdrawing.so`, loaded when it is first asked for.
#pragma once

#include "standin/drawing/module/drawing_module.h"

namespace standin
{

// Null if it is not there or cannot be loaded; loadedModuleProblem then says why, in one sentence without a full stop. From any thread.
const DrawingModule *loadedModule();
const std::string &loadedModuleProblem();

}   // namespace standin
