// What the plug-in shows to the world: exactly the names of its list, and no library beyond those it may need.
//
// Looks at the file itself with the binary tools that the linker came with. The list is plugin/exports.txt, of which the
// build puts a copy beside the plug-in.

#include "tests/how_built.h"
#include "tests/whole/products.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <fstream>
#include <set>
#include <sstream>
#include <string>

namespace
{

using Names = std::set<std::string>;

const std::string plugin = built("zerb.so");
const std::string exportsList = built("zerb.exports.txt");

std::string quoted(const std::string &path)
{
    return "'" + path + "'";
}

std::string outputOf(const std::string &command)
{
    std::FILE *pipe = popen(command.c_str(), "r");
    if (pipe == nullptr)
    {
        ADD_FAILURE() << "cannot run " << command;
        return {};
    }
    std::string output;
    std::array<char, 4096> buffer;
    while (const std::size_t count = std::fread(buffer.data(), 1, buffer.size(), pipe))
        output.append(buffer.data(), count);
    EXPECT_EQ(pclose(pipe), 0) << command;
    return output;
}

Names exportedNames()
{
    std::istringstream lines(outputOf(std::string("nm --dynamic --defined-only --demangle --format=just-symbols ") + quoted(plugin)));
    Names names;
    for (std::string line; std::getline(lines, line);)
        names.insert(line);
    return names;
}

Names listedNames()
{
    std::ifstream list(exportsList);
    EXPECT_TRUE(list.is_open()) << exportsList;
    Names names;
    for (std::string line; std::getline(list, line);)
    {
        if (line.empty() || line.front() == '#')
            continue;
        EXPECT_TRUE(names.insert(line).second) << line << " is listed twice";
    }
    return names;
}

// The names in the square brackets of readelf's lines of this kind, as in "(NEEDED)  Shared library: [libc.so.6]".
Names dynamicEntries(const std::string &file, const std::string &kind)
{
    std::istringstream lines(outputOf("LC_ALL=C readelf --dynamic --wide " + quoted(file)));
    Names names;
    for (std::string line; std::getline(lines, line);)
    {
        const std::size_t open = line.find('['), close = line.find(']');
        if (line.find("(" + kind + ")") != std::string::npos && open < close && close != std::string::npos)
            names.insert(line.substr(open + 1, close - open - 1));
    }
    return names;
}

Names difference(const Names &all, const Names &without)
{
    Names rest;
    std::set_difference(all.begin(), all.end(), without.begin(), without.end(), std::inserter(rest, rest.end()));
    return rest;
}

TEST(PluginExports, EveryListedNameIsExported)
{
    const Names listed = listedNames();
    ASSERT_FALSE(listed.empty());
    EXPECT_EQ(difference(listed, exportedNames()), Names{}) << "listed, but not in the plug-in";
}

TEST(PluginExports, NothingElseIsExported)
{
    if (isSanitized())
        GTEST_SKIP() << "sanitizers add names of their own";
    EXPECT_EQ(difference(exportedNames(), listedNames()), Names{}) << "in the plug-in, but not listed";
}

TEST(PluginExports, NeedsTheStandInAndTheLanguagesLibrariesAlone)
{
    if (isSanitized())
        GTEST_SKIP() << "sanitizers need libraries of their own";
    const Names needed = dynamicEntries(plugin, "NEEDED");
    EXPECT_TRUE(needed.contains(standInFile()));
    const Names allowed = {standInFile(), "libstdc++.so.6", "libm.so.6", "libgcc_s.so.1", "libc.so.6"};
    EXPECT_EQ(difference(needed, allowed), Names{});
}

// An empty place, as between two colons or at the end, is the current directory.
TEST(PluginExports, LibrariesAreLookedForInNoPlaceThatTheCurrentDirectoryDecides)
{
    for (const std::string &file : {plugin, built("zerb")})
    {
        const Names places = dynamicEntries(file, "RUNPATH");
        ASSERT_EQ(places.size(), 1u) << file;
        std::istringstream list(*places.begin() + ":");
        for (std::string place; std::getline(list, place, ':');)
            EXPECT_TRUE(place.starts_with("$ORIGIN")) << file << ": " << *places.begin();
    }
}

}   // namespace
