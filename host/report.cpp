#include "host/report.h"

#include "host/text.h"

#include "platform/results.h"
#include "standin/standin.h"

#include <cstdio>

namespace host
{

namespace
{

// What a person can do about a failure, or null.
const char *helpFor(OSStatus result)
{
    switch (result)
    {
    case fLckdErr: return "`zerb set --unlock PATH` takes the lock away";
    case wPrErr: return "its file system is mounted read-only";
    case afpAccessDenied:
    case permErr: return "`zerb info PATH` shows who owns it and what its mode allows";
    case notAFileErr: return "folders have no forks, no type and no creator, and are not exchanged";
    case tmfoErr: return "`ulimit -n` shows and raises how many files may be open";
    default: return nullptr;
    }
}

}   // namespace

std::string describeResult(OSStatus result)
{
    const char *name = standin::resultCodeName(result);
    std::string number = std::to_string(result);
    return name != nullptr ? std::string(name) + " (" + number + ")" : number;
}

std::string meaningOfResult(OSStatus result)
{
    const char *meaning = standin::resultCodeMeaning(result);
    return meaning != nullptr ? meaning : "the file manager gives no reason";
}

void Report::failure(const std::string &object, OSStatus result, const std::string &step)
{
    problem(object, (step.empty() ? "" : step + ": ") + describeResult(result) + ": " + meaningOfResult(result));
    if (const char *help = helpFor(result))
        std::fprintf(stderr, "  (%s)\n", help);
}

void Report::problem(const std::string &object, const std::string &message)
{
    remark(object, message);
    failed_ = true;
}

void Report::remark(const std::string &object, const std::string &message)
{
    std::fflush(stdout);   // what was shown before stays before, where both go to one place
    std::string shown = object.empty() ? "\"\"" : printable(object);
    std::fprintf(stderr, "zerb: %s: %s: %s\n", command_.c_str(), shown.c_str(), message.c_str());
}

}   // namespace host
