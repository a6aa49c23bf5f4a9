#include "Files/TemporaryFolder.h"

#include "Files/FileSystemError.h"
#include "TemporaryFolder.h"

#include <QDir>
#include <QFileInfo>

#include <gtest/gtest.h>

namespace orvex {

namespace {

/// Has TMPDIR name a folder for the length of a test.
class TemporaryFolderTest : public ::testing::Test {
protected:
    ~TemporaryFolderTest() override { restore(); }

    void setTemporaryDirectory(const QString& path) const { qputenv("TMPDIR", QFile::encodeName(path)); }

    test::TemporaryFolder base_;

private:
    void restore() const { before_.isNull() ? qunsetenv("TMPDIR") : qputenv("TMPDIR", before_); }

    QByteArray before_ = qgetenv("TMPDIR");
};

TEST_F(TemporaryFolderTest, LiesWhereTheEnvironmentSaysAndIsForItsOwnerAlone) {
    setTemporaryDirectory(base_.path());
    const platform::TemporaryFolder folder;
    const QFileInfo info(QFileInfo(folder.filePath(QStringLiteral("a"))).path());
    EXPECT_EQ(info.path(), base_.path());
    EXPECT_EQ(info.permissions() & (QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup | QFile::ReadOther |
                                    QFile::WriteOther | QFile::ExeOther),
              QFile::Permissions());
}

TEST_F(TemporaryFolderTest, GoesWithItsContent) {
    setTemporaryDirectory(base_.path());
    {
        const platform::TemporaryFolder folder;
        QDir().mkpath(folder.filePath(QStringLiteral("a/b")));
        EXPECT_EQ(base_.names().size(), 1);
    }
    EXPECT_EQ(base_.names(), QStringList());
}

TEST_F(TemporaryFolderTest, IsNeverMadeElsewhereIfItsPlaceIsMissing) {
    const QString missing = base_.path(QStringLiteral("missing"));
    setTemporaryDirectory(missing);
    try {
        const platform::TemporaryFolder folder;
        ADD_FAILURE() << folder.filePath(QStringLiteral("a")).toStdString();
    } catch (const platform::FileSystemError& error) {
        EXPECT_TRUE(error.isMissing());
        EXPECT_EQ(error.message(), missing + QStringLiteral(": No such file or directory"));
    }
}

} // namespace

} // namespace orvex
