#pragma once

#include "OrvexLanguage.h"

#include <QCoreApplication>
#include <QLocale>

#include <gtest/gtest.h>

namespace orvex::test {

/// Runs all tests, with googletest initialized. Every test starts in English with an English locale, whatever the
/// machine's; tests of the other language set it.
inline int runTests(int& argc, char** argv) {
    const QCoreApplication application(argc, argv);
    QLocale::setDefault(QLocale(QStringLiteral("en_US")));
    OrvexLanguage::setConfigured(QStringLiteral("en"));
    return RUN_ALL_TESTS();
}

} // namespace orvex::test
