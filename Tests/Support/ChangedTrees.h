#pragma once

#include "Json/JsonWriter.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QString>

#include <functional>

namespace orvex::test {

/// What a change of one value makes of a whole tree.
using ChangedTree = std::function<void(const QString& keyPath, const QJsonValue& tree)>;

/// How a tree is changed at one place.
using Change = std::function<void(const QString& keyPath, const QJsonValue& value, const ChangedTree& visit)>;

/// Makes a change at every place of a tree but the top, one after the other.
inline void changeEverywhere(const QJsonValue& tree, const QString& keyPath, const Change& change,
                             const ChangedTree& visit) {
    const QJsonObject object = tree.toObject();
    for (const QString& key : object.keys()) {
        const auto inObject = [&](const QString& place, const QJsonValue& value) {
            QJsonObject changed = object;
            changed.insert(key, value); // an undefined value takes the key away
            visit(place, changed);
        };
        const QString place = keyPath.isEmpty() ? key : keyPath + u'.' + key;
        change(place, object[key], inObject);
        changeEverywhere(object[key], place, change, inObject);
    }
    const QJsonArray array = tree.toArray();
    for (qsizetype index = 0; index < array.size(); ++index) {
        const auto inArray = [&](const QString& place, const QJsonValue& value) {
            QJsonArray changed = array;
            changed[index] = value;
            visit(place, changed);
        };
        const QString place = keyPath + QStringLiteral("[%1]").arg(index);
        change(place, array[index], inArray);
        changeEverywhere(array[index], place, change, inArray);
    }
}

/// The tree once for every value and every other type that this value could have.
inline void withOtherTypes(const QJsonValue& tree, const ChangedTree& visit) {
    const QList<QJsonValue> values{QJsonValue::Null, true, 7, QStringLiteral("7"), QJsonArray(), QJsonObject()};
    changeEverywhere(
        tree, {},
        [&](const QString& place, const QJsonValue& value, const ChangedTree& inTree) {
            for (const QJsonValue& other : values) {
                if (other.type() != value.type()) {
                    inTree(place, other);
                }
            }
        },
        visit);
}

/// The tree once without each of its keys.
inline void withoutKeys(const QJsonValue& tree, const ChangedTree& visit) {
    changeEverywhere(
        tree, {},
        [](const QString& place, const QJsonValue&, const ChangedTree& inTree) {
            if (!place.endsWith(u']')) {
                inTree(place, QJsonValue(QJsonValue::Undefined));
            }
        },
        visit);
}

/// The value at a key path such as "[1].rollLayout.items[3].id".
inline QJsonValue valueAt(const QJsonValue& tree, const QString& keyPath) {
    QJsonValue value = tree;
    for (const QString& step : QString(keyPath).replace(u'[', QStringLiteral(".#")).remove(u']').split(u'.')) {
        if (!step.isEmpty()) {
            value = step.startsWith(u'#') ? value[step.sliced(1).toLongLong()] : value[step];
        }
    }
    return value;
}

inline QByteArray text(const QJsonValue& tree) {
    return platform::writeJson(tree, platform::JsonForm::compactLine);
}

inline QJsonValue tree(const QByteArray& json) {
    const auto document = QJsonDocument::fromJson(json);
    return document.isArray() ? QJsonValue(document.array()) : QJsonValue(document.object());
}

/// The JSON text of a tree, once for every number in it and every one of these texts in that number's place.
inline void withOtherNumbers(
    const QJsonValue& tree, const QByteArrayList& numbers,
    const std::function<void(const QString& keyPath, const QByteArray& number, const QByteArray& json)>& visit) {
    const QString mark = QStringLiteral("another number");
    changeEverywhere(
        tree, {},
        [&](const QString& place, const QJsonValue& value, const ChangedTree& inTree) {
            if (value.isDouble()) {
                inTree(place, mark);
            }
        },
        [&](const QString& place, const QJsonValue& changed) {
            for (const QByteArray& number : numbers) {
                visit(place, number, text(changed).replace('"' + mark.toUtf8() + '"', number));
            }
        });
}

} // namespace orvex::test
