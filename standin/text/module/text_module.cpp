// The table that the part `zerbtext.so` exports.
#include "standin/text/module/text_module.h"

extern "C" [[gnu::visibility("default")]] const standin::TextModule *zerbTextModule();

const standin::TextModule *zerbTextModule()
{
    using namespace standin::text_module;
    static const standin::TextModule module{readCharacters, decomposed, composed, plainlyComposed, beginsAnew, otherForm, folded, isPlain};
    return &module;
}
