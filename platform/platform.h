// Everything of the platform that this project uses, in one include. Every public header includes this one.
//
// The headers of this folder declare and define nothing else: whoever links against them brings the calls, be it the
// platform, the stand-in for Linux or the recording double of the contract tests. All calls have C linkage. All widths
// are the same on every target; records are packed to 2 bytes, as a 16-bit bus had them.

#pragma once

#include "platform/core_foundation.h"
#include "platform/dates.h"
#include "platform/dialogs.h"
#include "platform/drawing.h"
#include "platform/events.h"
#include "platform/file_constants.h"
#include "platform/file_records.h"
#include "platform/files.h"
#include "platform/folders.h"
#include "platform/geometry.h"
#include "platform/icons.h"
#include "platform/memory.h"
#include "platform/menus.h"
#include "platform/notification.h"
#include "platform/parameter_blocks.h"
#include "platform/resources.h"
#include "platform/results.h"
#include "platform/system.h"
#include "platform/text.h"
#include "platform/types.h"
#include "platform/windows.h"
