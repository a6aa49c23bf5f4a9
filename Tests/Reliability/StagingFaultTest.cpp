// Staging a roll where one call of the system goes wrong: a PDF and its record are there together, or neither is, and
// the session shows what is there.

#include "FaultyRun.h"
#include "FolderContent.h"
#include "Output/NativePrintDocument.h"
#include "SessionFixture.h"

#include <cerrno>

namespace orvex {
namespace {

using test::Fault;
using test::FaultyRun;
using test::LoggedCall;

class FaultyStaging : public test::SessionTest {
protected:
    /// Stages a roll from a folder without jobs; the message is what the session shows of it.
    FaultyRun stage(const Fault& fault) {
        QDir(folder_).removeRecursively();
        return test::runWithFault(fault, folder_, folder.path(QStringLiteral("calls.log")), [this] { stage(); });
    }

    /// In the child process.
    void stage() {
        SessionBackdoor(start()).ignoreOthers(); // each run has the same calls
        import({picture_});
        model->stageRollPDF();
        settle();
        const QString shown =
            QStringLiteral("%1 jobs: %2")
                .arg(QString::number(model->jobs().size()), model->errorMessage().value_or(QString()));
        model.reset();
        throw OrvexError::invalid(shown);
    }

    [[nodiscard]] QList<StagedJob> recorded() const { return LocalQueueStore(QUrl::fromLocalFile(folder_)).load(); }

    [[nodiscard]] QStringList pdfNames() const {
        return QDir(folder_).entryList({QStringLiteral("*.pdf")}, QDir::Files | QDir::Hidden);
    }

    /// What of the staging is on the disk, as the session has to show it.
    void expectWhole(const FaultyRun& run) const {
        QStringList expected;
        for (const StagedJob& job : recorded()) {
            expected.append(job.pdfFileName());
        }
        EXPECT_EQ(pdfNames(), expected);
        EXPECT_EQ(test::temporariesIn(folder_), QStringList());
        EXPECT_EQ(run.outcome.status, 1);
        EXPECT_TRUE(run.outcome.message.startsWith(QByteArray::number(expected.size()) + " jobs: "))
            << run.outcome.message.constData();
    }

    /// The calls of a run, from 1, between the first of the PDF and the one that ends the list's renaming.
    [[nodiscard]] static std::pair<int, int> stagingOf(const QList<LoggedCall>& calls, const QString& list) {
        const auto isOfPdf = [](const LoggedCall& call) { return call.path.contains(QStringLiteral(".pdf")); };
        const auto isRenaming = [&list](const LoggedCall& call) {
            return call.name == u"rename" && call.newPath == list;
        };
        const auto first = std::ranges::find_if(calls, isOfPdf);
        const auto renaming = std::ranges::find_if(calls, isRenaming);
        if (first == calls.end() || renaming == calls.end()) {
            throw std::runtime_error("nothing was staged");
        }
        const auto last =
            std::find_if(renaming, calls.end(), [](const LoggedCall& call) { return call.name == u"fsync"; });
        return {static_cast<int>(first - calls.begin()) + 1, static_cast<int>(last - calls.begin()) + 1};
    }

    const QString folder_ = stored(QString()).chopped(1);
    const QString list_ = stored(QStringLiteral("queue.json"));
    const QUrl picture_ = picture(QStringLiteral("a.png"), 120, 80);
};

TEST_F(FaultyStaging, KeepsThePdfWhoseRecordWasInPlaceWhenSavingItFailed) {
    const auto [first, last] = stagingOf(stage({}).calls, list_);
    const FaultyRun run = stage({.call = last, .error = EIO});
    ASSERT_TRUE(run.calls.at(last - 1).hasFault());
    EXPECT_EQ(run.calls.at(last - 1).path, folder_);
    EXPECT_EQ(run.outcome.message, "1 jobs: " + list_.toUtf8() + ": Input/output error");
    ASSERT_EQ(recorded().size(), 1);
    ASSERT_EQ(pdfNames(), QStringList{recorded().first().pdfFileName()});
    const QUrl pdf = QUrl::fromLocalFile(stored(pdfNames().first()));
    EXPECT_NO_THROW(static_cast<void>(NativePrintFactory::openDocument(pdf, 60.0, 13.0)));
}

TEST_F(FaultyStaging, LeavesNeverAPdfWithoutItsRecordNorARecordWithoutItsPdf) {
    const auto [first, last] = stagingOf(stage({}).calls, list_);
    for (int call = first; call <= last; ++call) {
        SCOPED_TRACE(call);
        const FaultyRun run = stage({.call = call, .error = EIO});
        EXPECT_TRUE(run.hasFault());
        expectWhole(run);
    }
}

} // namespace
} // namespace orvex
