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
    return unicodeFromCodes(systemTable(), text, unicode);
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
