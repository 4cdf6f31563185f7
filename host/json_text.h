// JSON for programs to read: a tree is built and then written. Nothing here reads any.
//
// Strings are bytes of file names, which need not be UTF-8; they are written as jsonString of host/text.h does.
#pragma once

#include <concepts>
#include <cstddef>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

namespace host
{

class Json
{
public:
    Json(std::nullptr_t = nullptr) {}
    Json(const char *string) : Json(std::string(string)) {}
    Json(std::string string) : kind_(Kind::string), text_(std::move(string)) {}
    Json(double number);   // null if it is not finite

    // A truth value or a whole number.
    template <std::integral Value>
    Json(Value value) : text_(literal(value))
    {
    }

    // {{"name", value}, ...}, every element of two and beginning with a string, is an object; anything else is an array.
    Json(std::initializer_list<Json> elements);

    template <typename Element>
    Json(const std::vector<Element> &elements) : kind_(Kind::array), elements_(elements.begin(), elements.end())
    {
    }

    static Json array(std::initializer_list<Json> elements = {});
    static Json object();

    Json &operator[](const std::string &name);   // of an object; members stay in the order in which they were added
    void push_back(Json element);                // to an array

    bool isEmpty() const { return elements_.empty(); }

    // On one line.
    std::string compact() const;

    // Indented by two spaces a level, beginning at `level`, without an indent before it and without a line end behind it.
    std::string indented(std::size_t level = 0) const;

private:
    enum class Kind
    {
        literal,
        string,
        array,
        object
    };

    template <std::integral Value>
    static std::string literal(Value value)
    {
        if constexpr (std::same_as<Value, bool>)
            return value ? "true" : "false";
        else
            return std::to_string(value);
    }

    bool isMember() const;
    void append(std::string &text, std::size_t level, bool inLines) const;
    void appendElements(std::string &text, std::size_t level, bool inLines) const;

    Kind kind_ = Kind::literal;
    std::string text_ = "null";        // a literal as it is written, or a string's bytes
    std::vector<std::string> names_;   // of an object's members
    std::vector<Json> elements_;       // of an array or an object
};

// The tree indented, with a line end after it.
std::string jsonText(const Json &tree);

// A long array, written to standard output element by element. It ends with this object.
class JsonArrayOutput
{
public:
    JsonArrayOutput() = default;
    JsonArrayOutput(const JsonArrayOutput &) = delete;
    JsonArrayOutput &operator=(const JsonArrayOutput &) = delete;
    ~JsonArrayOutput();

    void add(const Json &element);

private:
    bool any_ = false;
};

}   // namespace host
