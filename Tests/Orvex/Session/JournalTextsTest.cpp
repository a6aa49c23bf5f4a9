#include "JournalTexts.h"

#include "InChinese.h"
#include "PanelTexts.h"

#include <gtest/gtest.h>

namespace orvex {
namespace {

constexpr platform::Timestamp morning{816937500.0};

PrintObservation observation(const QString& note) {
    return {.createdAt = morning, .sequenceNumber = 4, .result = PrintObservationResult::purple, .note = note};
}

TEST(JournalTexts, TellAnObservationAndItsNote) {
    EXPECT_EQ(JournalTexts::text(observation(QStringLiteral("left edge, %1"))),
              orvexDateTime(morning) + QStringLiteral(" · Print 4 · Local purple shift\nleft edge, %1"));
    const test::InChinese chinese;
    EXPECT_EQ(JournalTexts::text(observation(QStringLiteral("左缘"))),
              orvexDateTime(morning) + QStringLiteral(" · 第 4 次 · 局部偏紫\n左缘"));
}

TEST(JournalTexts, HaveNoLineForANoteThatIsBlank) {
    for (const char* blank : {"", " ", "\n"}) {
        EXPECT_EQ(JournalTexts::text(observation(QString::fromLatin1(blank))),
                  orvexDateTime(morning) + QStringLiteral(" · Print 4 · Local purple shift"));
    }
}

} // namespace
} // namespace orvex
