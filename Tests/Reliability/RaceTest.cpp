// Several processes that save the same file at the same time.

#include "FolderContent.h"
#include "ForkedWork.h"
#include "SavedKinds.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <memory>

namespace orvex {
namespace {

using test::ForkedWork;
using test::SavedKind;
using Clock = std::chrono::steady_clock;

/// Longer where a minute is to be spent on it.
std::chrono::milliseconds duration() {
    bool isNumber = false;
    const int seconds = qEnvironmentVariableIntValue("ORVEX_RACE_SECONDS", &isNumber);
    return isNumber ? std::chrono::seconds(seconds) : std::chrono::milliseconds(1000);
}

class Races : public ::testing::TestWithParam<std::tuple<SavedKind, int>> {
protected:
    static constexpr int numbersOfEach = 100'000;

    std::unique_ptr<ForkedWork> startSaver(int index) const {
        return std::make_unique<ForkedWork>([this, index](const ForkedWork::Report& report) {
            const auto save = kind().open(folder_);
            const auto end = Clock::now() + duration();
            int number = index * numbersOfEach;
            while (Clock::now() < end) {
                save(++number);
            }
            report(number % numbersOfEach);
        });
    }

    static const SavedKind& kind() { return std::get<0>(GetParam()); }

    const test::TemporaryFolder root_;
    const QString folder_ = root_.path(QStringLiteral("store"));
};

TEST_P(Races, neverFailAndTheFileIsAlwaysWhole) {
    std::vector<std::unique_ptr<ForkedWork>> savers;
    for (int index = 0; index < std::get<1>(GetParam()); ++index) {
        savers.push_back(startSaver(index));
    }
    const auto end = Clock::now() + duration();
    while (Clock::now() < end) {
        EXPECT_NO_THROW(static_cast<void>(kind().find(folder_)));
    }
    for (const auto& saver : savers) {
        const test::Outcome outcome = saver->wait();
        EXPECT_EQ(outcome.status, 0) << outcome.message.constData();
        ASSERT_EQ(outcome.reports.size(), 1U);
        EXPECT_GT(outcome.reports[0], 1) << "there was no race";
    }
    EXPECT_EQ(test::temporariesIn(folder_), QStringList());
    test::save(kind(), folder_, 1);
    EXPECT_NO_THROW(static_cast<void>(kind().find(folder_)));
}

INSTANTIATE_TEST_SUITE_P(Kinds, Races,
                         ::testing::Combine(::testing::ValuesIn(test::savedKinds()), ::testing::Values(2, 4)),
                         [](const auto& race) {
                             return std::string(std::get<0>(race.param).name) + "Of" +
                                    std::to_string(std::get<1>(race.param));
                         });

} // namespace
} // namespace orvex
