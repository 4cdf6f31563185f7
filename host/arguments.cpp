#include "host/arguments.h"

#include <CLI/CLI.hpp>

#include <algorithm>

namespace host
{

namespace
{

// CLI11 takes a word in brackets for a list and an empty `--option=` for one without a value. A byte that nobody types stands before such
// words while they pass through it.
constexpr char shield = '\x01';

bool needsShield(const std::string &word)
{
    return !word.empty() && (word[0] == '[' || word[0] == shield);
}

std::vector<std::string> shieldedWords(const std::vector<std::string> &words)
{
    std::vector<std::string> shielded;
    bool optionsMayCome = true;
    for (const std::string &word : words)
    {
        bool isEmptyOption = optionsMayCome && word.starts_with("--") && word.find('=') == word.size() - 1;
        shielded.push_back(needsShield(word) ? shield + word : isEmptyOption ? word + shield : word);
        optionsMayCome = optionsMayCome && word != "--";
    }
    return shielded;
}

std::string unshielded(const std::string &word)
{
    return !word.empty() && word[0] == shield ? word.substr(1) : word;
}

std::string footerOf(const Explanation &explanation)
{
    return std::string(explanation.description) + "\nExamples:\n" + explanation.examples;
}

// What `act` complains of, with the name of the option that it belongs to.
void namingOption(const std::string &names, const std::function<void()> &act)
{
    try
    {
        act();
    }
    catch (const UsageError &error)
    {
        throw UsageError(names + ": " + error.what());
    }
}

// CLI11's own reading of lists would take names such as {} and [a,b] apart.
CLI::Option *addList(CLI::App &app, const std::string &name, std::vector<std::string> &list, const std::string &description)
{
    auto keep = [&list](const CLI::results_t &words) {
        std::transform(words.begin(), words.end(), std::back_inserter(list), unshielded);
        return true;
    };
    return app.add_option(name, CLI::callback_t(keep), description)->expected(1, -1)->allow_extra_args()->type_name("");
}

std::vector<std::string> namesOf(const CLI::Option &option)
{
    std::vector<std::string> names;
    for (const std::string &name : option.get_snames())
        names.push_back("-" + name);
    for (const std::string &name : option.get_lnames())
        names.push_back("--" + name);
    return names;
}

Argument described(const CLI::Option &option)
{
    Argument argument;
    argument.names = namesOf(option);
    argument.description = option.get_description();
    argument.isRequired = option.get_required();
    argument.isList = option.get_expected_max() > 1;
    if (argument.names.empty())
        argument.value = option.get_name();
    else if (option.get_items_expected_max() > 0)
        argument.value = option.get_type_name();
    return argument;
}

}   // namespace

Arguments::Item Arguments::Item::require() const
{
    option_->required();
    return *this;
}

Arguments::Item Arguments::Item::excludes(const Item &other) const
{
    option_->excludes(other.option_);
    return *this;
}

Arguments::Item Arguments::Item::needs(const Item &other) const
{
    option_->needs(other.option_);
    return *this;
}

Arguments::Arguments(const std::string &name, const Explanation &explanation)
    : own_(std::make_unique<CLI::App>(explanation.summary, name)), app_(own_.get()), explanation_(explanation)
{
    app_->footer(footerOf(explanation));
    app_->get_formatter()->label("REQUIRED", "");
    app_->get_formatter()->column_width(28);
}

Arguments::Arguments(CLI::App *part, const Explanation &explanation) : app_(part), explanation_(explanation) {}

Arguments::~Arguments() = default;

Arguments::Item Arguments::path(const std::string &name, std::string &path, const std::string &description)
{
    return optionalPath(name, path, description).require();
}

Arguments::Item Arguments::optionalPath(const std::string &name, std::string &path, const std::string &description)
{
    return text(
        name, "", [&path](const std::string &typed) { path = typed; }, description);
}

Arguments::Item Arguments::paths(const std::string &name, std::vector<std::string> &paths, const std::string &description)
{
    return optionalPaths(name, paths, description).require();
}

Arguments::Item Arguments::optionalPaths(const std::string &name, std::vector<std::string> &paths, const std::string &description)
{
    return Item(addList(*app_, name, paths, description));
}

Arguments::Item Arguments::flag(const std::string &names, bool &given, const std::string &description)
{
    return Item(app_->add_flag(names, given, description));
}

Arguments::Item Arguments::flag(const std::string &names, const std::function<void()> &act, const std::string &description)
{
    auto report = [names, act] { namingOption(names, act); };
    return Item(app_->add_flag_callback(names, report, description));
}

Arguments::Item Arguments::text(const std::string &names, const std::string &valueName, const Reader &read, const std::string &description)
{
    auto readOnce = [names, read](const CLI::results_t &words) {
        namingOption(names, [&] { read(unshielded(words.front())); });
        return true;
    };
    return Item(app_->add_option(names, CLI::callback_t(readOnce), description)->expected(1)->type_name(valueName));
}

Arguments::Item Arguments::json(bool &wanted, const std::string &description)
{
    return flag("--json", wanted, description);
}

Arguments::Item Arguments::links(Links &links)
{
    return flag(
        "-P,--no-follow", [&links] { links = Links::showThemselves; }, "take a symbolic link itself, not what it leads to");
}

void Arguments::progress(ProgressWish &wish)
{
    Item lines = flag("--progress", wish.lines, "tell how far it is in plain lines, as for a log");
    flag("-q,--quiet", wish.quiet, "do not tell how far it is").excludes(lines);
}

Arguments &Arguments::part(const std::string &name, const Explanation &explanation)
{
    app_->require_subcommand(1);
    CLI::App *app = app_->add_subcommand(name, explanation.summary);
    app->footer(footerOf(explanation));
    parts_.emplace_back(new Arguments(app, explanation));
    return *parts_.back();
}

bool Arguments::isChosen() const
{
    return app_->parsed();
}

void Arguments::finalCheck(const std::function<void()> &check)
{
    app_->final_callback(check);
}

std::optional<std::string> Arguments::read(const std::vector<std::string> &words)
{
    std::vector<std::string> shielded = shieldedWords(words);
    std::reverse(shielded.begin(), shielded.end());   // CLI11 takes them from the back
    try
    {
        app_->parse(shielded);
    }
    catch (const CLI::CallForHelp &)
    {
        return app_->help();
    }
    catch (const CLI::ParseError &error)
    {
        throw UsageError(lacksPart() ? complaintAboutPart(words) : error.what());
    }
    return std::nullopt;
}

bool Arguments::lacksPart() const
{
    return !parts_.empty() && std::none_of(parts_.begin(), parts_.end(), [](const auto &part) { return part->isChosen(); });
}

std::string Arguments::complaintAboutPart(const std::vector<std::string> &words) const
{
    std::vector<std::string> names;
    for (const auto &part : parts_)
        names.push_back(part->app_->get_name());
    const bool hasWord = !words.empty() && !words.front().starts_with("-");
    return (hasWord ? "there is no part \"" + words.front() + "\"; it" : std::string("a part is missing; it")) + " has " +
           joined(names, ", ");
}

ArgumentList Arguments::list() const
{
    return list(app_->get_name());
}

ArgumentList Arguments::list(const std::string &name) const
{
    ArgumentList all{name, explanation_, {}, {}};
    for (const CLI::Option *option : app_->get_options())
        all.arguments.push_back(described(*option));
    for (const auto &part : parts_)
        all.parts.push_back(part->list(name + " " + part->app_->get_name()));
    return all;
}

std::size_t Arguments::indexOfWord(const std::vector<std::string> &words, const std::string &typed)
{
    auto found = std::find(words.begin(), words.end(), typed);
    if (found == words.end())
        throw UsageError("\"" + typed + "\" is none of " + joined(words, ", "));
    return static_cast<std::size_t>(found - words.begin());
}

std::string Arguments::joined(const std::vector<std::string> &words, const char *separator)
{
    std::string all;
    for (const std::string &word : words)
        all += (all.empty() ? "" : separator) + word;
    return all;
}

}   // namespace host
