#include "tests/contract/recorder.h"

#include <cstdio>

std::string decimal(SInt64 number)
{
    return std::to_string(number);
}

std::string hex(UInt64 number)
{
    char text[24];
    std::snprintf(text, sizeof text, "0x%llX", number);
    return text;
}

std::string codeText(OSType code)
{
    std::string text = "'";
    for (int shift = 24; shift >= 0; shift -= 8)
        text += static_cast<char>(code >> shift & 0xFF);
    return text + '\'';
}

std::string plainText(ConstStr255Param text)
{
    std::string result;
    for (int position = 1; position <= text[0]; ++position)
        result += static_cast<char>(text[position]);
    return result;
}

std::string quoted(ConstStr255Param text)
{
    return text == nullptr ? "-" : '"' + plainText(text) + '"';
}

std::string field(const std::string &name, const std::string &value)
{
    return name + '=' + value;
}

void Recorder::failCall(int nth, OSStatus code)
{
    callsBeforeFailure = nth;
    failsEverAfter = false;
    codeByNumber = code;
    firstFailedCall.clear();
}

void Recorder::failFromCall(int nth, OSStatus code)
{
    failCall(nth, code);
    failsEverAfter = true;
}

void Recorder::failEvery(const std::string &callName, OSStatus code)
{
    codesByName[callName] = code;
}

void Recorder::failLine(const std::string &line, OSStatus code)
{
    codesByLine[line] = code;
}

void Recorder::nameAddress(const void *address, const std::string &name)
{
    addressNames[address] = name;
}

std::string Recorder::pointer(const void *address, const std::string &role) const
{
    if (address == nullptr)
        return "-";
    const auto known = addressNames.find(address);
    return known == addressNames.end() ? role : known->second;
}

void Recorder::note(const std::string &callName, std::initializer_list<std::string> arguments)
{
    std::string line = callName + '(';
    const char *separator = "";
    for (const std::string &argument : arguments)
    {
        line += separator + argument;
        separator = ", ";
    }
    recordedCalls.push_back(line + ')');
}

bool Recorder::isToFailByNumber()
{
    if (failureReached())
        return failsEverAfter;
    return callsBeforeFailure > 0 && --callsBeforeFailure == 0;
}

OSStatus Recorder::recordStatus(const std::string &callName, std::initializer_list<std::string> arguments)
{
    note(callName, arguments);
    if (isToFailByNumber())
    {
        if (!failureReached())
            firstFailedCall = recordedCalls.back();
        return codeByNumber;
    }
    const auto line = codesByLine.find(recordedCalls.back());
    if (line != codesByLine.end())
        return line->second;
    const auto named = codesByName.find(callName);
    return named == codesByName.end() ? OSStatus{noErr} : named->second;
}

OSErr Recorder::record(const std::string &callName, std::initializer_list<std::string> arguments)
{
    return static_cast<OSErr>(recordStatus(callName, arguments));
}
