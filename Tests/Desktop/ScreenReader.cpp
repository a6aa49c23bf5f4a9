#include "ScreenReader.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QUuid>

#include <stdexcept>

namespace orvex::test {

QDBusArgument& operator<<(QDBusArgument& argument, const AccessibleReference& reference) {
    argument.beginStructure();
    argument << reference.service << reference.path;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, AccessibleReference& reference) {
    argument.beginStructure();
    argument >> reference.service >> reference.path;
    argument.endStructure();
    return argument;
}

namespace {

constexpr int answerMilliseconds = 10'000;

constexpr auto accessible = "org.a11y.atspi.Accessible";
constexpr auto component = "org.a11y.atspi.Component";
constexpr auto properties = "org.freedesktop.DBus.Properties";

/// States by their numbers in the protocol. The toolkit calls the open tab the focused one.
enum State { checked = 4, enabled = 8, focused = 12, selected = 23, showing = 25 };

bool has(quint64 states, State state) {
    return (states >> state & 1U) != 0;
}

template <typename Value>
Value first(const QDBusMessage& answer) {
    return answer.arguments().isEmpty() ? Value() : qdbus_cast<Value>(answer.arguments().first());
}

} // namespace

ScreenReader::ScreenReader(const QString& busAddress)
    : connectionName_(QUuid::createUuid().toString()),
      busAddress_(busAddress),
      bus_(QDBusConnection::connectToBus(busAddress, connectionName_)) {
    qDBusRegisterMetaType<AccessibleReference>();
    const bool isListening = bus_.registerVirtualObject(QStringLiteral("/org/a11y"), this, QDBusConnection::SubPath) &&
                             bus_.registerService(QStringLiteral("org.a11y.Bus")) &&
                             bus_.registerService(QStringLiteral("org.a11y.atspi.Registry"));
    if (!isListening) {
        throw std::runtime_error("the accessibility bus: " + bus_.lastError().message().toStdString());
    }
}

ScreenReader::~ScreenReader() {
    QDBusConnection::disconnectFromBus(connectionName_);
}

QString ScreenReader::introspect(const QString&) const {
    return {};
}

/// What a program asks before it shows itself: where the bus is, whether somebody reads, and to be taken in.
bool ScreenReader::handleMessage(const QDBusMessage& message, const QDBusConnection& connection) {
    if (message.member() == QStringLiteral("GetAddress")) {
        return connection.send(message.createReply(busAddress_));
    }
    if (message.interface() == QLatin1String(properties)) {
        return connection.send(message.createReply(QVariant::fromValue(QDBusVariant(true))));
    }
    if (message.member() == QStringLiteral("Embed")) {
        program_ = first<AccessibleReference>(message);
        const AccessibleReference desktop{bus_.baseService(), QDBusObjectPath(message.path())};
        return connection.send(message.createReply(QVariant::fromValue(desktop)));
    }
    return false;
}

bool ScreenReader::isAnswering() const {
    return program_ && ask(*program_, accessible, "GetRole").type() == QDBusMessage::ReplyMessage;
}

std::optional<ScreenReader::Element> ScreenReader::find(Role role, const QString& name) const {
    return program_ ? findBelow(*program_, role, [&](const QString& each) { return each == name; }) : std::nullopt;
}

std::optional<ScreenReader::Element> ScreenReader::findContaining(Role role, const QString& part) const {
    return program_ ? findBelow(*program_, role, [&](const QString& each) { return each.contains(part); })
                    : std::nullopt;
}

QString ScreenReader::textOf(const Element& field) const {
    return first<QString>(ask(field.reference, "org.a11y.atspi.Text", "GetText", {0, -1}));
}

QDBusMessage ScreenReader::ask(const AccessibleReference& whom, const char* interface, const char* member,
                               const QVariantList& arguments) const {
    QDBusMessage question =
        QDBusMessage::createMethodCall(whom.service, whom.path.path(), QLatin1String(interface), QLatin1String(member));
    question.setArguments(arguments);
    return bus_.call(question, QDBus::Block, answerMilliseconds);
}

std::optional<ScreenReader::Element> ScreenReader::findBelow(const AccessibleReference& parent, Role role,
                                                             const std::function<bool(const QString&)>& isMeant) const {
    for (const AccessibleReference& child : first<QList<AccessibleReference>>(ask(parent, accessible, "GetChildren"))) {
        if (auto found = elementAt(child, role, isMeant)) {
            return found;
        }
        if (auto found = findBelow(child, role, isMeant)) {
            return found;
        }
    }
    return std::nullopt;
}

std::optional<ScreenReader::Element> ScreenReader::elementAt(const AccessibleReference& place, Role role,
                                                             const std::function<bool(const QString&)>& isMeant) const {
    const QString name =
        first<QDBusVariant>(ask(place, properties, "Get", {QLatin1String(accessible), QStringLiteral("Name")}))
            .variant()
            .toString();
    if (!isMeant(name) || first<uint>(ask(place, accessible, "GetRole")) != static_cast<uint>(role)) {
        return std::nullopt;
    }
    const quint64 states = statesOf(place);
    if (!has(states, showing)) {
        return std::nullopt;
    }
    return Element{.role = role,
                   .name = name,
                   .place = placeOf(place),
                   .isEnabled = has(states, enabled),
                   .isSelected =
                       has(states, selected) || has(states, checked) || (role == Role::tab && has(states, focused)),
                   .reference = place};
}

quint64 ScreenReader::statesOf(const AccessibleReference& place) const {
    const auto words = first<QList<uint>>(ask(place, accessible, "GetState"));
    return words.size() == 2 ? words[0] | quint64(words[1]) << 32U : 0;
}

QRect ScreenReader::placeOf(const AccessibleReference& place) const {
    constexpr uint onScreen = 0;
    const QDBusMessage answer = ask(place, component, "GetExtents", {onScreen});
    return answer.arguments().isEmpty() ? QRect() : qdbus_cast<QRect>(answer.arguments().first());
}

} // namespace orvex::test
