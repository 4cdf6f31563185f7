// The symbols by which the host finds C++ functions in the plug-in.

#include "host/exported_symbol.h"
#include "strings/pstrings.h"
#include "tests/whole/products.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cxxabi.h>
#include <fstream>
#include <memory>
#include <set>

namespace
{

std::string demangled(const std::string &symbol)
{
    int status = 0;
    std::unique_ptr<char, void (*)(void *)> name(abi::__cxa_demangle(symbol.c_str(), nullptr, nullptr, &status), std::free);
    return status == 0 ? name.get() : "(no symbol: " + symbol + ")";
}

std::set<std::string> listedExports()
{
    std::ifstream list(built("zerb.exports.txt"));
    std::set<std::string> names;
    for (std::string line; std::getline(list, line);)
        names.insert(line);
    return names;
}

// The type alone: this program does not contain the functions.
#define SYMBOL_OF(function) host::exportedSymbol(#function, static_cast<decltype(&::function)>(nullptr))

// Another test compares the list with the plug-in itself.
TEST(HostSymbols, AreThoseOfThePlugInsList)
{
    const std::string symbols[] = {
        SYMBOL_OF(CopyCtoPstr),
        SYMBOL_OF(CopyPtoCstr),
        SYMBOL_OF(Val),
        SYMBOL_OF(Valc),
        SYMBOL_OF(Str),
        SYMBOL_OF(AdjustStrWidth),
        SYMBOL_OF(Pos),
        SYMBOL_OF(Posn),
        SYMBOL_OF(PosnAt),
        SYMBOL_OF(Copy),
        SYMBOL_OF(Copyn),
        SYMBOL_OF(Comp),
        SYMBOL_OF(Concat),
        SYMBOL_OF(Mid),
        SYMBOL_OF(AllisNum),
        SYMBOL_OF(DoubleToLong),
        SYMBOL_OF(StringHexToNum),
        SYMBOL_OF(MyDoubleToString),
        SYMBOL_OF(MyStringToDouble),
    };
    const std::set<std::string> listed = listedExports();
    for (const std::string &symbol : symbols)
        EXPECT_TRUE(listed.contains(demangled(symbol))) << symbol << " is " << demangled(symbol);
}

TEST(HostSymbols, NumberTypesThatOccurAgain)
{
    EXPECT_EQ(SYMBOL_OF(Val), "_Z3ValPKh");
    EXPECT_EQ(SYMBOL_OF(PosnAt), "_Z6PosnAtPKhS0_s");
    EXPECT_EQ(SYMBOL_OF(CopyCtoPstr), "_Z11CopyCtoPstrPhPKc");
}

}   // namespace
