// What a host may ask of the stand-in's drawing and of its screen, beyond the platform's own calls.
#pragma once

#include "platform/platform.h"

#include <string>

#pragma GCC visibility push(default)

namespace standin
{

// Saves what a port shows as a PNG file, each pixel as a square of `scale` by `scale`. A file of that name is replaced, and only once the new
// one is whole. `path` is one of Linux, absolute or from the current directory, and its folders have to be there.
// Result: noErr; paramErr for a null port, a path that names no file, a scale below 1, or if it would be more than 64 million pixels;
// memFullErr; ioErr without the part that writes pictures (screenProblem tells); the code of why the file could not be written, such as
// fnfErr without the folder, afpAccessDenied, dskFulErr.
OSErr savePicture(GrafPtr port, const std::string &path, int scale = 1);

// Why text is not drawn in the font that was asked for, or pictures cannot be saved, in one sentence without a full stop; null if all is well.
// It stays true while the process lives: font and parts are looked for once.
const char *screenProblem();

// From now on there is no display and no real mouse, but a screen of pixels alone that follows this script; docs/interface.md tells its form. To be
// called before the first window is made, on the thread that handles events: windows of an earlier screen are not shown on this one.
// Result: empty, or what is wrong with the script and in which line, in one sentence without a full stop.
std::string useScriptedScreen(const std::string &script);

// Why nobody can answer a dialog here, in one sentence without a full stop; empty if there is a display or a script. Opens the screen.
std::string inputProblem();

}   // namespace standin

#pragma GCC visibility pop
