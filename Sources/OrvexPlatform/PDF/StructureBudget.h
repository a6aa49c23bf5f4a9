#pragma once

#include <QtGlobal>

namespace orvex::platform {

/// Bounds what qpdf takes in for one document, so that no file can make it fill the memory. Holds for the thread that
/// made it, while it lives; there is one at a time.
class StructureBudget {
public:
    StructureBudget();
    ~StructureBudget();

    StructureBudget(const StructureBudget&) = delete;
    StructureBudget& operator=(const StructureBudget&) = delete;

    /// Takes bytes that qpdf reads for itself off the thread's budget, if it has one. Raises std::length_error once
    /// that is used up.
    static void spendOnReading(qint64 bytes);

    /// The same for bytes that become objects or cross-reference entries: each may cost a hundred times its size.
    static void spendOnParsing(qint64 bytes);

private:
    qint64 readingBytes_;
    qint64 parsingBytes_;
};

} // namespace orvex::platform
