#pragma once

#include "Failure.h"
#include "TemporaryFolder.h"

#include <QDirIterator>
#include <QMap>

#include <gtest/gtest.h>

#include <exception>
#include <functional>

namespace orvex::test {

/// One file of a store, which is damaged again and again.
class DamagedFile {
public:
    using Damage = std::function<QByteArray(const QByteArray& good)>;

    /// The file at a path that is relative to the store's folder.
    DamagedFile(const TemporaryFolder& folder, const QString& name)
        : folder_(folder),
          name_(name),
          good_(TemporaryFolder::read(folder.path(name))) {}

    /// Damages the file very often, and expects `read` to succeed or to fail with an error of the program's own. Where
    /// it fails, all `changes` have to fail as well. Whatever comes of it, no byte in the folder changes.
    void expectRefusedOrRead(const Damage& damage, const std::function<void()>& read,
                             const std::vector<std::function<void()>>& changes) {
        constexpr int rounds = 10'000;
        for (int round = 0; round < rounds && !::testing::Test::HasFailure(); ++round) {
            const QByteArray bytes = damage(good_);
            SCOPED_TRACE("round " + std::to_string(round) + ": " +
                         bytes.toPercentEncoding(" \n\"{}[]:,").toStdString());
            folder_.write(name_, bytes);
            const QMap<QString, QByteArray> before = contents();
            if (isRefused(read)) {
                ++refusedCount_;
                for (const auto& change : changes) {
                    EXPECT_TRUE(isRefused(change)) << "a change to what cannot be read";
                }
            }
            EXPECT_EQ(contents(), before);
        }
        folder_.write(name_, good_);
        EXPECT_FALSE(isRefused(read)) << "the file is as it was at first";
        readCount_ = rounds - refusedCount_;
    }

    [[nodiscard]] int refusedCount() const { return refusedCount_; }

    [[nodiscard]] int readCount() const { return readCount_; }

private:
    static bool isRefused(const std::function<void()>& call) {
        try {
            call();
            return false;
        } catch (const Failure& failure) {
            EXPECT_FALSE(failure.message().isEmpty());
        } catch (const std::exception& error) {
            ADD_FAILURE() << "not an error of the program's own: " << error.what();
        }
        return true;
    }

    [[nodiscard]] QMap<QString, QByteArray> contents() const {
        QMap<QString, QByteArray> files;
        QDirIterator entries(folder_.path(), QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                             QDirIterator::Subdirectories);
        while (entries.hasNext()) {
            const QString path = entries.next();
            files.insert(path, entries.fileInfo().isDir() ? QByteArray() : TemporaryFolder::read(path));
        }
        return files;
    }

    const TemporaryFolder& folder_;
    QString name_;
    QByteArray good_;
    int refusedCount_ = 0;
    int readCount_ = 0;
};

} // namespace orvex::test
