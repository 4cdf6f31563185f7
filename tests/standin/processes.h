// Processes for tests: programs, shell lines, and roles.
//
// A role is a function of a test program that it plays in a process of its own, started anew: nothing of the file manager is open or
// remembered there. Checks in a role count: a failed one makes the process end with status 1, and what it printed comes back with its end.
#pragma once

#include <string>
#include <sys/types.h>
#include <vector>

namespace support
{

// How a process ended: its exit status, or 128 and the signal's number; and what it wrote to its standard output and error output.
struct Ended
{
    int status = -1;
    std::string output;
};

constexpr uid_t nobody = 65534;
constexpr uid_t ordinaryUser = 1000;

struct RoleSetting
{
    uid_t user = 0;                         // 0: the user that runs the tests
    std::vector<std::string> environment;   // NAME=VALUE, added to the tests' own
};

// A process that was started and not yet waited for. It is ended with the object.
class Running
{
public:
    Running(pid_t process, int output) : process_(process), output_(output) {}
    Running(Running &&other) noexcept;
    Running(const Running &) = delete;
    Running &operator=(const Running &) = delete;
    ~Running();
    pid_t process() const { return process_; }
    void kill(int signal);
    void waitForOutput();   // until it has written something, or ended
    Ended wait();           // reads all of its output, then its end

private:
    pid_t process_;
    int output_;
};

Running start(const std::vector<std::string> &words, const std::vector<std::string> &environment = {});
Ended run(const std::vector<std::string> &words);
Ended runShell(const std::string &line);
bool programExists(const std::string &name);   // in PATH, or in the folders of the system's own programs

// `mv -T`, the way people rename things.
void moveByProgram(const std::string &from, const std::string &to);

using RoleArguments = std::vector<std::string>;

struct Role
{
    Role(const char *name, void (*play)(const RoleArguments &));
};

Running startRole(const std::string &name, const RoleArguments &arguments, const RoleSetting &setting = {});

// Plays a role to its end and makes the running test fail, with the role's output, if a check of it failed.
std::string playRole(const std::string &name, const RoleArguments &arguments, const RoleSetting &setting = {});

// Whether roles can be played as other users. In a user namespace of an ordinary user they cannot.
bool canBecomeOtherUsers();

// For the test program's main(): true if the command line asks for a role; `status` is then what the program ends with.
bool roleWasAsked(int argumentCount, char **arguments, int &status);

}   // namespace support
