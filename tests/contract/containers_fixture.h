// What the tests of walking, listing and deleting share: the lines of the calls on iterators, and a measure of the stack.

#pragma once

#include "files/fstoolkit.h"
#include "tests/contract/platform_double.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

constexpr OSErr someCode = -12345;   // no code that anything here knows

class ContainersTest : public testing::Test
{
protected:
    FileObject &add(const std::string &label, const std::string &parent, bool isFolder)
    {
        return platform.files.add(label, &platform.files.object(parent), isFolder);
    }

    FSCatalogInfo &infoOf(const std::string &label) { return platform.files.object(label).info; }

    bool exists(const std::string &label)
    {
        return std::any_of(platform.files.objects.begin(), platform.files.objects.end(),
                           [&label](const FileObject &each) { return each.label == label; });
    }

    std::size_t openIterators() { return platform.iterators.openIterators.size(); }

    // A folder "level 1" in "nested", a folder "level 2" in that, and so on.
    void addLevels(int count)
    {
        std::string parent = "nested";
        for (int level = 1; level <= count; ++level)
        {
            const std::string label = "level " + std::to_string(level);
            add(label, parent, true);
            parent = label;
        }
    }

    // The most of the stack that any level took, in bytes.
    std::uintptr_t stackOfALevel()
    {
        const std::vector<std::uintptr_t> &stack = platform.iterators.stackAtOpening;
        std::uintptr_t most = 0;
        for (std::size_t level = 1; level < stack.size(); ++level)
            most = std::max(most, stack[level - 1] - stack[level]);
        return most;
    }

    // 10,000 levels have to fit into a stack of 8 MiB, with room for the caller.
    static constexpr std::uintptr_t allowedStackOfALevel = 700;

    PlatformDouble platform;
};
