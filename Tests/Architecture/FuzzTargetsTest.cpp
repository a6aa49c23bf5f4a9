#include <QDir>
#include <QFile>
#include <QStringList>

#include <gtest/gtest.h>

namespace orvex::architecture {

namespace {

/// The first words of the lines that are no comments.
QStringList listedTargets() {
    QFile list(QStringLiteral(ORVEX_SOURCE_ROOT "/Fuzz/targets.txt"));
    EXPECT_TRUE(list.open(QIODevice::ReadOnly));
    QStringList names;
    for (const QString& line : QString::fromUtf8(list.readAll()).split(u'\n')) {
        const QString name = line.section(u'#', 0, 0).simplified().section(u' ', 0, 0);
        if (!name.isEmpty()) {
            names.append(name);
        }
    }
    return names;
}

QStringList existingTargets() {
    QStringList names;
    const QDir folder(QStringLiteral(ORVEX_SOURCE_ROOT "/Fuzz"));
    for (const QString& file : folder.entryList({QStringLiteral("*Fuzz.cpp")}, QDir::Files, QDir::Name)) {
        names.append(file.chopped(4));
    }
    return names;
}

} // namespace

TEST(FuzzTargets, AreThoseOfTheList) {
    QStringList listed = listedTargets();
    listed.sort();
    ASSERT_FALSE(listed.isEmpty());
    EXPECT_EQ(listed.join(u'\n').toStdString(), existingTargets().join(u'\n').toStdString());
}

} // namespace orvex::architecture
