#include "host/name_pattern.h"

#include <clocale>
#include <fnmatch.h>
#include <locale.h>

namespace host
{

namespace
{

// The C library takes the characters to be those of the thread's locale. This program has none, so that nothing else depends on it.
class Utf8Characters
{
public:
    Utf8Characters() : before_(uselocale(locale())) {}
    Utf8Characters(const Utf8Characters &) = delete;
    Utf8Characters &operator=(const Utf8Characters &) = delete;
    ~Utf8Characters() { uselocale(before_); }

private:
    // Null where the machine does not have it; then characters are bytes.
    static locale_t locale()
    {
        static const locale_t utf8 = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
        return utf8;
    }

    locale_t before_;
};

}   // namespace

NamePattern::NamePattern(std::string pattern, bool ignoringCase) : pattern_(std::move(pattern)), options_(ignoringCase ? FNM_CASEFOLD : 0)
{
}

bool NamePattern::matches(const std::string &name) const
{
    Utf8Characters characters;
    return fnmatch(pattern_.c_str(), name.c_str(), options_) == 0;
}

}   // namespace host
