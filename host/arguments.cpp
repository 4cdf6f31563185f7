#include "host/arguments.h"

#include <algorithm>

namespace host
{

namespace
{

// CLI11 takes a word in brackets for a list and an empty `--option=` for one without a value. A byte that nobody types stands before such words while they
// pass through it.
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

}   // namespace

CLI::Option *addPaths(CLI::App &app, const std::string &name, std::vector<std::string> &paths, const std::string &description)
{
    auto keep = [&paths](const CLI::results_t &words) {
        std::transform(words.begin(), words.end(), std::back_inserter(paths), unshielded);
        return true;
    };
    return app.add_option(name, CLI::callback_t(keep), description)->required()->expected(1, -1)->allow_extra_args()->type_name("");
}

CLI::Option *addPath(CLI::App &app, const std::string &name, std::string &path, const std::string &description)
{
    return addText(
               app, name, "", [&path](const std::string &text) { path = text; }, description)
        ->required();
}

CLI::Option *addText(CLI::App &app, const std::string &name, const std::string &valueName, std::function<void(const std::string &)> read,
                     const std::string &description)
{
    auto readOnce = [name, read](const CLI::results_t &words) {
        try
        {
            read(unshielded(words.front()));
        }
        catch (const UsageError &error)
        {
            throw CLI::ValidationError(name, error.what());
        }
        return true;
    };
    return app.add_option(name, CLI::callback_t(readOnce), description)->expected(1)->type_name(valueName);
}

void addLinksOption(CLI::App &app, Links &links)
{
    app.add_flag_callback(
        "-P,--no-follow", [&links] { links = Links::showThemselves; }, "take a symbolic link itself, not what it leads to");
}

void parseWords(CLI::App &app, const std::vector<std::string> &words)
{
    std::vector<std::string> shielded = shieldedWords(words);
    std::reverse(shielded.begin(), shielded.end());   // CLI11 takes them from the back
    app.parse(shielded);
}

}   // namespace host
