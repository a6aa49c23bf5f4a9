// What a process leaves that is killed while it saves.

#include "FolderContent.h"
#include "ForkedWork.h"
#include "SavedKinds.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <iostream>
#include <random>

namespace orvex {
namespace {

using test::FoundStates;
using test::SavedKind;

constexpr int killsInOneFolder = 20; // what only grows would soon be slow

int numberFrom(const char* variable, int otherwise) {
    bool isNumber = false;
    const int number = qEnvironmentVariableIntValue(variable, &isNumber);
    return isNumber ? number : otherwise;
}

struct Tally {
    int kills = 0;
    int torn = 0;
    int leftovers = 0;
    int leftoversAfterTheNextSave = 0;
};

class Kills : public ::testing::TestWithParam<SavedKind> {
protected:
    /// Saves one state after the other until it is killed at some moment; gives the last that was reported as saved.
    int saveUntilKilled(const QString& folder, int first) {
        test::ForkedWork saver([&](const auto& report) {
            const auto save = GetParam().open(folder);
            for (int number = first;; ++number) {
                save(number);
                report(number);
            }
        });
        ::usleep(std::uniform_int_distribution<useconds_t>(0, longestMicroseconds)(random_));
        saver.kill();
        const test::Outcome outcome = saver.wait();
        EXPECT_EQ(outcome.signal, SIGKILL) << outcome.message.constData();
        return outcome.reports.empty() ? first - 1 : outcome.reports.back();
    }

    /// The newest state, which must be the last that was saved, or else the one after it.
    int newestAfterKill(const QString& folder, int last) {
        try {
            const FoundStates found = GetParam().find(folder);
            EXPECT_TRUE(found.newest == last || found.newest == last + 1) << found.newest << " after " << last;
            EXPECT_TRUE(!GetParam().keepsAll || found.count == found.newest) << found.count << " of " << found.newest;
            return found.newest;
        } catch (const std::exception& error) {
            tally_.torn += 1;
            ADD_FAILURE() << "kill " << tally_.kills << ": " << error.what();
            return last + 1;
        }
    }

    /// One kill and the save that follows it; gives the state then.
    int killAndSave(const QString& folder, int before) {
        tally_.kills += 1;
        const int newest = newestAfterKill(folder, saveUntilKilled(folder, before + 1));
        const auto leftovers = static_cast<int>(test::temporariesIn(folder).size());
        EXPECT_LE(leftovers, 1);
        tally_.leftovers += leftovers;
        test::save(GetParam(), folder, newest + 1);
        EXPECT_EQ(test::temporariesIn(folder), QStringList());
        tally_.leftoversAfterTheNextSave += static_cast<int>(test::temporariesIn(folder).size());
        EXPECT_EQ(GetParam().find(folder).newest, newest + 1);
        return newest + 1;
    }

    static constexpr useconds_t longestMicroseconds = 25'000;

    const unsigned seed_ =
        static_cast<unsigned>(numberFrom("ORVEX_SEED", static_cast<int>(std::random_device()() >> 1U)));
    std::mt19937 random_{seed_};
    Tally tally_;
};

TEST_P(Kills, leaveWholeFilesAndTheNextSaveClearsUp) {
    SCOPED_TRACE("ORVEX_SEED=" + std::to_string(seed_));
    const int kills = numberFrom("ORVEX_KILLS", 30);
    while (tally_.kills < kills) {
        const test::TemporaryFolder root;
        int number = 0;
        for (int kill = 0; kill < killsInOneFolder && tally_.kills < kills; ++kill) {
            number = killAndSave(root.path(QStringLiteral("store")), number);
        }
    }
    std::cout << GetParam().name << ": " << tally_.kills << " kills, " << tally_.torn << " torn, " << tally_.leftovers
              << " leftovers, " << tally_.leftoversAfterTheNextSave << " after the next save\n";
}

INSTANTIATE_TEST_SUITE_P(Kinds, Kills, ::testing::ValuesIn(test::savedKinds()),
                         [](const auto& kind) { return std::string(kind.param.name); });

} // namespace
} // namespace orvex
