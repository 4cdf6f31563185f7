// Running the host `zerb` in a process of its own, as a person or a script would, on a folder that is made for the test.
#pragma once

#include "tests/standin/disks.h"
#include "tests/whole/products.h"

#include <nlohmann/json.hpp>

#include <string>
#include <sys/types.h>
#include <vector>

namespace host_tests
{

using Words = std::vector<std::string>;

struct Outcome
{
    int status = -1;   // the exit status, or 128 and the signal's number
    std::string output;
    std::string errors;
};

struct Setting
{
    std::string directory;    // to run in; empty for that of the tests
    Words environment;        // NAME=VALUE; an empty value is set empty
    std::string outputFile;   // where standard output goes instead; `output` is then empty
    std::string program = built("zerb");
    uid_t user = 0;   // 0: the user that runs the tests
};

Outcome runHost(const Words &words, const Setting &setting = {});

// A test on one temporary folder. The host runs in it, so that paths may be relative.
class HostTest : public testing::Test
{
protected:
    const support::TemporaryFolder &folder() const { return folder_; }
    std::string path(std::string_view name) const { return folder_ / name; }
    void makeFile(std::string_view name, std::string_view text = "") const { support::writeFile(path(name), text); }
    void makeFolder(std::string_view name) const;

    Outcome zerb(const Words &words, const Words &environment = {}) const;

    // Runs it and makes the test fail unless it ends with status 0 and says nothing on standard error.
    std::string zerbWell(const Words &words) const;

    // Runs it on a terminal of its own, at which this is typed, and returns all that the terminal showed.
    std::string zerbOnTerminal(const Words &words, const std::string &typed = "") const;

    // What `zerb info --json` says of one object.
    nlohmann::json info(const std::string &name, const Words &options = {}) const;

    // Makes the test fail unless the outcome is a failure that names the object, the code by symbol and number, and nothing on standard output.
    static void expectFailure(const Outcome &outcome, const std::string &object, const std::string &code);

private:
    support::TemporaryFolder folder_;
};

}   // namespace host_tests
