// What a command takes from its command line.
//
// Every byte string comes through as it was typed, whatever it looks like. The parser behind this is known to arguments.cpp alone.
#pragma once

#include "host/argument_list.h"
#include "host/numbers.h"
#include "host/objects.h"
#include "host/progress.h"
#include "host/usage_error.h"

#include <deque>
#include <functional>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace CLI
{
class App;
class Option;
}   // namespace CLI

namespace host
{

// Names of options are written as "-l,--long". Variables that are named here have to live until the command line has been read.
// An option with a value may be given once; a flag any number of times.
class Arguments
{
public:
    // One thing that a command takes. Copies mean the same one; they are good as long as the Arguments are.
    class Item
    {
    public:
        explicit Item(CLI::Option *option) : option_(option) {}

        Item require() const;                     // without it the command line is refused
        Item excludes(const Item &other) const;   // both together are refused
        Item needs(const Item &other) const;      // without the other it is refused

    private:
        CLI::Option *option_;
    };

    using Reader = std::function<void(const std::string &)>;

    // `name` is what a person types: "zerb info".
    Arguments(const std::string &name, const Explanation &explanation);
    ~Arguments();
    Arguments(const Arguments &) = delete;
    Arguments &operator=(const Arguments &) = delete;

    // Words that are no options: exactly one, one or none, one or more, any number. They are taken in the order of these calls.
    // The list of paths may be any list of words; its name says what they are.
    Item path(const std::string &name, std::string &path, const std::string &description);
    Item optionalPath(const std::string &name, std::string &path, const std::string &description);
    Item paths(const std::string &name, std::vector<std::string> &paths, const std::string &description);
    Item optionalPaths(const std::string &name, std::vector<std::string> &paths, const std::string &description);

    Item flag(const std::string &names, bool &given, const std::string &description);
    Item flag(const std::string &names, const std::function<void()> &act, const std::string &description);

    // An option with a value, which `read` looks at. A UsageError that it throws is reported with the option's name.
    Item text(const std::string &names, const std::string &valueName, const Reader &read, const std::string &description);

    // A decimal number from 0 to `largest`, or a hexadecimal one after 0x. Number is a type for numbers, or an optional of one.
    template <typename Number>
    Item number(const std::string &names, const std::string &valueName, Number &number, UInt32 largest, const std::string &description)
    {
        auto read = [&number, largest](const std::string &typed) { number = static_cast<Number>(numberFromText(typed, largest)); };
        return text(names, valueName, read, description);
    }

    // One of some words, each with what it stands for.
    template <typename Value>
    Item choice(const std::string &names, Value &value, std::initializer_list<std::pair<const char *, Value>> meanings,
                const std::string &description)
    {
        std::vector<std::pair<const char *, Value>> table = meanings;
        std::vector<std::string> words;
        for (const auto &[word, meaning] : table)
            words.emplace_back(word);
        auto read = [&value, table, words](const std::string &typed) { value = table[indexOfWord(words, typed)].second; };
        return text(names, joined(words, "|"), read, description);
    }

    // --json
    Item json(bool &wanted, const std::string &description = "one array with one object per path; \"error\" in it tells of a failure");

    // -P, --no-follow
    Item links(Links &links);

    // --progress, -q, --quiet
    void progress(ProgressWish &wish);

    // A command of its own below this one; with any, one of them has to be chosen. The part is good as long as the whole.
    Arguments &part(const std::string &name, const Explanation &explanation);
    bool isChosen() const;   // after reading: whether the command line names this part

    // Looks at everything together, once all else is read and in order. A UsageError that it throws refuses the command line.
    void finalCheck(const std::function<void()> &check);

    // Reads the words after the command's name. Result: the help text if that was asked for; then nothing else counts.
    // Throws UsageError with what is wrong.
    std::optional<std::string> read(const std::vector<std::string> &words);

    // All that is declared here, for manuals and for shells.
    ArgumentList list() const;

private:
    Arguments(CLI::App *part, const Explanation &explanation);
    bool lacksPart() const;   // after reading
    std::string complaintAboutPart(const std::vector<std::string> &words) const;
    ArgumentList list(const std::string &name) const;

    static std::size_t indexOfWord(const std::vector<std::string> &words, const std::string &typed);   // throws UsageError
    static std::string joined(const std::vector<std::string> &words, const char *separator);

    std::unique_ptr<CLI::App> own_;   // null in a part
    CLI::App *app_;
    Explanation explanation_;
    std::deque<std::unique_ptr<Arguments>> parts_;
};

}   // namespace host
