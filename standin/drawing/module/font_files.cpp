#include "standin/drawing/module/font_files.h"

#include <fontconfig/fontconfig.h>

#include <memory>

namespace standin
{

namespace
{

struct Release
{
    void operator()(FcConfig *config) const { FcConfigDestroy(config); }
    void operator()(FcPattern *pattern) const { FcPatternDestroy(pattern); }
};

using Pattern = std::unique_ptr<FcPattern, Release>;

// Of a configuration of our own: a host's one stays as it is.
Pattern matchFor(FcConfig *config, const std::string &family)
{
    Pattern wanted(FcPatternCreate());
    FcPatternAddString(wanted.get(), FC_FAMILY, reinterpret_cast<const FcChar8 *>(family.c_str()));
    FcPatternAddBool(wanted.get(), FC_SCALABLE, FcTrue);
    FcConfigSubstitute(config, wanted.get(), FcMatchPattern);
    FcDefaultSubstitute(wanted.get());
    FcResult result = FcResultNoMatch;
    return Pattern(FcFontMatch(config, wanted.get(), &result));
}

std::string textOf(const FcPattern *pattern, const char *object, int which = 0)
{
    FcChar8 *text = nullptr;
    return FcPatternGetString(pattern, object, which, &text) == FcResultMatch ? reinterpret_cast<const char *>(text) : "";
}

// A font may have several names: the asked one if it is among them, as fontconfig compares them.
std::string familyName(const FcPattern *match, const std::string &asked)
{
    for (int which = 0;; ++which)
    {
        const std::string name = textOf(match, FC_FAMILY, which);
        if (name.empty())
            return textOf(match, FC_FAMILY);
        if (FcStrCmpIgnoreCase(reinterpret_cast<const FcChar8 *>(name.c_str()), reinterpret_cast<const FcChar8 *>(asked.c_str())) == 0)
            return asked;
    }
}

}   // namespace

FontFile fontFileOf(const std::string &family)
{
    const std::unique_ptr<FcConfig, Release> config(FcInitLoadConfigAndFonts());
    if (config == nullptr)
        return {};
    const Pattern match = matchFor(config.get(), family);
    if (match == nullptr)
        return {};
    FontFile file{textOf(match.get(), FC_FILE), 0, familyName(match.get(), family)};
    FcPatternGetInteger(match.get(), FC_INDEX, 0, &file.index);
    return file;
}

}   // namespace standin
