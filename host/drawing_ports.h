// What commands that draw share: ports for pictures, and saving those.
#pragma once

#include "host/command.h"

#include "platform/drawing.h"
#include "platform/windows.h"

#include <string>

namespace host
{

// Pixels of this size, current and all in one colour as long as this lives; the colour is then the port's background.
class PicturePort
{
public:
    PicturePort(SInt16 width, SInt16 height, const RGBColor &background);
    ~PicturePort();
    PicturePort(const PicturePort &) = delete;
    PicturePort &operator=(const PicturePort &) = delete;

    OSErr result() const { return result_; }   // noErr, or why there is none
    GrafPtr port() const { return port_; }

private:
    GrafPtr earlier_ = nullptr;
    GWorldPtr port_ = nullptr;
    OSErr result_;
};

// The same as a window that nobody sees, for what is drawn into windows alone.
class PictureWindow
{
public:
    PictureWindow(SInt16 width, SInt16 height, const RGBColor &background);
    ~PictureWindow();
    PictureWindow(const PictureWindow &) = delete;
    PictureWindow &operator=(const PictureWindow &) = delete;

    OSErr result() const { return result_; }
    WindowRef window() const { return window_; }

private:
    GrafPtr earlier_ = nullptr;
    WindowRef window_ = nullptr;
    OSErr result_;
};

// Where a picture goes.
struct PictureFile
{
    std::string name;   // of Linux
    bool replaces = false;
    int scale = 1;
};

// Declares -o, --replace and --scale. The first one is given back.
Arguments::Item addPictureFile(Arguments &arguments, PictureFile &file);

// Saves what the port shows as PNG. What goes wrong is reported.
void savePicture(Invocation &invocation, GrafPtr port, const PictureFile &file);

}   // namespace host
