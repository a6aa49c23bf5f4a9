#include "InspectionCommand.h"

#include "PrintFixtures.h"

#include <gtest/gtest.h>

#include <type_traits>

namespace orvex {

namespace {

using test::text;

constexpr auto statusTool = "/usr/bin/lpstat";
constexpr auto optionsTool = "/usr/bin/lpoptions";

} // namespace

// No command can be expressed but those that the class hands out.
static_assert(!std::is_default_constructible_v<InspectionCommand>);
static_assert(!std::is_constructible_v<InspectionCommand, QByteArray>);
static_assert(!std::is_constructible_v<InspectionCommand, QByteArray, QStringList>);
static_assert(!std::is_aggregate_v<InspectionCommand>);

TEST(InspectionCommand, AsksForTheStatusOfAllQueues) {
    EXPECT_EQ(InspectionCommand::printerStatuses().executable(), statusTool);
    EXPECT_EQ(InspectionCommand::printerStatuses().arguments(), QStringList{text("-p")});
}

TEST(InspectionCommand, AsksForTheDevicesOfAllQueues) {
    EXPECT_EQ(InspectionCommand::deviceURIs().executable(), statusTool);
    EXPECT_EQ(InspectionCommand::deviceURIs().arguments(), QStringList{text("-v")});
}

TEST(InspectionCommand, AsksForTheUnfinishedJobsOfAllQueues) {
    EXPECT_EQ(InspectionCommand::pendingJobs().executable(), statusTool);
    EXPECT_EQ(InspectionCommand::pendingJobs().arguments(),
              (QStringList{text("-W"), text("not-completed"), text("-o")}));
}

TEST(InspectionCommand, AsksForTheOptionsOfOneQueue) {
    EXPECT_EQ(InspectionCommand::driverOptions(text("W9400")).executable(), optionsTool);
    EXPECT_EQ(InspectionCommand::driverOptions(text("W9400")).arguments(),
              (QStringList{text("-p"), text("W9400"), text("-l")}));
}

TEST(InspectionCommand, PassesAnyQueueNameAsOneArgument) {
    for (const char* name : {"My \"big\" 'roll' printer", "a\tb\nc", "-o x; rm -rf \\ $HOME `id` | * ?", "卷纸 60",
                             "-l", "a=b", "%20", ""}) {
        SCOPED_TRACE(name);
        EXPECT_EQ(InspectionCommand::driverOptions(text(name)).arguments(),
                  (QStringList{text("-p"), text(name), text("-l")}));
    }
}

} // namespace orvex
