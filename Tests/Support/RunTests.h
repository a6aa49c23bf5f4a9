#pragma once

#include "OrvexLanguage.h"

#include <QCoreApplication>
#include <QLocale>

#include <gtest/gtest.h>

namespace orvex::test {

/// Runs all tests, with googletest initialized and an application there. Every test starts in English with an English
/// locale, whatever the machine's; tests of the other language set it.
inline int runTestsInEnglish() {
    QLocale::setDefault(QLocale(QStringLiteral("en_US")));
    OrvexLanguage::setConfigured(QStringLiteral("en"));
    return RUN_ALL_TESTS();
}

/// The same in an application without windows.
inline int runTests(int& argc, char** argv) {
    const QCoreApplication application(argc, argv);
    return runTestsInEnglish();
}

} // namespace orvex::test
