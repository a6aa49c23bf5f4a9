#include "OrvexLanguage.h"

#include <QCoreApplication>
#include <QLocale>

#include <gtest/gtest.h>

// Every test starts in English with an English locale, whatever the machine's; tests of the other language set it.
int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    const QCoreApplication application(argc, argv);
    QLocale::setDefault(QLocale(QStringLiteral("en_US")));
    orvex::OrvexLanguage::setConfigured(QStringLiteral("en"));
    return RUN_ALL_TESTS();
}
