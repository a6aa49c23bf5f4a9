#include "SourceTree.h"

#include <QRegularExpression>

#include <gtest/gtest.h>

#include <ostream>

namespace orvex::architecture {

namespace {

/// Something that only the named files may use.
struct ForbiddenMeans {
    QRegularExpression form;
    QStringList doors; ///< file names without their folders
};

const std::vector<ForbiddenMeans>& forbiddenMeans() {
    static const QStringList doors{QStringLiteral("FileReplacer.cpp"), QStringLiteral("FileUpdater.cpp")};
    static const QStringList runner{QStringLiteral("ChildProcess.cpp")};
    static const QStringList toolCallers{QStringLiteral("ChildProcess.h"), QStringLiteral("ChildProcess.cpp"),
                                         QStringLiteral("CUPSService.cpp"),
                                         QStringLiteral("PrinterTelemetryReader.cpp")};
    static const auto form = [](const char* pattern) { return QRegularExpression(QString::fromLatin1(pattern)); };
    static const std::vector<ForbiddenMeans> list{
        // Reports success on a full disk and replaces a whole file by a cut one.
        {form("\\bQSaveFile\\b"), {}},
        // Nothing is written but through the doors.
        {form("\\bw?(ofstream|fstream|filebuf)\\b"), {}},
        {form("\\b(QIODevice|QIODeviceBase|QFileDevice|QFile|OpenModeFlag)::(WriteOnly|ReadWrite|Append|NewOnly|"
              "Truncate)\\b"),
         {}},
        {form("\\b(fopen|freopen|fdopen|creat|mkstemps?|mkostemps?)(64)?\\s*\\("), {}},
        {form("\\bO_(WRONLY|RDWR|CREAT|TRUNC|APPEND|TMPFILE)\\b"), doors},
        {form("\\b(rename|renameat|renameat2)\\s*\\("), doors},
        // Other programs are run by the one runner, and it only for the closed sets of commands that read.
        {form("\\bQProcess\\b|\\bposix_spawnp?\\s*\\(|\\b(v?fork|popen|exec[lv][ep]*)\\s*\\(|"
              "(?<!QLocale::)\\bsystem\\s*\\("),
         runner},
        {form("\\brunChild\\s*\\("), toolCallers},
        // A mapped file that another program shortens kills the process. libtiff maps what it opens by name.
        {form("\\bmmap(64)?\\b|\\bMemoryMapFlags?\\b|\\bTIFF(Fd)?Open\\s*\\("), {}},
    };
    return list;
}

QStringList uses(const SourceFile& file) {
    QStringList found;
    const QStringList lines = codeOnly(file.text).split(u'\n');
    const QString name = file.path.section(u'/', -1);
    for (const ForbiddenMeans& means : forbiddenMeans()) {
        for (qsizetype index = 0; index < lines.size() && !means.doors.contains(name); ++index) {
            if (const QRegularExpressionMatch match = means.form.match(lines[index]); match.hasMatch()) {
                found.append(QStringLiteral("%1:%2: %3").arg(file.path, QString::number(index + 1), match.captured()));
            }
        }
    }
    return found;
}

struct UseCase {
    const char* name;
    const char* path;
    const char* text;
    const char* found;
};

void PrintTo(const UseCase& row, std::ostream* out) {
    *out << row.name;
}

class ForbiddenMeansRule : public ::testing::TestWithParam<UseCase> {};

} // namespace

TEST_P(ForbiddenMeansRule, FindsTheUse) {
    const UseCase& row = GetParam();
    const SourceFile file{QString::fromUtf8(row.path), QString::fromUtf8(row.text)};
    EXPECT_EQ(uses(file).join(u'\n').toStdString(), row.found);
}

INSTANTIATE_TEST_SUITE_P(
    Means, ForbiddenMeansRule,
    ::testing::Values(
        UseCase{"SaveFile", "Sources/A.cpp", "\n#include <QSaveFile>\n", "Sources/A.cpp:2: QSaveFile"},
        UseCase{"StandardStream", "Sources/A.cpp", "std::ofstream out(path);", "Sources/A.cpp:1: ofstream"},
        UseCase{"WritingFile", "Sources/A.cpp", "file.open(QIODevice::WriteOnly)",
                "Sources/A.cpp:1: QIODevice::WriteOnly"},
        UseCase{"ReadingFile", "Sources/A.cpp", "file.open(QIODevice::ReadOnly)", ""},
        UseCase{"CFile", "Sources/A.cpp", "std::fopen (path, mode)", "Sources/A.cpp:1: fopen ("},
        UseCase{"WritingDescriptor", "Sources/A.cpp", "::open(path, O_RDWR)", "Sources/A.cpp:1: O_RDWR"},
        UseCase{"ReadingDescriptor", "Sources/A.cpp", "::open(path, O_RDONLY)", ""},
        UseCase{"Rename", "Sources/A.cpp", "::rename(a, b)", "Sources/A.cpp:1: rename("},
        UseCase{"TheDoorMayRename", "Sources/Files/FileReplacer.cpp", "::rename(a, ::open(b, O_CREAT))", ""},
        UseCase{"TheDoorMayNotMap", "Sources/Files/FileReplacer.cpp", "void* bytes = mmap(a);",
                "Sources/Files/FileReplacer.cpp:1: mmap"},
        UseCase{"Process", "Sources/A.cpp", "QProcess tool;", "Sources/A.cpp:1: QProcess"},
        UseCase{"SearchedProgram", "Sources/A.cpp", "::execvp(a, b)", "Sources/A.cpp:1: execvp("},
        UseCase{"TheRunnerMayStart", "Sources/Process/ChildProcess.cpp", "::posix_spawn(a)", ""},
        UseCase{"Shell", "Sources/A.cpp", "std::system(a)", "Sources/A.cpp:1: system("},
        UseCase{"SystemLocale", "Sources/A.cpp", "QLocale::system()", ""},
        UseCase{"OnlyTheRunnerMayStart", "Sources/Process/ChildOutput.cpp", "posix_spawnp(a)",
                "Sources/Process/ChildOutput.cpp:1: posix_spawnp("},
        UseCase{"ACommandOfItsOwn", "Sources/A.cpp", "runChild(a, b)", "Sources/A.cpp:1: runChild("},
        UseCase{"ACommandOfTheSet", "Sources/PrintCore/CUPSService.cpp", "platform::runChild(a, b)", ""},
        UseCase{"TiffByName", "Sources/A.cpp", "TIFFOpen(path, \"r\")", "Sources/A.cpp:1: TIFFOpen("},
        UseCase{"TiffOptions", "Sources/A.cpp", "TIFFOpenOptionsAlloc()", ""},
        UseCase{"CommentsAndTexts", "Sources/A.cpp",
                "// never rename(a, b)\n/* mmap\n mmap */ text = \"mmap \\\" mmap\"; c = '\"';", ""},
        UseCase{"DigitSeparators", "Sources/A.cpp", "n = 1'000; m = mmap; o = 2'000;", "Sources/A.cpp:1: mmap"},
        UseCase{"RawText", "Sources/A.cpp", "a = R\"x(mmap \" )\" mmap)x\"; mmap;", "Sources/A.cpp:1: mmap"}));

TEST(Sources, UseNoForbiddenMeans) {
    const std::vector<SourceFile> files = sourceFiles(QStringLiteral("Sources"));
    ASSERT_FALSE(files.empty());
    QStringList found;
    for (const SourceFile& file : files) {
        found.append(uses(file));
    }
    EXPECT_EQ(found.join(u'\n').toStdString(), "");
}

} // namespace orvex::architecture
