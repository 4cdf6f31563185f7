#include "host/drawing_ports.h"

#include "host/text.h"

#include "standin/screen.h"

#include <sys/stat.h>

namespace host
{

namespace
{

constexpr UInt32 largestScale = 64;

void fill(SInt16 width, SInt16 height, const RGBColor &background)
{
    const Rect all = {0, 0, height, width};
    RGBBackColor(&background);
    EraseRect(&all);
}

bool isThere(const std::string &name)
{
    struct stat ignored = {};
    return lstat(name.c_str(), &ignored) == 0;
}

}   // namespace

PicturePort::PicturePort(SInt16 width, SInt16 height, const RGBColor &background)
{
    const Rect bounds = {0, 0, height, width};
    GetPort(&earlier_);
    result_ = NewGWorld(&port_, 0, &bounds, nullptr, nullptr, 0);
    if (result_ != noErr)
        return;
    SetPort(port_);
    fill(width, height, background);
}

PicturePort::~PicturePort()
{
    if (port_ == nullptr)
        return;
    SetPort(earlier_);
    DisposeGWorld(port_);
}

PictureWindow::PictureWindow(SInt16 width, SInt16 height, const RGBColor &background)
{
    standin::useScriptedScreen("");   // pixels alone: no window may flash up where there is a display
    const Rect bounds = {0, 0, height, width};
    GetPort(&earlier_);
    result_ = static_cast<OSErr>(CreateNewWindow(kPlainWindowClass, kWindowNoAttributes, &bounds, &window_));
    if (result_ != noErr)
        return;
    SetPort(GetWindowPort(window_));
    fill(width, height, background);
}

PictureWindow::~PictureWindow()
{
    if (window_ == nullptr)
        return;
    SetPort(earlier_);
    DisposeWindow(window_);
}

Arguments::Item addPictureFile(Arguments &arguments, PictureFile &file)
{
    const Arguments::Item output = arguments.text(
        "-o,--output", "LINUXFILE", [&file](const std::string &typed) { file.name = typed; }, "the picture, a file of Linux, as PNG");
    arguments.flag("--replace", file.replaces, "replace the picture if it is there already").needs(output);
    arguments
        .text(
            "--scale", "N",
            [&file](const std::string &typed) {
                file.scale = static_cast<int>(numberFromText(typed, largestScale));
                if (file.scale == 0)
                    throw UsageError("a pixel is 1 to " + std::to_string(largestScale) + " pixels wide");
            },
            "draw each pixel as a square of N by N")
        .needs(output);
    return output;
}

void savePicture(Invocation &invocation, GrafPtr port, const PictureFile &file)
{
    if (!file.replaces && isThere(file.name))
        return invocation.report.problem(file.name, "it is there already; --replace replaces it");
    const OSErr result = standin::savePicture(port, file.name, file.scale);
    if (result == noErr)
        return;
    invocation.report.failure(file.name, result, "saving the picture");
    if (const char *problem = standin::screenProblem())
        invocation.report.remark(file.name, printable(problem));
    else if (result == paramErr)
        invocation.report.remark(file.name, "a picture has at most 64 million pixels; --scale makes them more");
}

}   // namespace host
