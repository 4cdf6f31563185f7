// What a test must know of the build that it runs in. Asked when it runs: each test is compiled once for all builds of this machine.
#pragma once

// Whether what is tested has sanitizers, which place memory in their own way and are slow.
bool isSanitized();

// Whether random values come by the hundred thousand here, and trees in their full size.
bool hasLongRuns();
