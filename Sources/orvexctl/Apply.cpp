#include "Apply.h"

#include "ApplyOperations.h"
#include "Failure.h"
#include "Json/JsonError.h"
#include "Json/JsonWriter.h"
#include "OrvexLanguage.h"

#include <QJsonObject>

namespace orvex {

namespace {

const QString idKey = QStringLiteral("id");
const QString okKey = QStringLiteral("ok");
const QString errorKey = QStringLiteral("error");

QJsonObject failed(const QJsonValue& id, const QString& message) {
    return {{idKey, id}, {okKey, false}, {errorKey, message}};
}

QJsonObject wrongUsage(const QJsonValue& id, const QString& message) {
    QJsonObject answer = failed(id, message);
    answer.insert(QStringLiteral("usage"), true);
    return answer;
}

ApplyOperation operationNamed(const platform::JsonReader& name) {
    const QString text = name.text();
    for (const ApplyOperations* operations :
         {&layoutOperations(), &pageOperations(), &languageOperations(), &printerOperations()}) {
        if (const auto found = operations->find(text); found != operations->end()) {
            return found->second;
        }
    }
    name.fail(spt("没有名为 %1 的操作。", "There is no operation named %1.").arg(text));
}

QJsonObject succeeded(const QJsonValue& id, const ApplyAnswer& answer) {
    QJsonObject json{{idKey, id}, {okKey, true}};
    if (answer.layout) {
        json.insert(QStringLiteral("layout"), answer.layout->toJson(LayoutCoding::lenient));
    }
    if (answer.result) {
        json.insert(QStringLiteral("result"), *answer.result);
    }
    return json;
}

QJsonObject answerParsed(const platform::JsonReader& request) {
    const QJsonValue given = request.value().toObject().value(idKey);
    const QJsonValue id = given.isUndefined() ? QJsonValue() : given;
    try {
        const ApplyOperation operation = operationNamed(request.at("op"));
        const auto args = request.find("args");
        const auto none = platform::JsonReader::parse(R"({"args":{}})").at("args");
        return succeeded(id, operation({.args = args.value_or(none), .layoutJson = request.find("layout")}));
    } catch (const platform::JsonError& error) {
        return wrongUsage(id, error.message());
    } catch (const std::exception& exception) {
        return failed(id, failureMessage(exception));
    }
}

QJsonObject answer(QByteArrayView line) {
    try {
        return answerParsed(platform::JsonReader::parse(line, platform::JsonNumbers::orNonFiniteText));
    } catch (const platform::JsonError& error) {
        return wrongUsage({}, error.message());
    } catch (const std::exception& exception) {
        return failed({}, failureMessage(exception));
    }
}

} // namespace

RollLayout ApplyRequest::layout() const {
    if (!layoutJson) {
        throw platform::JsonError(QStringLiteral("layout"), spt("缺少必需的键。", "The required key is missing."));
    }
    return RollLayout::fromJson(*layoutJson, LayoutCoding::lenient);
}

QJsonValue answerNumber(double number) {
    return platform::jsonNumber("result", number, platform::JsonNumbers::orNonFiniteText);
}

QJsonValue answerText(const std::optional<QString>& text) {
    return text ? QJsonValue(*text) : QJsonValue();
}

QByteArray answerRequest(QByteArrayView line) {
    return platform::writeJson(answer(line), platform::JsonForm::compactLine);
}

QByteArray usageAnswer(const QString& message) {
    return platform::writeJson(wrongUsage({}, message), platform::JsonForm::compactLine);
}

} // namespace orvex
