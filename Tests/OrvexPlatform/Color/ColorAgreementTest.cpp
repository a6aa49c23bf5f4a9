// The colour path against ArgyllCMS, an engine of another house with a code base of its own.

#include "Color/ColorTransform.h"
#include "IccFixtures.h"
#include "PressInks.h"
#include "TemporaryFolder.h"

#include <QProcess>

#include <gtest/gtest.h>

#include <cmath>
#include <map>

namespace orvex::platform {

namespace icc = test::icc;

namespace {

using enum RenderingIntent;

// The other engine reads profiles of version 2 only, so all of these are, and no gap between the versions' perceptual
// intents comes in. Between the nodes of a table the standard lets an engine interpolate as it likes: one goes along
// tetrahedra, the other along the sides of the cell. Where a table bends within a cell, as separations do at the
// border of what a press can print, the two are further apart than any bound that would still tell something; so the
// table that RGB and CMYK are converted by is smooth everywhere. The absolute intent is comparable because both engines
// scale the connection space by the papers' white, and the displays' white is the connection space's own.
constexpr double matrixBound = 1.0; // steps of 255, from the other engine's own fractions
constexpr double tableBound = 2.0;
constexpr cmsUInt32Number inkGrid = 17;
constexpr cmsUInt32Number labGrid = 33;
constexpr double lightest = 65280.0 / 65535.0; // of L in the encoding of version 2, where 0xFF00 is 100
constexpr double neutral = 32768.0 / 65535.0;

void encode(const cmsCIELab& lab, std::array<double, 4>& encoded) {
    encoded = {lab.L / 100.0 * lightest, (lab.a + 128.0) * 256.0 / 65535.0, (lab.b + 128.0) * 256.0 / 65535.0, 0.0};
}

void inksToLab(const std::array<double, 4>& inks, std::array<double, 4>& encoded) {
    const samples::Xyz xyz = samples::printed(inks);
    const cmsCIEXYZ color{xyz[0], xyz[1], xyz[2]};
    cmsCIELab lab;
    cmsXYZ2Lab(nullptr, &lab, &color);
    encode(lab, encoded);
}

icc::Profile inkProfile(const cmsCIEXYZ& paper) {
    icc::Profile profile(cmsCreateProfilePlaceholder(nullptr));
    cmsSetProfileVersion(profile.get(), 2.4);
    cmsSetDeviceClass(profile.get(), cmsSigOutputClass);
    cmsSetColorSpace(profile.get(), cmsSigCmykData);
    cmsSetPCS(profile.get(), cmsSigLabData);
    icc::describe(profile, {{"en", "US", L"Test Inks"}});
    cmsWriteTag(profile.get(), cmsSigMediaWhitePointTag, &paper);
    return profile;
}

/// What halftoned inks look like, the same for every intent.
QByteArray press() {
    const icc::Profile profile = inkProfile(*cmsD50_XYZ());
    icc::writeTable(profile, cmsSigAToB0Tag, 4, 3, inkGrid, inksToLab);
    cmsLinkTag(profile.get(), cmsSigAToB1Tag, cmsSigAToB0Tag);
    cmsLinkTag(profile.get(), cmsSigAToB2Tag, cmsSigAToB0Tag);
    return icc::saved(profile);
}

/// Inks that follow the colour without a bend, by a table of its own for each intent, on paper that is a little yellow.
QByteArray smoothInks() {
    const icc::Profile profile = inkProfile({0.90, 0.94, 0.70});
    icc::writeTable(profile, cmsSigAToB0Tag, 4, 3, 2, inksToLab); // no profile is whole without it
    const std::array tags{cmsSigBToA0Tag, cmsSigBToA1Tag, cmsSigBToA2Tag};
    for (std::size_t intent = 0; intent < tags.size(); ++intent) {
        const double strength = 0.9 - 0.1 * static_cast<double>(intent);
        icc::writeTable(profile, tags.at(intent), 3, 4, labGrid, [strength](const auto& lab, auto& inks) {
            const double dark = strength * (1.0 - 0.9 * lab[0]);
            inks = {dark * (1.0 - 0.4 * (lab[1] - neutral)), dark * (1.0 + 0.2 * (lab[1] - neutral)),
                    dark * (1.0 + 0.2 * (lab[2] - neutral)), dark * dark};
        });
    }
    return icc::saved(profile);
}

/// A profile of curves as version 2 holds it, without the later tags.
QByteArray inVersion2(const icc::Profile& profile) {
    cmsSetProfileVersion(profile.get(), 2.4);
    for (const auto tag : {cmsSigRedTRCTag, cmsSigGreenTRCTag, cmsSigBlueTRCTag, cmsSigGrayTRCTag}) {
        if (cmsIsTag(profile.get(), tag)) {
            cmsToneCurve* curve = cmsDupToneCurve(static_cast<cmsToneCurve*>(cmsReadTag(profile.get(), tag)));
            cmsWriteTag(profile.get(), tag, curve);
            cmsFreeToneCurve(curve);
        }
    }
    icc::describe(profile, {{"en", "US", L"Test"}});
    cmsWriteTag(profile.get(), cmsSigChromaticAdaptationTag, nullptr);
    cmsWriteTag(profile.get(), cmsSigCopyrightTag, nullptr);
    return icc::saved(profile);
}

using Colors = std::vector<std::vector<double>>; ///< samples of 0 to 255, or Lab

/// What the other engine answers, a line for each colour.
Colors lookedUp(const QByteArray& profile, const QString& function, const QString& intent, const Colors& colors) {
    const test::TemporaryFolder folder;
    QByteArray lines;
    for (const auto& color : colors) {
        for (const double sample : color) {
            lines += QByteArray::number(sample, 'f', 6) + ' ';
        }
        lines += '\n';
    }
    QProcess process;
    process.start(QStringLiteral("xicclu"),
                  {QStringLiteral("-v0"), QStringLiteral("-f") + function, QStringLiteral("-i") + intent,
                   QStringLiteral("-pl"), QStringLiteral("-s255"), folder.write(QStringLiteral("a.icc"), profile)});
    process.write(lines);
    process.closeWriteChannel();
    EXPECT_TRUE(process.waitForFinished(120'000));
    EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().toStdString();
    Colors answers;
    for (const QByteArray& line : process.readAllStandardOutput().split('\n')) {
        std::vector<double> answer;
        for (const QByteArray& number : line.simplified().split(' ')) {
            bool isNumber = false;
            const double value = number.toDouble(&isNumber);
            if (isNumber) {
                answer.push_back(value);
            }
        }
        if (!answer.empty()) {
            answers.push_back(answer);
        }
    }
    EXPECT_EQ(answers.size(), colors.size());
    return answers;
}

Colors grid(std::size_t channels, int steps) {
    Colors colors{{}};
    for (std::size_t channel = 0; channel < channels; ++channel) {
        Colors longer;
        for (const auto& color : colors) {
            for (int step = 0; step < steps; ++step) {
                longer.push_back(color);
                longer.back().push_back(std::round(255.0 * step / (steps - 1)));
            }
        }
        colors = longer;
    }
    return colors;
}

Colors converted(const QByteArray& from, const QByteArray& to, RenderingIntent intent, const Colors& colors) {
    const auto transform =
        ColorTransform::make(IccProfile::fromData(from).value(), 8, IccProfile::fromData(to).value(), 8, intent)
            .value();
    std::vector<std::byte> source;
    for (const auto& color : colors) {
        for (const double sample : color) {
            source.push_back(static_cast<std::byte>(sample));
        }
    }
    std::vector<std::byte> destination(colors.size() * transform.destinationPixelBytes());
    EXPECT_TRUE(transform.convert(source, destination, colors.size()));
    Colors result;
    for (std::size_t at = 0; at < destination.size(); at += transform.destinationPixelBytes()) {
        result.emplace_back();
        for (std::size_t i = 0; i < transform.destinationPixelBytes(); ++i) {
            result.back().push_back(std::to_integer<int>(destination[at + i]));
        }
    }
    return result;
}

QString option(RenderingIntent intent) {
    static const std::map<RenderingIntent, QString> options{{perceptual, QStringLiteral("p")},
                                                            {relativeColorimetric, QStringLiteral("r")},
                                                            {saturation, QStringLiteral("s")},
                                                            {absoluteColorimetric, QStringLiteral("a")}};
    return options.at(intent);
}

QByteArray screen() {
    return inVersion2(icc::rgb(1.8));
}

QByteArray sRgb() {
    return inVersion2(icc::Profile(cmsCreate_sRGBProfile()));
}

QByteArray printer() {
    return inVersion2(icc::rgb(2.4, cmsSigOutputClass));
}

QByteArray gray() {
    return inVersion2(icc::gray(2.2));
}

/// The other engine's way, to the connection space and from there, against the conversion, in steps of 255.
double largestDifference(const QByteArray& from, const QByteArray& to, RenderingIntent intent, const Colors& colors) {
    const QString letter = option(intent);
    const Colors expected =
        lookedUp(to, QStringLiteral("b"), letter, lookedUp(from, QStringLiteral("f"), letter, colors));
    const Colors actual = converted(from, to, intent, colors);
    double largest = 0;
    for (std::size_t i = 0; i < colors.size(); ++i) {
        for (std::size_t j = 0; j < actual.at(i).size(); ++j) {
            largest = std::max(largest, std::abs(actual[i][j] - expected.at(i).at(j)));
        }
    }
    return largest;
}

struct Ways {
    const char* name;
    std::vector<QByteArray> sources;
    std::vector<QByteArray> destinations;
    Colors colors;
    double bound;
};

void expectAgreement(const Ways& ways) {
    for (std::size_t from = 0; from < ways.sources.size(); ++from) {
        for (std::size_t to = 0; to < ways.destinations.size(); ++to) {
            for (const auto intent : {perceptual, relativeColorimetric, saturation, absoluteColorimetric}) {
                const double largest =
                    largestDifference(ways.sources[from], ways.destinations[to], intent, ways.colors);
                EXPECT_LE(largest, ways.bound)
                    << ways.name << " " << from << " to " << to << ", intent " << option(intent).toStdString();
            }
        }
    }
}

} // namespace

TEST(ColorAgreement, HoldsBetweenMatrixProfilesOfRgbAtEveryIntent) {
    expectAgreement({"RGB to RGB", {screen(), sRgb()}, {printer(), sRgb()}, grid(3, 14), matrixBound});
}

TEST(ColorAgreement, HoldsFromEveryGrayToRgbAtEveryIntent) {
    expectAgreement({"gray to RGB", {gray()}, {printer(), sRgb()}, grid(1, 256), matrixBound});
}

TEST(ColorAgreement, HoldsFromRgbAndGrayToTheInksOfATableAtEveryIntent) {
    expectAgreement({"RGB to CMYK", {screen(), sRgb()}, {smoothInks()}, grid(3, 14), tableBound});
    expectAgreement({"gray to CMYK", {gray()}, {smoothInks()}, grid(1, 256), tableBound});
}

TEST(ColorAgreement, HoldsFromTheInksOfATableAtEveryIntent) {
    expectAgreement({"CMYK to RGB", {press()}, {printer(), sRgb()}, grid(4, 8), tableBound});
    expectAgreement({"CMYK to CMYK", {press()}, {smoothInks()}, grid(4, 8), tableBound});
}

} // namespace orvex::platform
