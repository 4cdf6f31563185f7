// Files of Linux that commands write.
#pragma once

#include <cstdio>
#include <span>
#include <string>

namespace host
{

constexpr const char *standardStream = "-";   // in the place of a file's name

// A new file, which goes again unless all of it is written; or the standard output.
class OutputFile
{
public:
    OutputFile() = default;
    OutputFile(const OutputFile &) = delete;
    OutputFile &operator=(const OutputFile &) = delete;
    ~OutputFile();

    bool open(const std::string &name);   // false if it cannot be made or is there already, errno tells
    bool write(std::span<const char> bytes);
    bool finish();

private:
    std::string name_;
    std::FILE *file_ = nullptr;
};

std::string whyNoOutput(int error);

}   // namespace host
