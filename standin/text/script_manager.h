// The system's script and region, and with them the system's text encoding.
#pragma once

#include "platform/platform.h"

#include <string_view>

namespace standin
{

struct SystemScript
{
    ScriptCode script = 0;   // Roman
    RegionCode region = 0;   // United States
};

// The script and region of a locale's name, such as "de_CH.UTF-8" or "sr_RS@latin". Roman and United States for names without a row: "C",
// "POSIX", the empty one, and languages whose text cannot be converted here, so that their names still come as Mac Roman where that is enough.
SystemScript scriptOfLocale(std::string_view locale);

// Those of the process: its environment is read once, when they are first asked for. LC_ALL comes before LC_CTYPE, that before LANG; an empty
// one counts as missing.
const SystemScript &systemScript();

}   // namespace standin
