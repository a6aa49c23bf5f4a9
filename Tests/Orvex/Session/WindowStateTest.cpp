#include "WindowState.h"

#include "Files/FileSystemError.h"
#include "Json/JsonError.h"
#include "TemporaryFolder.h"

#include <QFile>

#include <gtest/gtest.h>

namespace orvex {

namespace {

class WindowStateTest : public ::testing::Test {
protected:
    test::TemporaryFolder folder;
    const QUrl file = WindowState::url(QUrl::fromLocalFile(folder.path()));

    void write(const QByteArray& bytes) const {
        QFile target(file.toLocalFile());
        ASSERT_TRUE(target.open(QIODevice::WriteOnly));
        target.write(bytes);
    }
};

} // namespace

TEST_F(WindowStateTest, WhatWasSavedIsLoadedAgain) {
    const WindowState state{.geometry = QByteArray("\x00\xff geometry", 11),
                            .splitters = {{QStringLiteral("a"), QByteArray("\x01\x02")}, {QStringLiteral("b"), {}}},
                            .folder = QStringLiteral("/home/operator/作品")};
    state.save(file);
    EXPECT_EQ(WindowState::load(file), state);
    EXPECT_EQ(file.fileName(), QStringLiteral("window-state.json"));
}

TEST_F(WindowStateTest, ThereIsNoneBeforeTheFirstEnd) {
    EXPECT_EQ(WindowState::load(file), std::nullopt);
}

TEST_F(WindowStateTest, WhatIsNoSuchRecordIsRefused) {
    for (const char* content : {"", "[]", "{}", R"({"geometry":1,"splitters":{},"folder":""})",
                                R"({"geometry":"","splitters":{"a":1},"folder":""})"}) {
        write(content);
        EXPECT_THROW((void)WindowState::load(file), platform::JsonError) << content;
    }
}

TEST_F(WindowStateTest, AHugeFileIsNotRead) {
    write(QByteArray((1 << 20) + 1, ' '));
    EXPECT_THROW((void)WindowState::load(file), platform::FileSystemError);
}

} // namespace orvex
