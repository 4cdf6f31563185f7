// The double's dialog with its items, and its alerts.

#pragma once

#include "tests/contract/double_drawing.h"

#include <array>
#include <map>
#include <string>
#include <vector>

struct OpaqueDialogPtr
{
    OpaqueGrafPtr port;
    std::map<DialogItemIndex, Rect> items;
};

struct ShownAlert
{
    SInt16 id;
    std::array<std::string, 4> texts;
};

struct DialogsDouble
{
    OpaqueDialogPtr dialog = {{"dialog", {100, 200}}, {}};
    std::array<std::string, 4> texts;   // what stands for ^0 to ^3
    std::vector<ShownAlert> alerts;
    DialogItemIndex closingItem = 1;
};
