#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QStringList>

namespace orvex::test {

/// The desktop's file manager as far as programs call it: it notes which files it was asked to show.
class FileManager : public QDBusVirtualObject {
public:
    explicit FileManager(QDBusConnection bus) {
        bus.registerVirtualObject(QStringLiteral("/org/freedesktop/FileManager1"), this);
        bus.registerService(QStringLiteral("org.freedesktop.FileManager1"));
    }

    /// URLs, in the order of the requests.
    [[nodiscard]] const QStringList& shown() const { return shown_; }

    [[nodiscard]] QString introspect(const QString&) const override { return {}; }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        if (message.member() != QStringLiteral("ShowItems")) {
            return false;
        }
        shown_ += message.arguments().first().toStringList();
        return connection.send(message.createReply());
    }

private:
    QStringList shown_;
};

} // namespace orvex::test
