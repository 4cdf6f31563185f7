// Which items of a dialog are icon buttons, and what they do: rows of text in the resource 'STR#' that has the dialog's ID.
#pragma once

#include "platform/platform.h"

#include <stdexcept>
#include <string>
#include <vector>

namespace host
{

struct IconControl
{
    SInt16 item = 0;
    bool isSmall = false;   // a small icon in the item's rectangle, not a button with a label
    SInt16 icon = 0;
    SInt16 menu = 0;            // 0: it opens none
    SInt16 checkedItem = -1;    // -1: none
    SInt16 delay = -1;          // in ticks, of a button; -1: the usual one
    bool clearsMarks = false;   // of a button, likewise
    SInt16 label = 2;           // where the button's label is: 0 nowhere, 1 beside, 2 below
    SInt16 alert = 0;           // 0: it shows none
    SInt32 number = 0;          // for the alert
};

struct ControlError : std::runtime_error
{
    using std::runtime_error::runtime_error;
};

// One row: "ITEM button|small ICON" and then any of "menu ID", "checked ITEM", "delay TICKS", "clear", "label PLACE", "alert ID", "number NUMBER".
// Throws ControlError.
IconControl controlFromRow(const std::string &row);

// The strings of an 'STR#' resource, big-endian as in the file. Throws ControlError if they do not lie in it whole.
std::vector<std::string> rowsOf(const std::string &bytes);

}   // namespace host
