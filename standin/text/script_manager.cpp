#include "standin/text/script_manager.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>

namespace standin
{

namespace
{

struct Row
{
    std::string_view locale;   // language, or language and country; the latter come first
    SystemScript system;
};

constexpr Row rows[] = {
    {"de_AT", {0, 92}},  {"de_CH", {0, 19}}, {"de", {0, 3}},     {"en_AU", {0, 15}}, {"en_CA", {0, 82}}, {"en_GB", {0, 2}},
    {"en_IE", {0, 108}}, {"en", {0, 0}},     {"es_ES", {0, 8}},  {"es_", {0, 86}},   {"es", {0, 8}},     {"fr_BE", {0, 98}},
    {"fr_CA", {0, 11}},  {"fr_CH", {0, 18}}, {"fr", {0, 1}},     {"it_CH", {0, 36}}, {"it", {0, 4}},     {"nl_BE", {0, 6}},
    {"nl", {0, 5}},      {"pt_BR", {0, 71}}, {"pt", {0, 10}},    {"zh_TW", {2, 53}}, {"zh_HK", {2, 53}}, {"zh_MO", {2, 53}},
    {"zh", {25, 52}},    {"sr", {7, 65}},    {"el_CY", {6, 23}}, {"el", {6, 20}},    {"sv", {0, 7}},     {"da", {0, 9}},
    {"nb", {0, 12}},     {"no", {0, 12}},    {"nn", {0, 101}},   {"fi", {0, 17}},    {"is", {0, 21}},    {"fo", {0, 47}},
    {"mt", {0, 22}},     {"tr", {0, 24}},    {"hr", {0, 68}},    {"bs", {0, 25}},    {"sl", {0, 66}},    {"ro", {0, 39}},
    {"ca", {0, 73}},     {"af", {0, 102}},   {"eo", {0, 103}},   {"kl", {0, 107}},   {"he", {5, 13}},    {"iw", {5, 13}},
    {"ar", {4, 16}},     {"fa", {4, 48}},    {"ur_IN", {4, 96}}, {"ur", {4, 34}},    {"ja", {1, 14}},    {"ko", {3, 51}},
    {"th", {21, 54}},    {"ru", {7, 49}},    {"uk", {7, 62}},    {"be", {7, 61}},    {"bg", {7, 72}},    {"mk", {7, 67}},
    {"lt", {29, 41}},    {"pl", {29, 42}},   {"hu", {29, 43}},   {"et", {29, 44}},   {"lv", {29, 45}},   {"cs", {29, 56}},
    {"sk", {29, 57}},
};

// The row "es" fits "es", "es_MX" and "es.UTF-8" but not "est"; the row "es_" every Spanish locale with a country.
bool fits(std::string_view row, std::string_view locale)
{
    if (!locale.starts_with(row))
        return false;
    return row.ends_with('_') || locale.size() == row.size() || locale[row.size()] == '_' || locale[row.size()] == '.' ||
           locale[row.size()] == '@';
}

std::string_view localeOfProcess()
{
    for (const char *name : {"LC_ALL", "LC_CTYPE", "LANG"})
        if (const char *value = std::getenv(name); value != nullptr && *value != '\0')
            return value;
    return {};
}

}   // namespace

SystemScript scriptOfLocale(std::string_view locale)
{
    if (fits("sr", locale) && locale.ends_with("@latin"))
        return {0, 25};
    const Row *found = std::find_if(std::begin(rows), std::end(rows), [locale](const Row &row) { return fits(row.locale, locale); });
    return found == std::end(rows) ? SystemScript() : found->system;
}

const SystemScript &systemScript()
{
    static const SystemScript system = scriptOfLocale(localeOfProcess());
    return system;
}

}   // namespace standin

// Every other variable is 0, the result that means that there is none.
long GetScriptManagerVariable(SInt16 selector)
{
    switch (selector)
    {
    case smSysScript: return standin::systemScript().script;
    case smRegionCode: return standin::systemScript().region;
    default: return 0;
    }
}
