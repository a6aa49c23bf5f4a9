#include "Command.h"
#include "TemporaryFolder.h"

#include <QJsonArray>
#include <QJsonObject>

#include <gtest/gtest.h>

namespace orvex {
namespace {

using test::q;

/// The small whole pictures of every format that fuzzing starts from, too.
QStringList wholePictures() {
    QStringList paths;
    for (const QString& kind : {q("jpeg"), q("png"), q("tiff"), q("heif")}) {
        const QDir folder(q(ORVEX_SEEDS) + u'/' + kind);
        for (const QString& name : folder.entryList(QDir::Files, QDir::Name)) {
            paths.append(folder.filePath(name));
        }
    }
    return paths;
}

bool isRefusal(const QString& message) {
    return message == q("Cannot read the image or valid dimensions. Check file integrity and whether the system "
                        "supports this JPEG, PNG, TIFF or HEIC file.") ||
           message == q("The system could not decode this image. Check file integrity and available memory. The app "
                        "has no fixed pixel-count or image-file-size cap.");
}

/// Files made from the whole pictures by `damage`, which gives each a few damaged forms of its bytes.
template <typename Damage>
QStringList damagedFiles(const test::TemporaryFolder& folder, Damage damage) {
    QStringList paths;
    for (const QString& path : wholePictures()) {
        for (const QByteArray& bytes : damage(test::TemporaryFolder::read(path))) {
            const QString name = QStringLiteral("%1-%2").arg(paths.size()).arg(path.section(u'/', -1));
            paths.append(folder.write(name, bytes));
        }
    }
    return paths;
}

QJsonArray inspected(const QStringList& paths) {
    const test::CommandResult result = test::runCommand(QStringList{q("inspect")} + paths);
    EXPECT_TRUE(result.status == 0 || result.status == 1) << result.errors.toStdString();
    EXPECT_EQ(result.json().array().size(), paths.size());
    return result.json().array();
}

TEST(DamagedImages, noneOfTheWholePicturesIsRefused) {
    const QStringList pictures = wholePictures();
    ASSERT_GE(pictures.size(), 12);
    for (const QJsonValue& answer : inspected(pictures)) {
        EXPECT_FALSE(answer.toObject().contains(q("error"))) << answer[q("url")].toString().toStdString();
    }
}

TEST(DamagedImages, everyPictureThatIsCutOffIsRefusedInThePlannedWords) {
    const test::TemporaryFolder folder;
    const QStringList paths = damagedFiles(folder, [](const QByteArray& whole) {
        constexpr int cuts = 16;
        QList<QByteArray> forms{whole.first(whole.size() - 1), whole.first(whole.size() - 2)};
        for (int cut = 0; cut < cuts; ++cut) {
            forms.append(whole.first(whole.size() * cut / cuts));
        }
        return forms;
    });
    ASSERT_GE(paths.size(), 200);
    for (const QJsonValue& answer : inspected(paths)) {
        EXPECT_TRUE(isRefusal(answer[q("error")].toString()))
            << QJsonDocument(answer.toObject()).toJson().toStdString();
    }
}

TEST(DamagedImages, aChangedByteIsReadOrRefusedButNeverWorse) {
    const test::TemporaryFolder folder;
    const QStringList paths = damagedFiles(folder, [](const QByteArray& whole) {
        constexpr int changes = 24;
        QList<QByteArray> forms;
        for (int change = 0; change < changes; ++change) {
            QByteArray form = whole;
            // Half of the changes hit the structures at the head.
            const qsizetype span = change % 2 == 0 ? std::min<qsizetype>(form.size(), 200) : form.size();
            const qsizetype at = span * change / changes;
            form[at] = static_cast<char>(change % 3 == 0 ? 0xff : change % 3 == 1 ? 0 : form[at] ^ 0x55);
            forms.append(form);
        }
        return forms;
    });
    ASSERT_GE(paths.size(), 250);
    for (const QJsonValue& answer : inspected(paths)) {
        const QJsonObject object = answer.toObject();
        EXPECT_TRUE(!object.contains(q("error")) || isRefusal(object[q("error")].toString()))
            << QJsonDocument(object).toJson().toStdString();
    }
}

TEST(DamagedImages, aRollWithOneLeavesNothingBehindAndNothingChanged) {
    const test::TemporaryFolder folder;
    const QString out = folder.write(q("roll.pdf"), "old");
    const QStringList pictures = wholePictures();
    const QByteArray whole = test::TemporaryFolder::read(pictures.first());
    const QString cut = folder.write(q("cut.jpg"), whole.first(whole.size() - 10));
    const test::CommandResult result = test::runCommand({q("roll"), pictures.first(), cut, q("-o"), out});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.errors.startsWith(q("cut.jpg：The system could not decode this image.")))
        << result.errors.toStdString();
    EXPECT_EQ(test::TemporaryFolder::read(out), "old");
    EXPECT_EQ(folder.names(), (QStringList{q("cut.jpg"), q("roll.pdf")}));
}

} // namespace
} // namespace orvex
