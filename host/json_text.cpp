#include "host/json_text.h"

#include "host/text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>

namespace host
{

namespace
{

// The shortest digits that read back as this number; a whole one keeps a decimal, so that it is seen to be a fraction's kind.
std::string shortestText(double number)
{
    char digits[32];
    std::string text(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
    return text.find_first_of(".e") == std::string::npos ? text + ".0" : text;
}

void appendLineStart(std::string &text, std::size_t level)
{
    text += '\n';
    text.append(2 * level, ' ');
}

}   // namespace

Json::Json(double number) : text_(std::isfinite(number) ? shortestText(number) : "null") {}

Json::Json(std::initializer_list<Json> elements)
{
    bool isObject = std::all_of(elements.begin(), elements.end(), [](const Json &element) { return element.isMember(); });
    kind_ = isObject ? Kind::object : Kind::array;
    for (const Json &element : elements)
    {
        if (isObject)
            names_.push_back(element.elements_[0].text_);
        elements_.push_back(isObject ? element.elements_[1] : element);
    }
}

Json Json::array(std::initializer_list<Json> elements)
{
    Json array;
    array.kind_ = Kind::array;
    array.elements_ = elements;
    return array;
}

Json Json::object()
{
    Json object;
    object.kind_ = Kind::object;
    return object;
}

bool Json::isMember() const
{
    return kind_ == Kind::array && elements_.size() == 2 && elements_[0].kind_ == Kind::string;
}

Json &Json::operator[](const std::string &name)
{
    auto found = std::find(names_.begin(), names_.end(), name);
    if (found != names_.end())
        return elements_[static_cast<std::size_t>(found - names_.begin())];
    names_.push_back(name);
    return elements_.emplace_back();
}

void Json::push_back(Json element)
{
    elements_.push_back(std::move(element));
}

std::string Json::compact() const
{
    std::string text;
    append(text, 0, false);
    return text;
}

std::string Json::indented(std::size_t level) const
{
    std::string text;
    append(text, level, true);
    return text;
}

void Json::append(std::string &text, std::size_t level, bool inLines) const
{
    if (kind_ == Kind::string)
        text += jsonString(text_);
    else if (kind_ == Kind::literal)
        text += text_;
    else
    {
        text += kind_ == Kind::object ? '{' : '[';
        appendElements(text, level, inLines);
        text += kind_ == Kind::object ? '}' : ']';
    }
}

void Json::appendElements(std::string &text, std::size_t level, bool inLines) const
{
    for (std::size_t index = 0; index < elements_.size(); ++index)
    {
        if (index > 0)
            text += inLines ? "," : ", ";
        if (inLines)
            appendLineStart(text, level + 1);
        if (kind_ == Kind::object)
            text += jsonString(names_[index]) + ": ";
        elements_[index].append(text, level + 1, inLines);
    }
    if (inLines && !elements_.empty())
        appendLineStart(text, level);
}

std::string jsonText(const Json &tree)
{
    return tree.indented() + "\n";
}

JsonArrayOutput::~JsonArrayOutput()
{
    std::fputs(any_ ? "\n]\n" : "[]\n", stdout);
}

void JsonArrayOutput::add(const Json &element)
{
    std::fputs(any_ ? ",\n  " : "[\n  ", stdout);
    std::fputs(element.indented(1).c_str(), stdout);
    any_ = true;
}

}   // namespace host
