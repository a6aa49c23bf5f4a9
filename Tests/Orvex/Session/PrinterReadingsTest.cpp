#include "PrinterReadings.h"

#include "PrinterFixtures.h"

#include <gtest/gtest.h>

#include <limits>
#include <ostream>

namespace orvex {
namespace {

using test::printer;

const QString queue = QStringLiteral("W9400");

PrinterReadings selecting(const QString& name) {
    PrinterReadings readings;
    readings.selectedPrinterName = name;
    return readings;
}

/// What is selected after a pass that found these queues.
QString selectedAmong(const QStringList& names, const QString& before) {
    QList<PrinterSnapshot> printers;
    for (const QString& name : names) {
        printers.append(printer(name));
    }
    PrinterReadings readings = selecting(before);
    const bool isLost = readings.takePrinters(printers);
    EXPECT_EQ(isLost, !names.contains(before));
    EXPECT_EQ(readings.printers, printers);
    return readings.selectedPrinterName;
}

// The selection

TEST(PrinterReadings, SelectNothingAtFirst) {
    EXPECT_EQ(PrinterReadings().selectedPrinter(), std::nullopt);
    EXPECT_EQ(PrinterReadings().qualityChoices(), QStringList());
}

TEST(PrinterReadings, TellTheSelectedPrinterByItsExactName) {
    PrinterReadings readings = selecting(queue);
    readings.printers = {printer(QStringLiteral("w9400")), printer(queue)};
    EXPECT_EQ(readings.selectedPrinter(), printer(queue));
    readings.selectedPrinterName = QStringLiteral("W94");
    EXPECT_EQ(readings.selectedPrinter(), std::nullopt);
}

TEST(PrinterReadings, OfferTheChoicesOfTheResolutionAndOfNoOtherOption) {
    PrinterReadings readings = selecting(queue);
    readings.printers = {printer(queue)};
    EXPECT_EQ(readings.qualityChoices(), QStringList({QStringLiteral("600dpi"), QStringLiteral("1200dpi")}));
    readings.printers[0].options[1].keyword = QStringLiteral("resolution");
    EXPECT_EQ(readings.qualityChoices(), QStringList());
}

TEST(PrinterReadings, KeepASelectionThatIsStillThere) {
    EXPECT_EQ(selectedAmong({QStringLiteral("iPF9400"), QStringLiteral("Other")}, QStringLiteral("Other")),
              QStringLiteral("Other"));
}

TEST(PrinterReadings, SelectTheFirstQueueWithTheWidePrintersNumber) {
    EXPECT_EQ(selectedAmong({QStringLiteral("A"), QStringLiteral("Canon_iPF9400_b"), QStringLiteral("W9400")}, {}),
              QStringLiteral("Canon_iPF9400_b"));
    EXPECT_EQ(selectedAmong({QStringLiteral("A"), queue}, QStringLiteral("gone")), queue);
}

TEST(PrinterReadings, SelectTheFirstQueueWithoutSuchANumber) {
    EXPECT_EQ(selectedAmong({QStringLiteral("W940"), QStringLiteral("W94-00")}, {}), QStringLiteral("W940"));
}

TEST(PrinterReadings, SelectNothingAmongNothing) {
    EXPECT_EQ(selectedAmong({}, QStringLiteral("gone")), QString());
    EXPECT_EQ(selectedAmong({}, {}), QString());
}

TEST(PrinterReadings, ForgetTheLastFailureWithANewList) {
    PrinterReadings readings = selecting(queue);
    readings.lastRefreshError = QStringLiteral("down");
    readings.telemetryError = QStringLiteral("unknown");
    readings.paperGeometry.insert(QStringLiteral("A4"), Size{595.0, 842.0});
    EXPECT_FALSE(readings.takePrinters({printer(queue)}));
    EXPECT_EQ(readings.lastRefreshError, std::nullopt);
    EXPECT_EQ(readings.telemetryError, QStringLiteral("unknown"));
    EXPECT_EQ(readings.paperGeometry.size(), 1);
}

// The last state of the queue

struct Age {
    const char* name;
    double secondsSince2001;
    bool isKnown;
};

void PrintTo(const Age& row, std::ostream* out) {
    *out << row.name;
}

class CachedReadiness : public ::testing::TestWithParam<Age> {};

TEST_P(CachedReadiness, IsThatOfAStateNoMoreThan45SecondsAway) {
    PrinterReadings readings = selecting(queue);
    readings.telemetry = test::readyState(queue, GetParam().secondsSince2001);
    const auto readiness = readings.cachedNativePrintReadiness({1000.0});
    EXPECT_EQ(readiness.has_value(), GetParam().isKnown);
    if (readiness) {
        EXPECT_EQ(readiness->state, NativePrintReadinessState::ready);
    }
}

INSTANTIATE_TEST_SUITE_P(PrinterReadings, CachedReadiness,
                         ::testing::Values(Age{"OfThisMoment", 1000.0, true}, Age{"JustYoungEnough", 955.0, true},
                                           Age{"JustTooOld", 954.875, false}, Age{"OfTheFuture", 1045.0, true},
                                           Age{"OfTooFarAFuture", 1045.125, false},
                                           Age{"Never", std::numeric_limits<double>::quiet_NaN(), false}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(CachedReadiness, IsUnknownWithoutAStateOfTheSelectedQueue) {
    PrinterReadings readings = selecting(queue);
    EXPECT_EQ(readings.cachedNativePrintReadiness({1000.0}), std::nullopt);
    readings.telemetry = test::readyState(QStringLiteral("w9400"), 1000.0);
    EXPECT_EQ(readings.cachedNativePrintReadiness({1000.0}), std::nullopt);
}

TEST(CachedReadiness, TellsAStoppedQueue) {
    PrinterReadings readings = selecting(queue);
    readings.telemetry = test::stoppedState(queue);
    EXPECT_EQ(readings.cachedNativePrintReadiness({800'000'000.0})->state, NativePrintReadinessState::unavailable);
}

} // namespace
} // namespace orvex
