#pragma once

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusObjectPath>
#include <QDBusVirtualObject>
#include <QList>
#include <QRect>
#include <QString>

#include <functional>
#include <optional>

namespace orvex::test {

/// What kind of thing a program shows, in the numbers of the accessibility protocol.
enum class Role : unsigned {
    canvas = 6,
    checkBox = 7,
    image = 27,
    label = 29,
    menuItem = 35,
    tab = 37,
    button = 43,
    field = 61,
};

/// Where something of another program can be asked for; a D-Bus value.
struct AccessibleReference {
    QString service;
    QDBusObjectPath path;
};

QDBusArgument& operator<<(QDBusArgument& argument, const AccessibleReference& reference);
const QDBusArgument& operator>>(const QDBusArgument& argument, AccessibleReference& reference);

/// Tells what a program shows, as a user's screen reader learns it: over the desktop's accessibility protocol, of which
/// this is the reading end. The program that attached itself last is read.
class ScreenReader : public QDBusVirtualObject {
public:
    /// One thing that is shown.
    struct Element {
        Role role = {};
        QString name;
        QRect place; ///< on the screen
        bool isEnabled = false;
        bool isSelected = false; ///< ticked, or the open one of several tabs
        AccessibleReference reference;
    };

    /// Begins to listen on the bus of this address. Throws std::runtime_error if it cannot.
    explicit ScreenReader(const QString& busAddress);
    ~ScreenReader() override;

    /// Forgets the program, before another one is started.
    void detach() { program_.reset(); }

    [[nodiscard]] const QDBusConnection& bus() const { return bus_; }

    [[nodiscard]] bool isAttached() const { return program_.has_value(); }

    /// Whether the program still answers; waits for the answer.
    [[nodiscard]] bool isAnswering() const;

    /// The first visible thing of that kind and name, if there is one.
    [[nodiscard]] std::optional<Element> find(Role role, const QString& name) const;

    /// The first one whose name contains this.
    [[nodiscard]] std::optional<Element> findContaining(Role role, const QString& part) const;

    /// What stands in a field.
    [[nodiscard]] QString textOf(const Element& field) const;

    [[nodiscard]] QString introspect(const QString& path) const override;
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

private:
    [[nodiscard]] QDBusMessage ask(const AccessibleReference& whom, const char* interface, const char* member,
                                   const QVariantList& arguments = {}) const;
    [[nodiscard]] std::optional<Element> findBelow(const AccessibleReference& parent, Role role,
                                                   const std::function<bool(const QString&)>& isMeant) const;
    [[nodiscard]] std::optional<Element> elementAt(const AccessibleReference& place, Role role,
                                                   const std::function<bool(const QString&)>& isMeant) const;
    [[nodiscard]] quint64 statesOf(const AccessibleReference& place) const;
    [[nodiscard]] QRect placeOf(const AccessibleReference& place) const;

    QString connectionName_;
    QString busAddress_;
    QDBusConnection bus_;
    std::optional<AccessibleReference> program_;
};

} // namespace orvex::test

Q_DECLARE_METATYPE(orvex::test::AccessibleReference)
