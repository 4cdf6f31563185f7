// Command-line arguments, read with CLI11, in the way that file names need: every byte string comes through as it was typed.
#pragma once

#include "host/objects.h"
#include "host/usage_error.h"

#include <CLI/CLI.hpp>

#include <functional>
#include <string>
#include <vector>

namespace host
{

// Required paths, one or more. CLI11's own reading of lists would take names such as {} and [a,b] apart.
CLI::Option *addPaths(CLI::App &app, const std::string &name, std::vector<std::string> &paths, const std::string &description);

// One required path.
CLI::Option *addPath(CLI::App &app, const std::string &name, std::string &path, const std::string &description);

// Calls `read` with the option's text; a UsageError that it throws is reported with the option's name.
CLI::Option *addText(CLI::App &app, const std::string &name, const std::string &valueName, std::function<void(const std::string &)> read,
                     const std::string &description);

// -P, --no-follow
void addLinksOption(CLI::App &app, Links &links);

// Reads the words after the command's name. Throws CLI::ParseError; asking for help is one too.
void parseWords(CLI::App &app, const std::vector<std::string> &words);

}   // namespace host
