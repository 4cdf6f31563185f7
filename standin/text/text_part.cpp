#include "standin/text/text_part.h"

#include "standin/modules.h"

namespace standin
{

const TextModule *textPart()
{
    static const TextModule *const part =
        tableOfModule<TextModuleFunction>(textModuleFile, textModuleFunction, "that knows characters beyond ASCII");
    return part;
}

}   // namespace standin
