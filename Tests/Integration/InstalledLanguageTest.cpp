#include "TemporaryFolder.h"

#include <QProcess>
#include <QProcessEnvironment>

#include <gtest/gtest.h>

#include <ostream>

namespace orvex {
namespace {

/// What the information dictionary beside the program holds, the user's locale, and the language that follows.
struct Installation {
    const char* name;
    const char* dictionary; ///< absent: no such file
    const char* locale;
    bool isChinese;
};

void PrintTo(const Installation& installation, std::ostream* out) {
    *out << installation.name;
}

class InstalledLanguage : public ::testing::TestWithParam<Installation> {};

TEST_P(InstalledLanguage, followsTheDictionaryAndThenTheUser) {
    const test::TemporaryFolder folder;
    const QDir root(folder.path());
    ASSERT_TRUE(root.mkpath(QStringLiteral("bin")) && root.mkpath(QStringLiteral("share/orvex")));
    const QString program = root.filePath(QStringLiteral("bin/orvexctl"));
    ASSERT_TRUE(QFile::copy(QStringLiteral(ORVEXCTL), program));
    if (GetParam().dictionary != nullptr) {
        folder.write(QStringLiteral("share/orvex/info.json"), GetParam().dictionary);
    }

    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("LANGUAGE"));
    environment.insert(QStringLiteral("LC_ALL"), QString::fromLatin1(GetParam().locale));
    process.setProcessEnvironment(environment);
    process.start(program, {QStringLiteral("check"), folder.path(QStringLiteral("missing.pdf"))});
    ASSERT_TRUE(process.waitForFinished(60'000));
    const QString message = QString::fromUtf8(process.readAllStandardError());
    EXPECT_EQ(process.exitCode(), 1);
    EXPECT_EQ(message.startsWith(QStringLiteral("Cannot read the PDF to print.")), !GetParam().isChinese);
    EXPECT_EQ(message.contains(QStringLiteral("均已保留。")), GetParam().isChinese);
}

INSTANTIATE_TEST_SUITE_P(
    All, InstalledLanguage,
    ::testing::Values(Installation{"noDictionary", nullptr, "en_US.UTF-8", true},
                      Installation{"noKey", "{}", "en_US.UTF-8", true},
                      Installation{"noText", R"({"ORVEXAppLanguage":5})", "en_US.UTF-8", true},
                      Installation{"damaged", R"({"ORVEXAppLanguage":)", "en_US.UTF-8", true},
                      Installation{"english", R"({"ORVEXAppLanguage":"en-GB"})", "zh_CN.UTF-8", false},
                      Installation{"chinese", R"({"ORVEXAppLanguage":"ZH_tw"})", "en_US.UTF-8", true},
                      Installation{"systemInChinese", R"({"ORVEXAppLanguage":"system"})", "zh_CN.UTF-8", true},
                      Installation{"systemInEnglish", R"({"ORVEXAppLanguage":"system"})", "en_US.UTF-8", false},
                      Installation{"systemInFrench", R"({"ORVEXAppLanguage":"system"})", "fr_FR.UTF-8", false}),
    [](const auto& test) { return std::string(test.param.name); });

} // namespace
} // namespace orvex
