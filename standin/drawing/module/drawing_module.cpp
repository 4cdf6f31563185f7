// The table that the part `zerbdrawing.so` exports.
#include "standin/drawing/module/drawing_module.h"

extern "C" [[gnu::visibility("default")]] const standin::DrawingModule *zerbDrawingModule();

const standin::DrawingModule *zerbDrawingModule()
{
    static const standin::DrawingModule module{standin::openFont, standin::encodePicture};
    return &module;
}
