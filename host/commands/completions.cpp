// zerb completions: the scripts by which shells complete this program's commands and options.
#include "host/commands.h"

#include "host/completions.h"

#include <cstdio>
#include <memory>

namespace host
{

namespace
{

using Writer = std::string (*)(const std::vector<ArgumentList> &);

Action declareCompletions(Arguments &arguments)
{
    auto write = std::make_shared<Writer>(nullptr);
    auto read = [write](const std::string &shell) {
        if (shell != "bash" && shell != "fish" && shell != "zsh")
            throw UsageError("\"" + shell + "\" is none of bash, fish, zsh");
        *write = shell == "bash" ? bashCompletions : shell == "fish" ? fishCompletions : zshCompletions;
    };
    arguments.text("SHELL", "", read, "bash, fish or zsh").require();
    return [write](Invocation &) { std::fputs((*write)(allArgumentLists()).c_str(), stdout); };
}

}   // namespace

const Command completionsCommand = {
    "completions",
    "Write the script by which a shell completes commands and options",
    "An installed zerb has them where the shells look.\n",
    "  source <(zerb completions bash)\n"
    "  zerb completions zsh > ~/.zfunc/_zerb\n"
    "  zerb completions fish > ~/.config/fish/completions/zerb.fish\n",
    declareCompletions,
    false,
};

}   // namespace host
