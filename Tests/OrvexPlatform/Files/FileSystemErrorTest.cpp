#include "Files/FileSystemError.h"

#include <gtest/gtest.h>

#include <cerrno>

namespace orvex::platform {

TEST(FileSystemError, HasTheSystemsWordsAndCode) {
    const FileSystemError error(EACCES, QStringLiteral("/a/%1 %2"));
    EXPECT_EQ(error.message(), QStringLiteral("/a/%1 %2: Permission denied"));
    EXPECT_STREQ(error.what(), "/a/%1 %2: Permission denied");
    EXPECT_EQ(error.code(), EACCES);
}

TEST(FileSystemError, TakesTheLastFailureOfACall) {
    errno = ENOSPC;
    const FileSystemError error = FileSystemError::last(QStringLiteral("/a"));
    EXPECT_EQ(error.code(), ENOSPC);
    EXPECT_EQ(error.message(), QStringLiteral("/a: No space left on device"));
}

TEST(FileSystemError, TellsMissingFromUnreadable) {
    EXPECT_TRUE(FileSystemError(ENOENT, {}).isMissing());
    EXPECT_TRUE(FileSystemError(ENOTDIR, {}).isMissing());
    for (const int code : {EACCES, EIO, EISDIR, ELOOP, EINVAL}) {
        EXPECT_FALSE(FileSystemError(code, {}).isMissing()) << code;
    }
}

} // namespace orvex::platform
