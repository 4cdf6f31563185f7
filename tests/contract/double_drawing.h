// The double's ports, with their pens and colours, and what was drawn into them.

#pragma once

#include "platform/platform.h"

#include <string>
#include <vector>

// As texts: {top, left, bottom, right}, {v, h} and {red, green, blue}
std::string rectText(const Rect *rect);
std::string pointText(Point point);
std::string colorText(const RGBColor *color);

struct OpaqueGrafPtr
{
    std::string name;
    Point corner;   // where its local coordinates begin on the screen
    PenState pen = {{-3, 7}, {2, 1}, 9, {0x88, 0x22, 0x44, 0x11, 0x88, 0x22, 0x44, 0x11}};
    RGBColor foreColor = {0x1234, 0xABCD, 0xFFFF};
    BitMap bits = {};
};

struct OpaqueWindowPtr
{
    OpaqueGrafPtr port;
};

struct DrawnText
{
    std::string text, port;
    Point where;
    RGBColor color;
};

struct CopiedPicture
{
    std::string port;   // whose bits were copied into
    std::vector<UInt8> bytes;
    RGBColor foreColor;   // of the current port
};

struct DrawingDouble
{
    static std::string describe(GrafPtr port);

    // The port of these bits, among the one of the window and the current one.
    std::string describe(const BitMap *bits) const;

    OpaqueGrafPtr screen = {"screen", {0, 0}};
    OpaqueWindowPtr window = {{"window", {40, 30}}};
    GrafPtr current = &screen;
    Boolean inside = 1;   // how PtInRect says that a point is in a rectangle
    std::vector<DrawnText> texts;
    std::vector<CopiedPicture> pictures;
};
