// zerb dialog: shows a dialog with icon buttons and tells what is clicked.
#include "host/commands.h"

#include "host/commands/shown_dialog.h"
#include "host/objects.h"
#include "host/text.h"

#include "standin/screen.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <limits>
#include <memory>
#include <sstream>

namespace host
{

namespace
{

struct Options
{
    std::string file, script;
    DialogRequest request;
};

std::string sampleFile()
{
    const std::filesystem::path folder = std::filesystem::read_symlink("/proc/self/exe").parent_path(),
                                beside = folder / "sample_dialog.rsrc";
    return std::filesystem::exists(beside) ? beside : (folder / "../share/zerb/sample_dialog.rsrc").lexically_normal();
}

// The resource file is the current one as long as this lives, so that labels of buttons are looked for there first.
class OpenResources
{
public:
    explicit OpenResources(SInt16 number) : number_(number) { UseResFile(number); }
    ~OpenResources() { CloseResFile(number_); }
    OpenResources(const OpenResources &) = delete;
    OpenResources &operator=(const OpenResources &) = delete;

private:
    SInt16 number_;
};

bool useScript(Invocation &invocation, const std::string &path)
{
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    if (!file || !(text << file.rdbuf()))
        return invocation.report.problem(path, errno != 0 ? std::strerror(errno) : "there is nothing in it"), false;
    const std::string problem = standin::useScriptedScreen(text.str());
    if (!problem.empty())
        invocation.report.problem(path, problem);
    return problem.empty();
}

bool hasSomebodyToAnswer(Invocation &invocation, const Options &options)
{
    if (!options.script.empty())
        return useScript(invocation, options.script);
    const std::string problem = standin::inputProblem();
    if (!problem.empty())
        invocation.report.problem("dialog", "nobody could answer: " + printable(problem) + "; --script does without a display");
    return problem.empty();
}

// The sample lies beside the program, where a startup volume that is a folder need not reach.
bool isSampleOutOfReach(const std::string &file)
{
    return file == sampleFile() && std::filesystem::exists(file);
}

void show(Invocation &invocation, const Options &options)
{
    FSRef ref;
    OSStatus result = findObject(options.file, Links::follow, ref);
    if (result != noErr && isSampleOutOfReach(options.file))
        return invocation.report.problem(options.file, "the sample does not lie on the startup volume: do without ZERB_STARTUP_VOLUME, "
                                                       "or name a FILE that does");
    if (result != noErr)
        return invocation.report.failure(options.file, result);
    const SInt16 number = FSOpenResFile(&ref, fsRdPerm);
    if (ResError() != noErr)
        return invocation.report.failure(options.file, ResError(), "opening its resources");
    const OpenResources open(number);
    if (hasSomebodyToAnswer(invocation, options))
        runDialog(invocation, options.file, options.request);
}

Action declareDialog(Arguments &arguments)
{
    auto options = std::make_shared<Options>();
    options->file = sampleFile();
    arguments.optionalPath("FILE", options->file, "a resource file; none: the sample that comes with this program");
    arguments.number("--dialog", "ID", options->request.id, std::numeric_limits<SInt16>::max(), "the dialog's ID; 128 if not given");
    arguments.text(
        "--script", "FILE", [options](const std::string &typed) { options->script = typed; },
        "follow this script of mouse and keys on a screen without a display");
    arguments.text(
        "--screenshot", "FILE", [options](const std::string &typed) { options->request.picture = typed; },
        "save what the dialog shows when it ends, as PNG, in the place of a file that is there");
    arguments.json(options->request.json, "one object a line for each thing that happens");
    return [options](Invocation &invocation) { show(invocation, *options); };
}

}   // namespace

const Command dialogCommand = {
    "dialog",
    "Show a dialog with icon buttons and pop-up menus, and tell what is clicked",
    "Each click is told in a line. Holding a button that has a menu opens it. The dialog ends with its first item, with\n"
    "Return or Escape, or with its close box.\n"
    "Which items are icon buttons stands in the rows of the resource 'STR#' that has the dialog's ID:\n"
    "    ITEM button ICON [label 0|1|2] [menu ID] [checked ITEM] [delay TICKS] [clear] [alert ID] [number NUMBER]\n"
    "    ITEM small ICON [menu ID] [checked ITEM] [alert ID] [number NUMBER]\n"
    "A script has a line for each thing that a person would do, beginning with the time in sixtieths of a second:\n"
    "    60 mouse 400 300     90 down     150 up     200 key return     240 close     250 picture screen.png\n",
    "  zerb dialog\n"
    "  zerb dialog --json Dialog.rsrc --dialog 200\n"
    "  zerb dialog --script clicks.txt --screenshot dialog.png\n",
    declareDialog,
};

}   // namespace host
