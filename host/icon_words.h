// What people type for the looks of icons: transforms, alignments, colours.
#pragma once

#include "platform/drawing.h"
#include "platform/icons.h"

#include <string>

namespace host
{

// Words with commas between them: one of disabled, offline, open; selected; a label's colour. "none" is none of them. Throws UsageError.
IconTransformType transformFromText(const std::string &typed);

// none, center, top, bottom, left, right, top-left, top-right, bottom-left, bottom-right. Throws UsageError.
IconAlignmentType alignmentFromText(const std::string &typed);

// Six hexadecimal digits, with or without # before them, or white, light-gray, gray, dark-gray, black. Throws UsageError.
RGBColor colorFromText(const std::string &typed);

}   // namespace host
