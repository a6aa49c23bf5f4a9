#pragma once

#include "PrivateMachine.h"

#include <QByteArray>
#include <QString>

#include <sys/mount.h>
#include <sys/stat.h>

#include <cerrno>
#include <system_error>

namespace orvex::test {

/// A small disk over an existing folder, for this process and those it starts, as long as this object lives.
class PrivateDisk {
public:
    PrivateDisk(const QString& folder, qint64 sizeBytes) : folder_(folder.toUtf8()) {
        PrivateMachine::require();
        const QByteArray options = "mode=0755,size=" + QByteArray::number(sizeBytes);
        mustSucceed(::mount("tmpfs", folder_.constData(), "tmpfs", 0, options.constData()));
    }

    PrivateDisk(const PrivateDisk&) = delete;
    PrivateDisk& operator=(const PrivateDisk&) = delete;

    ~PrivateDisk() { ::umount2(folder_.constData(), MNT_DETACH); }

    /// Nothing can be written from now on.
    void makeReadOnly() const {
        mustSucceed(::mount("none", folder_.constData(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr));
    }

private:
    static void mustSucceed(int result) {
        if (result != 0) {
            throw std::system_error(errno, std::generic_category(), "mount");
        }
    }

    QByteArray folder_;
};

} // namespace orvex::test
