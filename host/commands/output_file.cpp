#include "host/commands/output_file.h"

#include <cerrno>
#include <cstring>
#include <unistd.h>
#include <utility>

namespace host
{

OutputFile::~OutputFile()
{
    if (file_ == nullptr || file_ == stdout)
        return;
    std::fclose(file_);
    unlink(name_.c_str());
}

bool OutputFile::open(const std::string &name)
{
    name_ = name;
    file_ = name == standardStream ? stdout : std::fopen(name.c_str(), "wbx");
    return file_ != nullptr;
}

bool OutputFile::write(std::span<const char> bytes)
{
    return std::fwrite(bytes.data(), 1, bytes.size(), file_) == bytes.size();
}

bool OutputFile::finish()
{
    if (file_ == stdout)
        return std::fflush(stdout) == 0;
    bool isWritten = std::fclose(std::exchange(file_, nullptr)) == 0;
    if (!isWritten)
        unlink(name_.c_str());
    return isWritten;
}

std::string whyNoOutput(int error)
{
    return error == EEXIST ? "there is such a file already, and nothing is replaced" : std::strerror(error);
}

}   // namespace host
