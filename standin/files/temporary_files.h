// Files that are written whole before anybody sees them under their name.
#pragma once

#include "standin/files/linux_calls.h"

#include <string>

namespace standin
{

// A file without a name, where the disk can do that, so that a kill leaves nothing; else one whose hidden name begins with `.zerb-`.
// All results are 0 or a negative errno. What was not given a name is gone when the object goes.
class TemporaryFile
{
public:
    TemporaryFile() = default;
    TemporaryFile(const TemporaryFile &) = delete;
    TemporaryFile &operator=(const TemporaryFile &) = delete;
    ~TemporaryFile();

    int make(int folder, std::uint32_t mode);
    int makeSymbolicLink(int folder, const char *target);   // always with a hidden name; its descriptor is an O_PATH one
    int descriptor() const { return file_.number(); }

    int appear(const char *name);    // under a free name; -EEXIST if it is taken
    int replace(const char *name);   // in the place of what has the name

private:
    int giveHiddenName();
    int folder_ = -1;
    std::string hiddenName_;   // empty while the file has none
    Descriptor file_;
};

}   // namespace standin
