#include "SourceTree.h"

#include <QDir>
#include <QMap>
#include <QRegularExpression>
#include <QSet>

#include <gtest/gtest.h>

#include <ostream>

namespace orvex::architecture {

namespace {

/// What each module may include besides itself. A module that is not named here is not part of the design.
const QMap<QString, QSet<QString>>& permitted() {
    static const QSet<QString> ground{QStringLiteral("OrvexLocalization")};
    static const QSet<QString> platform = ground + QSet<QString>{QStringLiteral("OrvexPlatform")};
    static const QSet<QString> logic =
        platform + QSet<QString>{QStringLiteral("OrvexKit"), QStringLiteral("PrintCore")};
    static const QSet<QString> session = logic + QSet<QString>{QStringLiteral("Orvex/Session")};
    static const QMap<QString, QSet<QString>> table{
        {QStringLiteral("OrvexLocalization"), {}}, {QStringLiteral("OrvexPlatform"), ground},
        {QStringLiteral("PrintCore"), platform},   {QStringLiteral("OrvexKit"), platform},
        {QStringLiteral("Orvex/Session"), logic},  {QStringLiteral("Orvex/Interface"), session},
        {QStringLiteral("orvexctl"), session},
    };
    return table;
}

/// The headers of the libraries that only the platform may know.
const QRegularExpression& platformHeaders() {
    static const QRegularExpression form(QStringLiteral(
        "^(j(peglib|error|config|morecfg)\\.h|turbojpeg\\.h|png(conf|libconf)?\\.h|tiff.*\\.h|libheif/.*|libexif/.*|"
        "lcms2.*\\.h|isa-l.*|igzip_lib\\.h|zlib\\.h|zconf\\.h|libdeflate\\.h|openssl/.*|qpdf/.*|poppler.*|plist/"
        ".*|expat.*\\.h|"
        "cups/.*)$"));
    return form;
}

/// Which modules have a header of that name below their include root.
using Owners = std::function<QStringList(const QString& header)>;

QString place(const SourceFile& file, const Include& include) {
    return QStringLiteral("%1:%2: %3").arg(file.path, QString::number(include.line), include.header);
}

/// What is wrong with one include, or nothing.
std::optional<QString> objection(const SourceFile& file, const Include& include, const Owners& ownersOf) {
    const QString module = moduleOf(file.path);
    if (!permitted().contains(module)) {
        return QStringLiteral("%1 is in no known module").arg(file.path);
    }
    if (include.header.contains(QStringLiteral(".."))) {
        return place(file, include) + QStringLiteral(" climbs out of its folder");
    }
    if (platformHeaders().match(include.header).hasMatch() && module != QStringLiteral("OrvexPlatform")) {
        return place(file, include) + QStringLiteral(" belongs to the platform");
    }
    const QStringList owners = ownersOf(include.header);
    if (owners.size() > 1) {
        return place(file, include) + QStringLiteral(" is ambiguous between ") + owners.join(u' ');
    }
    if (owners.isEmpty() || owners.first() == module || permitted()[module].contains(owners.first())) {
        return std::nullopt;
    }
    return place(file, include) + QStringLiteral(" belongs to ") + owners.first();
}

QStringList objections(const std::vector<SourceFile>& files, const Owners& ownersOf) {
    QStringList found;
    for (const SourceFile& file : files) {
        for (const Include& include : includesOf(file)) {
            if (const std::optional<QString> text = objection(file, include, ownersOf)) {
                found.append(*text);
            }
        }
    }
    return found;
}

/// The owners in the project as it stands. A header in the including file's own folder is found through its module.
QStringList ownersInProject(const QString& header) {
    QStringList owners;
    const QDir sources(QStringLiteral(ORVEX_SOURCE_ROOT "/Sources"));
    for (const QString& module : permitted().keys()) {
        if (sources.exists(module + u'/' + header)) {
            owners.append(module);
        }
    }
    return owners;
}

struct IncludeCase {
    const char* name;
    const char* path;
    const char* header;
    const char* owner;
    const char* objection; ///< a part of it; empty if the include is fine
};

void PrintTo(const IncludeCase& row, std::ostream* out) {
    *out << row.name;
}

class IncludeRule : public ::testing::TestWithParam<IncludeCase> {};

} // namespace

TEST_P(IncludeRule, JudgesTheInclude) {
    const IncludeCase& row = GetParam();
    const QString text = QStringLiteral("#pragma once\n  # include <%1>\n").arg(QString::fromUtf8(row.header));
    const QStringList owners = *row.owner != '\0' ? QStringList{QString::fromUtf8(row.owner)} : QStringList{};
    const QStringList found = objections({{QString::fromUtf8(row.path), text}}, [&](const QString&) { return owners; });
    if (*row.objection == '\0') {
        EXPECT_EQ(found.join(u'\n').toStdString(), "");
    } else {
        EXPECT_NE(found.join(u'\n').indexOf(QString::fromUtf8(row.objection)), -1) << found.join(u'\n').toStdString();
    }
}

INSTANTIATE_TEST_SUITE_P(
    Layers, IncludeRule,
    ::testing::Values(
        IncludeCase{"KitUsesPlatform", "Sources/OrvexKit/Layout/A.cpp", "Files/ByteReader.h", "OrvexPlatform", ""},
        IncludeCase{"KitUsesItself", "Sources/OrvexKit/Layout/A.cpp", "Layout/B.h", "OrvexKit", ""},
        IncludeCase{"StandardHeader", "Sources/OrvexKit/Layout/A.cpp", "vector", "", ""},
        IncludeCase{"CommandLineUsesKit", "Sources/orvexctl/A.cpp", "Layout/B.h", "OrvexKit", ""},
        IncludeCase{"InterfaceUsesSession", "Sources/Orvex/Interface/A.cpp", "OrvexModel.h", "Orvex/Session", ""},
        IncludeCase{"PlatformUsesItsLibrary", "Sources/OrvexPlatform/PDF/A.cpp", "qpdf/QPDF.hh", "", ""},
        IncludeCase{"PlatformUsesKit", "Sources/OrvexPlatform/A.cpp", "Layout/B.h", "OrvexKit",
                    "A.cpp:2: Layout/B.h belongs to OrvexKit"},
        IncludeCase{"LocalizationUsesPlatform", "Sources/OrvexLocalization/A.h", "Failure.h", "OrvexPlatform",
                    "belongs to OrvexPlatform"},
        IncludeCase{"PrintCoreUsesKit", "Sources/PrintCore/A.h", "Layout/B.h", "OrvexKit", "belongs to OrvexKit"},
        IncludeCase{"KitUsesPrintCore", "Sources/OrvexKit/A.h", "CUPSService.h", "PrintCore", "belongs to PrintCore"},
        IncludeCase{"SessionUsesInterface", "Sources/Orvex/Session/A.h", "ContentView.h", "Orvex/Interface",
                    "belongs to Orvex/Interface"},
        IncludeCase{"PathThatClimbs", "Sources/OrvexKit/A.h", "../OrvexPlatform/Failure.h", "", "climbs out"},
        IncludeCase{"KitUsesPng", "Sources/OrvexKit/A.h", "png.h", "", "belongs to the platform"},
        IncludeCase{"KitUsesDeflate", "Sources/OrvexKit/A.h", "isa-l/igzip_lib.h", "", "belongs to the platform"},
        IncludeCase{"CommandLineUsesPoppler", "Sources/orvexctl/A.h", "poppler-document.h", "",
                    "belongs to the platform"},
        IncludeCase{"CommandLineUsesLittleCms", "Sources/orvexctl/A.h", "lcms2_plugin.h", "",
                    "belongs to the platform"},
        IncludeCase{"PrintCoreUsesCups", "Sources/PrintCore/A.h", "cups/cups.h", "", "belongs to the platform"},
        IncludeCase{"UnknownModule", "Sources/Elsewhere/A.h", "vector", "", "in no known module"}));

TEST(IncludeRule, RefusesAHeaderThatTwoModulesHave) {
    const SourceFile file{QStringLiteral("Sources/OrvexKit/A.cpp"), QStringLiteral("#include \"Names.h\"\n")};
    const QStringList owners{QStringLiteral("OrvexKit"), QStringLiteral("OrvexPlatform")};
    const QStringList found = objections({file}, [&](const QString&) { return owners; });
    ASSERT_EQ(found.size(), 1);
    EXPECT_EQ(found.first().toStdString(),
              "Sources/OrvexKit/A.cpp:1: Names.h is ambiguous between OrvexKit OrvexPlatform");
}

TEST(Modules, IncludeOnlyWhatLiesBelowThem) {
    const std::vector<SourceFile> files = sourceFiles(QStringLiteral("Sources"));
    ASSERT_FALSE(files.empty());
    EXPECT_EQ(objections(files, ownersInProject).join(u'\n').toStdString(), "");
}

} // namespace orvex::architecture
