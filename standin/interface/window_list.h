// All windows, in their order.
#pragma once

#include "standin/interface/windows.h"

#include <vector>

namespace standin
{

std::vector<WindowRef> &windowList();   // the front one last
void putInFront(WindowRef window);

}   // namespace standin
