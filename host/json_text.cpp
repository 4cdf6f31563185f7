#include "host/json_text.h"

#include "host/text.h"

namespace host
{

namespace
{

void append(std::string &text, const Json &node, std::size_t indent);

void appendLineStart(std::string &text, std::size_t indent)
{
    text += '\n';
    text.append(indent, ' ');
}

void appendMembers(std::string &text, const Json &node, std::size_t indent)
{
    const char *separator = "";
    for (const auto &[key, value] : node.items())
    {
        text += separator;
        appendLineStart(text, indent + 2);
        if (node.is_object())
            text += jsonString(key) + ": ";
        append(text, value, indent + 2);
        separator = ",";
    }
    appendLineStart(text, indent);
}

void append(std::string &text, const Json &node, std::size_t indent)
{
    if (node.is_string())
        text += jsonString(node.get_ref<const std::string &>());
    else if (!node.is_structured() || node.empty())
        text += node.dump();
    else
    {
        text += node.is_object() ? '{' : '[';
        appendMembers(text, node, indent);
        text += node.is_object() ? '}' : ']';
    }
}

}   // namespace

std::string jsonText(const Json &tree)
{
    std::string text;
    append(text, tree, 0);
    return text + "\n";
}

}   // namespace host
