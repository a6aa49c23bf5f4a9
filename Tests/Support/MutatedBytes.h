#pragma once

#include <QByteArray>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <cstdint>
#include <random>

namespace orvex::test {

/// Damage to files: the same changes for the same seed, each of them unlike the last.
class Mutations {
public:
    explicit Mutations(std::uint32_t seed) : random_(seed) {}

    /// The bytes with one to three changes, which know nothing of what the bytes mean.
    QByteArray ofBytes(QByteArray bytes) {
        for (qsizetype change = below(3); change >= 0; --change) {
            changeBytes(bytes);
        }
        return bytes;
    }

    /// JSON with one to three changes, some of which leave it JSON: other keys, values, and numbers.
    QByteArray ofJson(const QByteArray& json) {
        switch (below(4)) {
        case 0:
            return ofBytes(json);
        case 1:
            return withOtherNumber(json);
        default:
            break;
        }
        QJsonDocument document = QJsonDocument::fromJson(json);
        for (qsizetype change = below(3); change >= 0; --change) {
            const QJsonValue value = document.isArray() ? changed(document.array()) : changed(document.object());
            document = value.isArray() ? QJsonDocument(value.toArray()) : QJsonDocument(value.toObject());
        }
        return document.toJson();
    }

private:
    /// A number from 0 on; 0 where there is none below.
    qsizetype below(qsizetype end) {
        return end > 0 ? static_cast<qsizetype>(random_() % static_cast<std::uint64_t>(end)) : 0;
    }

    char byte() {
        static const QByteArray telling("\0\xff\x80\n \"\\{}[],:-0e.u/", 20);
        return below(2) == 0 ? static_cast<char>(below(256)) : telling[below(telling.size())];
    }

    QByteArray span(const QByteArray& bytes) { return bytes.mid(below(bytes.size()), 1 + below(40)); }

    void changeBytes(QByteArray& bytes) {
        const qsizetype offset = below(bytes.size());
        switch (below(bytes.isEmpty() ? 1 : 7)) {
        case 0:
            bytes.insert(offset, byte());
            break;
        case 1:
            bytes[offset] = static_cast<char>(bytes[offset] ^ (1 << below(8)));
            break;
        case 2:
            bytes[offset] = byte();
            break;
        case 3:
            bytes.truncate(offset);
            break;
        case 4:
            bytes.remove(offset, 1 + below(40));
            break;
        case 5:
            bytes.insert(offset, span(bytes));
            break;
        default:
            swapSpans(bytes);
        }
    }

    /// Two spans of the same length change places, or overwrite each other where they overlap.
    void swapSpans(QByteArray& bytes) {
        const QByteArray one = span(bytes);
        const qsizetype from = bytes.indexOf(one);
        const qsizetype to = below(bytes.size() - one.size() + 1);
        const QByteArray other = bytes.mid(to, one.size());
        bytes.replace(to, one.size(), one);
        bytes.replace(from, one.size(), other);
    }

    QByteArray withOtherNumber(QByteArray json) {
        static const QByteArrayList numbers{
            "0",   "-0", "-1", "2",    "1e300", "1e999", "1.5", "9007199254740993", "9223372036854775808",
            "NaN", "1.", "01", "0x10", "null",  "\"1\""};
        const auto isDigit = [](char byte) { return byte >= '0' && byte <= '9'; };
        const auto* const begin = std::find_if(json.cbegin() + below(json.size()), json.cend(), isDigit);
        const auto* const end = std::find_if_not(begin, json.cend(), isDigit);
        const qsizetype offset = begin - json.cbegin();
        return json.replace(offset, end - begin, numbers[below(numbers.size())]);
    }

    QJsonValue otherValue() {
        static const QJsonArray values{QJsonValue(),
                                       true,
                                       false,
                                       0,
                                       -1,
                                       1.5,
                                       1e300,
                                       QString(),
                                       QStringLiteral("../../etc/passwd"),
                                       QString(300, u'x'),
                                       QJsonArray(),
                                       QJsonArray{QJsonObject()},
                                       QJsonObject()};
        return values[below(values.size())];
    }

    QJsonValue changed(const QJsonValue& value) {
        if (value.isObject()) {
            return changed(value.toObject());
        }
        return value.isArray() ? changed(value.toArray()) : otherValue();
    }

    /// With a change further in, or another value, key or set of keys here.
    QJsonValue changed(QJsonObject object) {
        const QStringList keys = object.keys();
        const QString key = keys.value(below(keys.size()));
        switch (below(keys.isEmpty() ? 1 : 8)) {
        case 0:
            object.insert(key + u'x', otherValue());
            break;
        case 1:
            object.insert(key, otherValue());
            break;
        case 2:
            object.insert(key.toUpper(), object.take(key));
            break;
        case 3:
            object.remove(key);
            break;
        case 4:
            object.insert(key, object[keys[below(keys.size())]]);
            break;
        default:
            object.insert(key, changed(object[key]));
        }
        return object;
    }

    QJsonValue changed(QJsonArray array) {
        const qsizetype index = below(array.size());
        switch (below(array.isEmpty() ? 1 : 6)) {
        case 0:
            array.append(otherValue());
            break;
        case 1:
            array.append(array[index]);
            break;
        case 2:
            array.removeAt(index);
            break;
        default:
            array[index] = changed(array[index]);
        }
        return array;
    }

    std::mt19937_64 random_;
};

} // namespace orvex::test
