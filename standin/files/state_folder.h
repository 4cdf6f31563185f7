// Where this user's lasting state lies: what must outlive a process and belongs to no volume.
#pragma once

#include <string>

namespace standin
{

// What the host said, else ZERB_STATE_FOLDER, else `zerb` in XDG_STATE_HOME, else `.local/state/zerb` in the user's home. Empty where there is no home.
std::string stateFolder();

// Makes a folder and those above it where they are missing, for this user alone. 0, or the negative errno.
int makeStateFolder(const std::string &path);

// The value of an environment variable that holds a path; empty if it is missing or not absolute, in which case it does not count.
std::string absolutePathFrom(const char *variable);

// The home of the user that this process acts for; empty where nothing knows one.
std::string homeOfUser();

}   // namespace standin
