// The users and groups that the system's name service knows, and who this process is. As in linux_calls.h: 0 or more on success, else the negative errno.
#pragma once

#include <cstdint>
#include <string>

namespace standin::linux_calls
{

// -ENOENT where nobody has the number or name. Any other failure says that the name service could not be asked.
int userName(std::uint32_t user, std::string &name);
int groupName(std::uint32_t group, std::string &name);
int userNamed(const std::string &name, std::uint32_t &user);
int groupNamed(const std::string &name, std::uint32_t &group);

int homeFolder(std::uint32_t user, std::string &path);

bool isInGroup(std::uint32_t group);   // this process, by its effective or further groups
int processNumber();                   // another one after a fork

}   // namespace standin::linux_calls
