// The looks of icons: disabled, offline, open, selected, labelled.
//
// What changes is what lies inside the mask, in the icon's own pixels: an icon that is stretched has its patterns stretched too, and looks
// the same wherever it is drawn. Nothing depends on what was drawn before in that place.
//
// Everything that is given is put together, in this order:
//   open            filled with gray dots in place of its picture; in 1 bit black ones on white
//   selected        each component halved; in 1 bit black and white change places
//   offline         every second pixel gray, or half as bright where the icon is selected; in 1 bit black
//   a label         each component multiplied by that of the label, so that white becomes the label's colour; in 1 bit black does
//   disabled        half way to the background; in 1 bit every second pixel has the background's colour
#pragma once

#include "standin/drawing/icon_members.h"

namespace standin
{

// Values that are no transform, and bits that mean none, change nothing: an icon without a certain look is better than no icon.
void transformIcon(IconTransformType transform, Pixel background, IconPixels &icon);

// The colour of a label, 1 to 7: gray, green, purple, blue, yellow, red, orange. Labels have the numbers of the Finder's flags.
Pixel colorOfLabel(int label);

}   // namespace standin
