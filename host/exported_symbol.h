// The symbols of the plug-in's C++ functions.
//
// The plug-in exports its string, dialog and folder functions under C++ names, which carry the parameter types in the compiler's own code.
// Nobody should type those by hand: here they are made from a function's plain name and its declared type.
#pragma once

#include <string>
#include <type_traits>
#include <typeinfo>

namespace host
{

// The symbol of a function of this name and type at namespace scope: exportedSymbol("Val", &Val) is "_Z3ValPKh".
//
// The code of a function type is F, the result, the parameters, E; that of the function itself is _Z, the name's length, the name, the
// parameters. A parameter type that occurs again is coded as the number of its first place, and in the type the result counts too: hence
// results of one letter alone, which are never numbered. The plug-in's functions have no others.
template <typename Result, typename... Parameters>
std::string exportedSymbol(const std::string &name, Result (*)(Parameters...))
{
    static_assert(std::is_void_v<Result> || std::is_arithmetic_v<Result>, "the parameters would be numbered otherwise");
    std::string type = typeid(Result(Parameters...)).name();
    std::string parameters = type.substr(2, type.size() - 3);
    return "_Z" + std::to_string(name.size()) + name + parameters;
}

}   // namespace host
