// What goes wrong while a command runs: said on standard error, one line a failure, and remembered for the exit status.
#pragma once

#include "platform/types.h"

#include <string>

namespace host
{

// "fnfErr (-43)"; only the number where a code has no name.
std::string describeResult(OSStatus result);

// What a code means in plain words, or "the file manager gives no reason".
std::string meaningOfResult(OSStatus result);

class Report
{
public:
    // `command` begins every line, after the program's own name.
    explicit Report(std::string command) : command_(std::move(command)) {}

    // zerb: info: /some/path: fnfErr (-43): no such file or folder
    // `step`, where given, stands before the code and says what was being done. A second line says what may help, where that is known.
    void failure(const std::string &object, OSStatus result, const std::string &step = "");

    // zerb: touch: /some/path: MESSAGE
    void problem(const std::string &object, const std::string &message);

    // The same without counting as a failure.
    void remark(const std::string &object, const std::string &message);

    bool anyFailure() const { return failed_; }

private:
    std::string command_;
    bool failed_ = false;
};

}   // namespace host
