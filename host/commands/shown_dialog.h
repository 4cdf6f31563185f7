// A dialog while `zerb dialog` shows it.
#pragma once

#include "host/command.h"
#include "host/commands/dialog_controls.h"

#include <string>

namespace host
{

struct DialogRequest
{
    SInt16 id = 128;
    bool json = false;
    std::string picture;   // where the dialog's port is saved when it ends; empty: nowhere
};

// Shows the dialog of this ID out of the open resource files, follows the mouse on its icon buttons, and prints what happens. Ends with item 1, the
// close box, or when the program is to end. Problems go to the report, under the resource file's name.
void runDialog(Invocation &invocation, const std::string &file, const DialogRequest &request);

}   // namespace host
