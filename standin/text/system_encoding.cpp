#include "standin/text/system_encoding.h"

#include "standin/text/code_table.h"
#include "standin/text/encodings.h"
#include "standin/text/script_manager.h"

#include <utility>

namespace standin
{

namespace
{

TextEncoding encodingOfSystemScript()
{
    TextEncoding encoding = kTextEncodingMacRoman;
    const SystemScript &system = systemScript();
    UpgradeScriptInfoToTextEncoding(system.script, kTextLanguageDontCare, system.region, nullptr, &encoding);
    return codeTableOf(encoding) ? encoding : kTextEncodingMacRoman;
}

const CodeTable &systemTable()
{
    static const CodeTable &table = *codeTableOf(systemEncoding());
    return table;
}

}   // namespace

TextEncoding systemEncoding()
{
    static const TextEncoding encoding = encodingOfSystemScript();
    return encoding;
}

bool unicodeFromSystemText(std::string_view text, std::u16string &unicode)
{
    const CodeTable &table = systemTable();
    std::u16string converted;
    converted.reserve(text.size());
    for (std::string_view rest = text; !rest.empty();)
    {
        const TakenCode taken = takeCode(table, rest);
        if (taken.problem != CodeProblem::none)
            return false;
        converted.push_back(taken.character);
        rest.remove_prefix(taken.length);
    }
    unicode = std::move(converted);
    return true;
}

bool systemTextFromUnicode(std::u16string_view unicode, std::string &text)
{
    const CodeTable &table = systemTable();
    std::string converted;
    converted.reserve(unicode.size());
    if (!appendCodes(table, unicode, converted))
        return false;
    text = std::move(converted);
    return true;
}

}   // namespace standin
