// Which file a font is in.
#pragma once

#include <string>

namespace standin
{

struct FontFile
{
    std::string path;   // empty if this machine has no font at all
    int index = 0;      // which of the fonts in it
    std::string family;
};

// The file of a family's regular face, or of what comes next to it. Only fonts of outlines count.
FontFile fontFileOf(const std::string &family);

}   // namespace standin
