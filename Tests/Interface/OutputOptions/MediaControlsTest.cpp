#include "OutputOptions/MediaControls.h"

#include "InChinese.h"
#include "OutputPanelFixture.h"

namespace orvex {
namespace {

class MediaControlsTest : public test::OutputPanelTest<MediaControls> {};

TEST_F(MediaControlsTest, ExplainWhatIsRecorded) {
    for (const char* text : {"Canvas media", "Media name", "Media / roll-width notes", "Quality record"}) {
        EXPECT_TRUE(shows(text)) << text;
    }
    EXPECT_TRUE(shows("Match the media name to the loaded material and printer panel.\nExisting panel parameters are "
                      "retained; private media settings have not been read."));
    EXPECT_TRUE(shows("Resolution is a quality reference exposed by the driver, not confirmation of Canon’s "
                      "highest-quality mode. Choices are recorded only in local presets; driver and panel settings are "
                      "unchanged."));
    EXPECT_EQ(textOf("paperSourceLine"), QStringLiteral("Paper source: roll · Current width 60 in"));
    put(model->rollLayout, RollLayout({}, 44.25));
    EXPECT_EQ(textOf("paperSourceLine"), QStringLiteral("Paper source: roll · Current width 44.25 in"));
}

TEST_F(MediaControlsTest, ExplainItInChinese) {
    const test::InChinese chinese;
    open();
    for (const char* text :
         {"画布介质", "介质名称", "介质与卷布宽度备注", "质量记录", "纸张来源：卷纸 · 当前宽度 60 英寸"}) {
        EXPECT_TRUE(shows(text)) << text;
    }
}

TEST_F(MediaControlsTest, TakeWhatIsTyped) {
    type("mediaNameField", QStringLiteral("Canvas M"));
    type("mediaNoteField", QStringLiteral("satin"));
    EXPECT_EQ(form().mediaName, QStringLiteral("Canvas M"));
    EXPECT_EQ(form().settings.mediaNote, QStringLiteral("satin"));
}

TEST_F(MediaControlsTest, ShowWhatTheFormHolds) {
    model->setMediaName(QStringLiteral("Canvas M"));
    model->setMediaNote(QStringLiteral("satin"));
    announced();
    EXPECT_EQ(textOf("mediaNameField"), QStringLiteral("Canvas M"));
    EXPECT_EQ(textOf("mediaNoteField"), QStringLiteral("satin"));
}

TEST_F(MediaControlsTest, KeepTheCursorWhereItIsWhileOneTypes) {
    auto& name = find<QLineEdit>("mediaNameField");
    name.setFocus();
    name.setCursorPosition(2);
    QTest::keyClicks(&name, QStringLiteral("xy"));
    announced();
    EXPECT_EQ(name.cursorPosition(), 4);
    EXPECT_EQ(form().mediaName.mid(2, 2), QStringLiteral("xy"));
}

TEST_F(MediaControlsTest, RecordAQuality) {
    EXPECT_EQ(entriesOf("qualityBox"), (QStringList{QStringLiteral("Use current Canon settings"),
                                                    QStringLiteral("600dpi"), QStringLiteral("1200dpi")}));
    choose("qualityBox", QStringLiteral("1200dpi"));
    EXPECT_EQ(form().qualityChoice, QStringLiteral("1200dpi"));
    choose("qualityBox", QStringLiteral("Use current Canon settings"));
    EXPECT_EQ(form().qualityChoice, QString());
}

TEST_F(MediaControlsTest, KeepAQualityThatTheDriverDoesNotOffer) {
    model->setQualityChoice(QStringLiteral("2400dpi"));
    announced();
    EXPECT_EQ(find<QComboBox>("qualityBox").currentText(), QStringLiteral("2400dpi · Currently unavailable"));
    EXPECT_EQ(form().qualityChoice, QStringLiteral("2400dpi"));
}

TEST_F(MediaControlsTest, LeaveTheWheelToThePanelUnlessTheBoxHasTheKeyboard) {
    auto& box = find<QComboBox>("qualityBox");
    const auto turnWheel = [&box] {
        const QPointF middle = QRectF(box.rect()).center();
        QWheelEvent event(middle, box.mapToGlobal(middle), {}, {0, -120}, Qt::NoButton, Qt::NoModifier,
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(&box, &event);
        return event.isAccepted();
    };
    find("mediaNameField").setFocus();
    EXPECT_FALSE(turnWheel());
    EXPECT_EQ(form().qualityChoice, QString());
    box.setFocus();
    turnWheel();
    EXPECT_EQ(form().qualityChoice, QStringLiteral("600dpi"));
}

} // namespace
} // namespace orvex
