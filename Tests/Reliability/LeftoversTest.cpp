// Temporary files of other processes that a save comes upon.

#include "FolderContent.h"
#include "ForkedWork.h"
#include "SavedKinds.h"
#include "TemporaryFolder.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <unistd.h>

#include <stdexcept>

namespace orvex {
namespace {

using test::SavedKind;
using test::TemporaryFolder;

/// Another process that writes a temporary file, until it is killed.
class OtherWriter {
public:
    explicit OtherWriter(const QString& temporary)
        : process_([path = temporary.toUtf8()](const auto& report) {
              const int file = ::open(path.constData(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
              if (file < 0 || ::flock(file, LOCK_EX) != 0 || ::write(file, "half", 4) != 4) {
                  throw std::runtime_error("a temporary file of the tests cannot be written");
              }
              report(0);
              ::pause();
          }) {
        process_.waitForReport();
    }

    void kill() {
        process_.kill();
        static_cast<void>(process_.wait());
    }

private:
    test::ForkedWork process_;
};

class Leftovers : public ::testing::TestWithParam<SavedKind> {
protected:
    void SetUp() override { save(2); }

    void save(int number) const { test::save(GetParam(), folder_, number); }

    int newest() const { return GetParam().find(folder_).newest; }

    /// Where another process would write the same file.
    QString temporary(int number = 0) const { return test::temporaryFor(GetParam().file(folder_, 2), number); }

    QStringList temporaries() const { return test::temporariesIn(folder_); }

    void leave(const QString& path) const { root_.write(QDir(root_.path()).relativeFilePath(path), "half"); }

    TemporaryFolder root_;
    QString folder_ = root_.path(QStringLiteral("store"));
};

TEST_P(Leftovers, areRemovedByTheNextSave) {
    leave(temporary());
    ASSERT_EQ(temporaries(), QStringList{temporary()});
    save(4);
    EXPECT_EQ(temporaries(), QStringList());
    EXPECT_EQ(newest(), 4);
}

TEST_P(Leftovers, areNoneWhileAnotherProcessStillWritesThem) {
    OtherWriter writer(temporary(1));
    leave(temporary(2));
    save(4);
    EXPECT_EQ(temporaries(), QStringList{temporary(1)});
    EXPECT_EQ(TemporaryFolder::read(temporary(1)), "half");
    EXPECT_EQ(newest(), 4);
    writer.kill();
    save(6);
    EXPECT_EQ(temporaries(), QStringList());
    EXPECT_EQ(newest(), 6);
}

TEST_P(Leftovers, areRemovedHoweverManyThereAre) {
    constexpr int many = 100;
    for (int number = 0; number < many; ++number) {
        leave(temporary(number));
    }
    ASSERT_EQ(temporaries().size(), many);
    save(4);
    EXPECT_EQ(temporaries(), QStringList());
    EXPECT_EQ(newest(), 4);
}

TEST_P(Leftovers, areNotWhatOnlyResemblesThem) {
    const QString name = QFileInfo(temporary()).fileName();
    const QString folder = QFileInfo(temporary()).path();
    const QStringList others{folder + u'/' + name.sliced(1), folder + u'/' + name + u'~',
                             folder + u'/' + name.chopped(4), folder + u'/' + name.chopped(5) + QStringLiteral(".tmp")};
    for (const QString& path : others) {
        leave(path);
    }
    save(4);
    for (const QString& path : others) {
        EXPECT_EQ(TemporaryFolder::read(path), "half") << path.toStdString();
    }
    EXPECT_EQ(newest(), 4);
}

INSTANTIATE_TEST_SUITE_P(Kinds, Leftovers, ::testing::ValuesIn(test::savedKinds()),
                         [](const auto& kind) { return std::string(kind.param.name); });

} // namespace
} // namespace orvex
