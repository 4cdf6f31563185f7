// The recording double: it stands where the platform would be when the library is tested by itself.
//
//     PlatformDouble platform;                          // from here on the platform's calls go to this one
//     platform.files.object("file").info.nodeFlags |= kFSNodeLockedMask;
//     EXPECT_EQ(FSCheckLock(&platform.files.ref("file")), fLckdErr);
//     EXPECT_EQ(platform.calls(), Calls{"FSGetCatalogInfo(ref:file, 0x6, info, -, -, -)"});
//
// Each manager has its own part, a plain struct with the state that its calls answer from. README.md says how to add one.

#pragma once

#include "tests/contract/double_access.h"
#include "tests/contract/double_blocks.h"
#include "tests/contract/double_core_foundation.h"
#include "tests/contract/double_dates.h"
#include "tests/contract/double_dialogs.h"
#include "tests/contract/double_drawing.h"
#include "tests/contract/double_events.h"
#include "tests/contract/double_files.h"
#include "tests/contract/double_folders.h"
#include "tests/contract/double_forks.h"
#include "tests/contract/double_handles.h"
#include "tests/contract/double_icons.h"
#include "tests/contract/double_iterators.h"
#include "tests/contract/double_menus.h"
#include "tests/contract/double_mounting.h"
#include "tests/contract/double_names.h"
#include "tests/contract/double_resources.h"
#include "tests/contract/double_screens.h"
#include "tests/contract/double_text.h"
#include "tests/contract/recorder.h"

class PlatformDouble : public Recorder
{
public:
    PlatformDouble();
    ~PlatformDouble();
    PlatformDouble(const PlatformDouble &) = delete;
    PlatformDouble &operator=(const PlatformDouble &) = delete;

    // The one that the platform's calls go to. There is one at a time.
    static PlatformDouble &current();

    FilesDouble files;
    DatesDouble dates;
    TextDouble text;
    NamesDouble names;
    ForksDouble forks;
    BlocksDouble blocks;
    HandlesDouble handles;
    IteratorsDouble iterators;
    AccessDouble access;
    MountingDouble mounting;
    FoldersDouble folders;
    CoreFoundationDouble coreFoundation;
    DrawingDouble drawing;
    ScreensDouble screens;
    IconsDouble icons;
    ResourcesDouble resources;
    DialogsDouble dialogs;
    MenusDouble menus;
    EventsDouble events;
};
