#pragma once

#include "CUPSParsers.h"
#include "InspectionCommand.h"
#include "InspectionResult.h"
#include "PrintModels.h"
#include "PrinterTelemetry.h"
#include "TemporaryFolder.h"

#include <QJsonDocument>

#include <gtest/gtest.h>

#include <ostream>

namespace orvex::test {

inline QString text(const char* utf8) {
    return QString::fromUtf8(utf8);
}

/// What a tool of CUPS really printed.
inline QByteArray toolBytes(const char* file) {
    return TemporaryFolder::read(QStringLiteral(ORVEX_FIXTURES "/Cups/") + text(file));
}

inline QString toolText(const char* file) {
    return QString::fromUtf8(toolBytes(file));
}

inline InspectionResult clean(const QString& output) {
    return {.output = output, .status = 0};
}

/// Names each test of a table by the name of its row.
struct RowName {
    template <typename Row>
    std::string operator()(const ::testing::TestParamInfo<Row>& row) const {
        return row.param.name;
    }
};

inline QByteArray compactJson(const QJsonObject& object) {
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

} // namespace orvex::test

// How failed expectations show these values

inline void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toStdString() << '"';
}

inline void PrintTo(const QByteArray& bytes, std::ostream* out) {
    *out << '"' << bytes.toStdString() << '"';
}

namespace orvex {

inline void PrintTo(const PrinterStatus& status, std::ostream* out) {
    *out << status.name.toStdString() << " | " << status.summary.toStdString();
}

inline void PrintTo(const InspectionCommand& command, std::ostream* out) {
    *out << command.executable().toStdString() << ' ' << command.arguments().join(u' ').toStdString();
}

inline void PrintTo(const DriverOption& option, std::ostream* out) {
    *out << test::compactJson(option.toJson()).toStdString();
}

inline void PrintTo(const SystemPrintJob& job, std::ostream* out) {
    *out << test::compactJson(job.toJson()).toStdString();
}

inline void PrintTo(const PrinterMarkerTelemetry& marker, std::ostream* out) {
    *out << test::compactJson(marker.toJson()).toStdString();
}

inline void PrintTo(const PrinterTelemetrySnapshot& snapshot, std::ostream* out) {
    *out << test::compactJson(snapshot.toJson()).toStdString();
}

} // namespace orvex
