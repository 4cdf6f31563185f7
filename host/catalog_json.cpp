#include "host/catalog_json.h"

#include "host/dates.h"
#include "host/four_character_codes.h"
#include "host/report.h"

#include "standin/standin.h"

namespace host
{

const char *kindJson(Kind kind)
{
    return kind == Kind::symbolicLink ? "symbolic_link" : nameOfKind(kind);
}

Json dateJson(const UTCDateTime &date)
{
    if (isNever(date))
        return nullptr;
    return {{"iso", isoUtc(date)}, {"seconds_since_1904", secondsSince1904(date)}, {"fraction_65536", static_cast<UInt16>(date.fraction)}};
}

Json codeJson(OSType code)
{
    std::optional<std::string> text = textOfCode(code);
    return text ? Json(*text) : Json(nullptr);
}

Json bitsJson(std::span<const NamedBit> table, UInt32 bits)
{
    return {{"value", bits}, {"names", namesOfBits(table, bits)}};
}

Json labelJson(UInt16 finderFlags)
{
    int label = labelOfFlags(finderFlags);
    return {{"number", label}, {"name", nameOfLabel(label)}};
}

Json resultJson(OSStatus result)
{
    const char *name = standin::resultCodeName(result);
    return {{"code", result}, {"symbol", name != nullptr ? Json(name) : Json(nullptr)}, {"meaning", meaningOfResult(result)}};
}

Json errorJson(const std::string &path, OSStatus result)
{
    return {{"path", path}, {"error", resultJson(result)}};
}

}   // namespace host
