// What all calls of the platform's double share: each is recorded as one line of text, and each can be made to fail.
//
// A line reads like the call: FSGetCatalogInfo(ref:file, 0x42, info, -, -, parent). A null pointer is "-". An output is
// shown by its role, so that lines compare equal from run to run; the functions below make these texts.

#pragma once

#include "platform/platform.h"

#include <initializer_list>
#include <map>
#include <string>
#include <vector>

using Calls = std::vector<std::string>;

inline Calls operator+(Calls first, const Calls &then)
{
    first.insert(first.end(), then.begin(), then.end());
    return first;
}

// Texts of arguments
std::string decimal(SInt64 number);
std::string hex(UInt64 number);
std::string codeText(OSType code);   // its four characters: 'TEXT'
std::string plainText(ConstStr255Param text);
std::string quoted(ConstStr255Param text);   // the same in quotes, or "-" for a null one

// One named field of a parameter block: ioDirID=16
std::string field(const std::string &name, const std::string &value);

// A field of a record, copied: it may not be aligned for its type, and comparisons in tests take references.
template <typename Field>
Field valueOf(Field field)
{
    return field;
}

class Recorder
{
public:
    // Every call since the start, or since they were last forgotten.
    const Calls &calls() const { return recordedCalls; }
    void forgetCalls() { recordedCalls.clear(); }

    // The call that comes as number `nth` from now (1 is the next one) fails with this code; or that one and every later
    // one; or every call of one name. A failing call is recorded, changes nothing and writes no output.
    void failCall(int nth, OSStatus code);
    void failFromCall(int nth, OSStatus code);
    void failEvery(const std::string &callName, OSStatus code);

    // Every call with exactly this line fails with this code.
    void failLine(const std::string &line, OSStatus code);

    // Whether a failure asked for by number has come, and the line of the first call that failed so.
    bool failureReached() const { return !firstFailedCall.empty(); }
    const std::string &failedCall() const { return firstFailedCall; }

    // From now on lines show this address by this name: tells a caller's variable from a local one.
    void nameAddress(const void *address, const std::string &name);

    // For the calls themselves. The first two return the code to fail with, or noErr if the call is to go on; a void call,
    // which has no way to fail, is only noted and is not counted.
    OSErr record(const std::string &callName, std::initializer_list<std::string> arguments);
    OSStatus recordStatus(const std::string &callName, std::initializer_list<std::string> arguments);
    void note(const std::string &callName, std::initializer_list<std::string> arguments);

    // The text of a pointer: "-" if it is null, the address's name if it has one, otherwise the role.
    std::string pointer(const void *address, const std::string &role) const;

private:
    bool isToFailByNumber();

    Calls recordedCalls;
    std::map<const void *, std::string> addressNames;
    std::map<std::string, OSStatus> codesByName;
    std::map<std::string, OSStatus> codesByLine;
    int callsBeforeFailure = 0;   // 0 when no failure is waiting
    bool failsEverAfter = false;
    OSStatus codeByNumber = noErr;
    std::string firstFailedCall;
};
