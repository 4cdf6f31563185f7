// The bytes of a "DITL" resource, big-endian as in the file: what items a dialog has.
#pragma once

#include "platform/platform.h"

#include <string>
#include <vector>

namespace standin
{

struct ItemDescription
{
    DialogItemType type = 0;   // with kItemDisableBit
    Rect box{};                // local to the dialog
    std::string text;          // of a control, a static or an editable text; in the system's encoding
    SInt16 resourceID = 0;     // of an icon, a picture or a control out of a resource
};

DialogItemType kindOf(DialogItemType type);   // without kItemDisableBit

// False if the bytes are damaged: an item that is announced does not lie in them whole. What comes behind the last item does not count.
bool readItemList(const std::string &bytes, std::vector<ItemDescription> &items);

}   // namespace standin
