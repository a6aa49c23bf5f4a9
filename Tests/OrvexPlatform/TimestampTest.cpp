#include "Timestamp.h"

#include "Json/JsonError.h"
#include "Json/JsonWriter.h"

#include <QDateTime>
#include <QJsonObject>
#include <QTimeZone>

#include <gtest/gtest.h>

#include <limits>

namespace orvex::platform {

TEST(Timestamp, CountsSecondsFromTheStartOf2001) {
    const qint64 start = QDateTime(QDate(2001, 1, 1), QTime(0, 0), QTimeZone::utc()).toSecsSinceEpoch();
    const qint64 before = QDateTime::currentSecsSinceEpoch() - start;
    const double now = Timestamp::now().secondsSince2001;
    const qint64 after = QDateTime::currentSecsSinceEpoch() - start + 1;
    EXPECT_GE(now, static_cast<double>(before));
    EXPECT_LE(now, static_cast<double>(after));
}

TEST(Timestamp, IsReadAndWrittenAsAPlainNumberToTheLastBit) {
    const Timestamp moment{817023857.53894773};
    const QByteArray json = writeJson(QJsonObject{{QStringLiteral("at"), moment.toJson("at")}}, JsonForm::compactLine);
    EXPECT_EQ(Timestamp::fromJson(JsonReader::parse(json).at("at")), moment);
    EXPECT_TRUE(json.startsWith("{\"at\":817023857.538947")) << json.constData();
}

TEST(Timestamp, ThatIsNotFiniteCannotBeWritten) {
    EXPECT_THROW(static_cast<void>(Timestamp{std::numeric_limits<double>::infinity()}.toJson("at")), JsonInvalidNumber);
}

TEST(Timestamp, IsNoText) {
    EXPECT_THROW(static_cast<void>(Timestamp::fromJson(JsonReader::parse(R"({"at":"2026-11-21"})").at("at"))),
                 JsonError);
}

} // namespace orvex::platform
