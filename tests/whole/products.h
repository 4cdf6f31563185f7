// What the build made, as a user has it.
#pragma once

#include <filesystem>
#include <string>

// The path of a file beside the test program, where the host, the plug-in and the stand-in are built too.
inline std::string built(const std::string &name)
{
    static const std::filesystem::path folder = std::filesystem::read_symlink("/proc/self/exe").parent_path();
    return folder / name;
}

// The file name of the stand-in's library by which programs ask for it: with the version of its interface.
inline std::string standInFile()
{
    return std::filesystem::read_symlink(built("libzerbstandin.so"));
}
