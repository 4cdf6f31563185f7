#include "standin/drawing/loaded_module.h"

#include "standin/modules.h"

namespace standin
{

namespace
{

struct Loaded
{
    const DrawingModule *module = nullptr;
    std::string problem;
};

Loaded load()
{
    void *function = moduleFunction(drawingModuleFile, drawingModuleFunction);
    if (function == nullptr)
        return {nullptr, "the part that draws text and saves pictures cannot be loaded: " + moduleProblem()};
    return {reinterpret_cast<DrawingModuleFunction *>(function)(), {}};
}

const Loaded &loaded()
{
    static const Loaded &once = *new Loaded(load());   // stays until the process ends, as what it points to does
    return once;
}

}   // namespace

const DrawingModule *loadedModule()
{
    return loaded().module;
}

const std::string &loadedModuleProblem()
{
    return loaded().problem;
}

}   // namespace standin
