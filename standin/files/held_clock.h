// For tests: the clocks that only go forward can be made to stand still, so that what a second changes does not depend on how fast a machine is.
#pragma once

namespace standin::linux_calls
{

// From now on, and until the process ends, milliseconds() and coarseMilliseconds() give what they give now.
void holdClock();

}   // namespace standin::linux_calls
