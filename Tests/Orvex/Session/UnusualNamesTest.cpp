// Names and titles that real files bear: they survive saving, a restart and opening as they are.

#include "CanvasTest.h"

namespace orvex {
namespace {

struct UnusualName {
    const char* name;
    QString text;
};

class UnusualNames : public test::CanvasTest, public ::testing::WithParamInterface<UnusualName> {
protected:
    /// The text as part of a file name.
    [[nodiscard]] static QString fileName() { return QString(GetParam().text).replace(u'/', u'_'); }
};

TEST_P(UnusualNames, AreKeptInTitles) {
    start();
    RollArtwork titled = artwork();
    titled.title = GetParam().text;
    place({titled});
    model->rotateSelectedArtwork();
    const RollWorkspaceFile before = workspace();
    start();
    EXPECT_EQ(item(0).title, GetParam().text);
    EXPECT_EQ(workspace(), before);
    const QUrl project = QUrl::fromLocalFile(folder.path(fileName() + QStringLiteral(".json")));
    services.chosenPlaces.push_back(project);
    model->saveRollProject();
    EXPECT_EQ(model->errorMessage(), std::nullopt);
    SessionBackdoor::set(model->rollLayout, RollLayout());
    model->openLayoutFile(project);
    settle();
    EXPECT_EQ(workspace(), before);
}

TEST_P(UnusualNames, AreKeptInTheNamesOfFiles) {
    start();
    const QUrl file = picture(fileName() + QStringLiteral(".png"), 120, 80);
    import({file});
    ASSERT_EQ(model->errorMessage(), std::nullopt);
    EXPECT_EQ(item(0).title, fileName() + QStringLiteral(".png"));
    start();
    EXPECT_EQ(item(0).title, fileName() + QStringLiteral(".png"));
    EXPECT_EQ(item(0).sourceURL, file);
    model->restoreRollPreviews(false);
    settle();
    EXPECT_TRUE(model->rollLoadWarnings().isEmpty());
    EXPECT_NE(model->metadataFor(item(0)), nullptr);
}

TEST_P(UnusualNames, StandWholeInWhatTheSessionSays) {
    start();
    RollArtwork first = artwork();
    first.title = GetParam().text;
    RollArtwork second = artwork();
    second.title = QStringLiteral("second");
    place({first, second});
    RollLayout overlapping = model->rollLayout();
    overlapping.move(idOf(1), 10.0, 0.0);
    EXPECT_EQ(model->applyBatchArrangement(overlapping, model->rollLayout()),
              QStringLiteral("Manual-trim frames overlap: ") + GetParam().text +
                  QStringLiteral(" and second. Move the artwork or arrange automatically."));
}

INSTANTIATE_TEST_SUITE_P(
    Texts, UnusualNames,
    ::testing::Values(UnusualName{"Newlines", QStringLiteral("two\nlines\r\nand a\u2028third")},
                      UnusualName{"Slashes", QStringLiteral("a/b\\c//d")},
                      UnusualName{"RightToLeft", QStringLiteral("\u200fלוח \u202egnp.1\u202c عمل")},
                      UnusualName{"FourByteCharacters", QStringLiteral("🖼️ 𠮷野家 👩‍🎨")},
                      UnusualName{"Quotes", QStringLiteral("\"quoted\" 'and' {braced}, [listed]: true")},
                      UnusualName{"Placeholders", QStringLiteral("%1 of %2 at 100%")},
                      UnusualName{"ControlCharacters", QStringLiteral("bell\a tab\t escape\x1b delete\x7f")},
                      UnusualName{"Decomposed", QStringLiteral("e\u0301 and \u00e9")},
                      UnusualName{"UrlCharacters", QStringLiteral("a b+c#d?e=f&g;h%20i")},
                      UnusualName{"Blanks", QStringLiteral("  \u3000 ")}, UnusualName{"Long", QString(60, u'长')}),
    [](const auto& name) { return std::string(name.param.name); });

using UnusualTitle = test::CanvasTest;

TEST_F(UnusualTitle, MayHoldHalfACharacter) {
    start();
    RollArtwork titled = artwork();
    titled.title = QStringLiteral("a") + QChar(0xD83D) + QStringLiteral("b");
    place({titled});
    model->rotateSelectedArtwork();
    start();
    EXPECT_EQ(item(0).title, titled.title);
}

} // namespace
} // namespace orvex
