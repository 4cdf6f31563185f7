// One kind of change on one disk, made again and again in scenes of its own: what is shown before it, after it and where it may stop.
#pragma once

#include "tests/standin/faults_changes.h"
#include "tests/standin/faults_scene.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace support
{

using ChangeRow = std::tuple<DiskKind, const Change *>;

class ChangeInRounds : public DiskRowTest<ChangeRow>
{
protected:
    void SetUp() override
    {
        DiskRowTest::SetUp();
        if (IsSkipped())
            return;
        if (change().isExchange && !offersExchange(refAt(folder().path())))
            GTEST_SKIP() << "files are not exchanged on this disk";
        before_ = pictureAfter([](const std::string &) {});
        after_ = pictureAfter([this](const std::string &directory) {
            Scene scene = sceneIn(directory);
            EXPECT_EQ(change().run(scene), change().expected);
        });
        for (const Stop &stop : change().stops)
            stops_.push_back({stop.when, pictureAfter(stop.step)});
    }

    const Change &change() const { return *std::get<1>(GetParam()); }

    // Its place among all changes.
    std::size_t number() const { return static_cast<std::size_t>(&change() - everyChange().data()); }

    std::string makeScene()
    {
        std::string directory = folder() / std::to_string(++rounds_);
        makeUsualScene(directory);
        if (change().prepare)
            change().prepare(directory);
        return directory;
    }

    bool isDone(const FolderState &now) const
    {
        return now == after_ || std::any_of(stops_.begin(), stops_.end(),
                                            [&](const auto &stop) { return stop.first == WhenStopped::done && now == stop.second; });
    }

    // `cutOff` says that the change could do nothing any more after it was stopped.
    bool mayHaveStopped(const FolderState &now, bool cutOff) const
    {
        bool isStop = std::any_of(stops_.begin(), stops_.end(), [&](const auto &stop) {
            bool counts = cutOff || stop.first != WhenStopped::cutOff;
            return counts && (now == stop.second || (change().itemByItem && isMixture(now, stop.second, after_)));
        });
        return isStop || now == before_ || now == after_ || (change().itemByItem && isMixture(now, before_, after_));
    }

    std::string differences(const FolderState &now) const
    {
        return "\nfrom before:" + difference(before_, now) + "\nfrom after:" + difference(after_, now);
    }

private:
    template <typename Step>
    FolderState pictureAfter(Step step)
    {
        std::string directory = makeScene();
        step(directory);
        FolderState state = shown(directory);
        removeTree(directory);
        return state;
    }

    FolderState before_, after_;
    std::vector<std::pair<WhenStopped, FolderState>> stops_;
    int rounds_ = 0;
};

inline std::string changeName(const testing::TestParamInfo<ChangeRow> &row)
{
    return std::string(std::get<1>(row.param)->name) + "On" + nameOfKind(std::get<0>(row.param));
}

// On a disk with attributes and on one without.
#define EVERY_CHANGE_ON_TWO_DISKS(suite)                                                                           \
    INSTANTIATE_TEST_SUITE_P(TwoDisks, suite,                                                                      \
                             testing::Combine(testing::Values(support::DiskKind::tmpfs, support::DiskKind::ramfs), \
                                              testing::ValuesIn(support::pointersToChanges())),                    \
                             support::changeName)

}   // namespace support
