#include "CUPSParsers.h"

#include "PrintFixtures.h"

#include <gtest/gtest.h>

namespace orvex {

namespace {

using test::text;
using test::toolText;

using Statuses = QList<PrinterStatus>;
using URIs = QMap<QString, QString>;
using Options = QList<DriverOption>;
using Jobs = QList<SystemPrintJob>;

PrinterStatus status(const char* name, const char* summary) {
    return {.name = text(name), .summary = text(summary)};
}

Statuses statuses(const char* output) {
    return CUPSParsers::printerStatuses(text(output));
}

URIs uris(const char* output) {
    return CUPSParsers::deviceURIs(text(output));
}

Options options(const char* output) {
    return CUPSParsers::driverOptions(text(output));
}

DriverOption option(const char* keyword, const char* label, const QStringList& choices,
                    const std::optional<QString>& defaultChoice = std::nullopt) {
    return {.keyword = text(keyword), .label = text(label), .choices = choices, .defaultChoice = defaultChoice};
}

/// The ids of a queue's jobs.
QStringList jobIDs(const char* output, const char* queueName) {
    QStringList ids;
    for (const SystemPrintJob& job : CUPSParsers::jobs(text(output), text(queueName))) {
        ids.append(job.id);
    }
    return ids;
}

QStringList split(const char* words) {
    return text(words).split(u' ');
}

struct Separator {
    const char* name;
    const char* characters;
};

void PrintTo(const Separator& separator, std::ostream* out) {
    *out << separator.name;
}

class EveryNewline : public ::testing::TestWithParam<Separator> {
protected:
    /// Two lines with the newline between them.
    static QString lines(const char* first, const char* second) {
        return text(first) + text(GetParam().characters) + text(second);
    }
};

class EveryWhiteSpace : public ::testing::TestWithParam<Separator> {
protected:
    /// A text with the white space in place of each "|".
    static QString spaced(const char* form) { return text(form).replace(u'|', text(GetParam().characters)); }
};

} // namespace

// Printer statuses

TEST(CUPSParsers, TellsTheQueuesOfTheStatusToolInItsOrder) {
    EXPECT_EQ(CUPSParsers::printerStatuses(toolText("lpstat_p_idle.txt")),
              (Statuses{status("W9400", "is idle.  enabled since Sat Nov 21 06:26:59 2026"),
                        status("W9400F", "is idle.  enabled since Sat Nov 21 06:35:57 2026"),
                        status("W9400M", "is idle.  enabled since Sat Nov 21 06:17:45 2026"),
                        status("W9400P", "is idle.  enabled since Sat Nov 21 06:17:00 2026"),
                        status("W9400R", "is idle.  enabled since Sat Nov 21 06:17:00 2026"),
                        status("WEVE", "is idle.  enabled since Sat Nov 21 06:35:28 2026"),
                        status("WRAW", "is idle.  enabled since Sat Nov 21 06:26:58 2026")}));
}

struct ToolStatus {
    const char* name;
    const char* file;
    qsizetype count;
    qsizetype index;
    PrinterStatus expected;
};

void PrintTo(const ToolStatus& row, std::ostream* out) {
    *out << row.name;
}

class ToolStatusTest : public ::testing::TestWithParam<ToolStatus> {};

TEST_P(ToolStatusTest, KeepsTheReasonWithItsQueue) {
    const Statuses found = CUPSParsers::printerStatuses(toolText(GetParam().file));
    ASSERT_EQ(found.size(), GetParam().count);
    EXPECT_EQ(found.at(GetParam().index), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    CUPSParsers, ToolStatusTest,
    ::testing::Values(ToolStatus{"Paused", "lpstat_p_paused.txt", 7, 0,
                                 status("W9400",
                                        "disabled since Sat Nov 21 06:40:15 2026 -\nOut of canvas; load roll")},
                      ToolStatus{"BehindPaused", "lpstat_p_paused.txt", 7, 1,
                                 status("W9400F", "is idle.  enabled since Sat Nov 21 06:35:57 2026")},
                      ToolStatus{"Rejecting", "lpstat_p_rejecting.txt", 7, 0,
                                 status("W9400", "is idle.  enabled since Sat Nov 21 06:40:16 2026\n"
                                                 "Rejecting for maintenance")},
                      ToolStatus{"Processing", "lpstat_p_processing.txt", 8, 7,
                                 status("WSLOW", "now printing WSLOW-108.  enabled since Sat Nov 21 06:40:16 2026\n"
                                                 "Printing page 1, 37% complete")},
                      ToolStatus{"StoppedByBackend", "lpstat_p_stopped_by_backend.txt", 8, 7,
                                 status("WSLOW", "disabled since Sat Nov 21 06:40:23 2026 -\nreason unknown")},
                      ToolStatus{"MissingFilter", "lpstat_p_missing_filter.txt", 1, 0,
                                 status("WMISS", "is idle.  enabled since Sat Nov 21 06:40:25 2026\n"
                                                 "File \"/usr/lib/cups/filter/rastertonosuch\" not available: No such "
                                                 "file or directory")}),
    test::RowName());

TEST(CUPSParsers, FindsNoQueueInTheToolsErrors) {
    EXPECT_EQ(CUPSParsers::printerStatuses(toolText("empty_lpstat_p.txt")), Statuses());
    EXPECT_EQ(CUPSParsers::printerStatuses(toolText("down_lpstat_p.txt")), Statuses());
    EXPECT_EQ(statuses(""), Statuses());
    EXPECT_EQ(statuses("\n \n\t\n"), Statuses());
}

TEST(CUPSParsers, KeepsTheFirstSummaryOfARepeatedQueue) {
    EXPECT_EQ(statuses("printer A is idle.\nprinter B is idle.\nprinter A disabled\n"),
              (Statuses{status("A", "is idle."), status("B", "is idle.")}));
}

TEST(CUPSParsers, TellsQueuesApartByCase) {
    EXPECT_EQ(statuses("printer a one\nprinter A two\n"), (Statuses{status("a", "one"), status("A", "two")}));
}

TEST(CUPSParsers, IgnoresAnIndentedLineBeforeAnyQueue) {
    EXPECT_EQ(statuses("\tout of paper\nprinter A is idle.\n"), (Statuses{status("A", "is idle.")}));
}

TEST(CUPSParsers, SkipsAQueueNameWithNothingBehindIt) {
    EXPECT_EQ(statuses("printer A\n"), Statuses());
    EXPECT_EQ(statuses("printer \n"), Statuses());
    EXPECT_EQ(statuses("printer A\nprinter B is idle.\n"), (Statuses{status("B", "is idle.")}));
}

TEST(CUPSParsers, TakesAQueueNameWithNothingButWhiteSpaceBehindIt) {
    EXPECT_EQ(statuses("printer A \n"), (Statuses{status("A", "")}));
    EXPECT_EQ(statuses("printer A \t \n\tpaused\n"), (Statuses{status("A", "\npaused")}));
}

TEST(CUPSParsers, SkipsAStatusWithoutAQueueName) {
    EXPECT_EQ(statuses("printer  is idle.\n"), Statuses());
    EXPECT_EQ(statuses("printer \tis idle.\n"), Statuses());
}

TEST(CUPSParsers, KnowsAStatusLineByItsExactBeginning) {
    EXPECT_EQ(statuses("Printer A is idle.\nPRINTER A is idle.\nprinters A is idle.\nprinter\tA is idle.\n"
                       "the printer A is idle.\nprinterA is idle.\n"),
              Statuses());
}

TEST(CUPSParsers, TakesAnIndentedStatusLineForAReason) {
    EXPECT_EQ(statuses(" printer A is idle.\n"), Statuses());
    EXPECT_EQ(statuses("printer A is idle.\n printer B is idle.\n"),
              (Statuses{status("A", "is idle.\nprinter B is idle.")}));
}

TEST(CUPSParsers, TrimsASummaryAtBothEndsOnly) {
    EXPECT_EQ(statuses("printer A \t is  idle. \t\n"), (Statuses{status("A", "is  idle.")}));
}

TEST(CUPSParsers, AppendsEveryIndentedLineBehindANewline) {
    EXPECT_EQ(statuses("printer A disabled -\n\tout of  paper \n   \n\t\n  and ink\n"),
              (Statuses{status("A", "disabled -\nout of  paper\nand ink")}));
}

TEST(CUPSParsers, AppendsAnIndentedLineToTheLastQueueThatWasNew) {
    EXPECT_EQ(statuses("printer A one\nprinter B two\nprinter A three\n\treason\n"),
              (Statuses{status("A", "one"), status("B", "two\nreason")}));
    EXPECT_EQ(statuses("printer A one\nprinter B\n\treason\n"), (Statuses{status("A", "one\nreason")}));
    EXPECT_EQ(statuses("printer A one\nlpstat: trouble\n\treason\n"), (Statuses{status("A", "one\nreason")}));
}

TEST(CUPSParsers, IgnoresLinesOfOtherKinds) {
    EXPECT_EQ(statuses("scheduler is running\nprinter A is idle.\nlpstat: trouble\n\nno system default destination"),
              (Statuses{status("A", "is idle.")}));
}

TEST(CUPSParsers, TakesAQueueNameUpToTheFirstWhiteSpaceWhateverItHolds) {
    EXPECT_EQ(statuses("printer 卷纸-\"9400\":1 is idle."), (Statuses{status("卷纸-\"9400\":1", "is idle.")}));
}

TEST_P(EveryNewline, EndsAStatusLine) {
    EXPECT_EQ(CUPSParsers::printerStatuses(lines("printer A one", "printer B two")),
              (Statuses{status("A", "one"), status("B", "two")}));
    EXPECT_EQ(CUPSParsers::printerStatuses(lines("printer A one", "\treason")), (Statuses{status("A", "one\nreason")}));
}

TEST_P(EveryWhiteSpace, EndsAQueueNameAndBeginsAReason) {
    EXPECT_EQ(CUPSParsers::printerStatuses(spaced("printer A|one|\n|reason|")), (Statuses{status("A", "one\nreason")}));
}

// Device URIs

TEST(CUPSParsers, MapsQueuesToTheirDevices) {
    const QString capture = text("capture:/var/spool/capture");
    EXPECT_EQ(CUPSParsers::deviceURIs(toolText("lpstat_v.txt")),
              (URIs{{text("W9400"), capture},
                    {text("W9400F"), capture},
                    {text("W9400M"), capture},
                    {text("W9400P"), capture},
                    {text("W9400R"), capture},
                    {text("WEVE"), text("ipp://localhost:8631/ipp/print")},
                    {text("WRAW"), capture}}));
    const URIs withNetwork = CUPSParsers::deviceURIs(toolText("lpstat_v_with_network_printer.txt"));
    EXPECT_EQ(withNetwork.size(), 9);
    EXPECT_EQ(withNetwork.value(text("EveDefault")), text("ipps://localhost:8632/ipp/print"));
}

TEST(CUPSParsers, FindsNoDeviceInTheToolsErrors) {
    EXPECT_EQ(CUPSParsers::deviceURIs(toolText("empty_lpstat_v.txt")), URIs());
    EXPECT_EQ(CUPSParsers::deviceURIs(toolText("down_lpstat_v.txt")), URIs());
    EXPECT_EQ(uris(""), URIs());
}

TEST(CUPSParsers, KeepsAnURIWithColonsWhole) {
    EXPECT_EQ(uris("device for Foo: ipp://host:631/ipp/print"),
              (URIs{{text("Foo"), text("ipp://host:631/ipp/print")}}));
    EXPECT_EQ(uris("device for A:B: usb:x"), (URIs{{text("A"), text("B: usb:x")}}));
}

TEST(CUPSParsers, TakesTheLastDeviceOfARepeatedQueue) {
    EXPECT_EQ(uris("device for A: one\ndevice for A: two\n"), (URIs{{text("A"), text("two")}}));
    EXPECT_EQ(uris("device for A: one\ndevice for A:\n"), (URIs{{text("A"), QString()}}));
}

TEST(CUPSParsers, SkipsADeviceLineWithoutAQueueName) {
    EXPECT_EQ(uris("device for : usb:x\n"), URIs());
    EXPECT_EQ(uris("device for \t : usb:x\n"), URIs());
}

TEST(CUPSParsers, SkipsADeviceLineWithoutAColon) {
    EXPECT_EQ(uris("device for A\ndevice for \n"), URIs());
}

TEST(CUPSParsers, TakesAnEmptyURI) {
    EXPECT_EQ(uris("device for A:\ndevice for B: \t\n"), (URIs{{text("A"), QString()}, {text("B"), QString()}}));
}

TEST(CUPSParsers, TrimsQueueNameAndURI) {
    EXPECT_EQ(uris("device for  My Queue \t:\t usb://x y \n"), (URIs{{text("My Queue"), text("usb://x y")}}));
}

TEST(CUPSParsers, KnowsADeviceLineByItsExactBeginning) {
    EXPECT_EQ(uris("Device for A: x\n device for B: x\ndevice for\tC: x\ndevices for D: x\ndevice forE: x\n:\n"),
              URIs());
}

TEST_P(EveryNewline, EndsADeviceLine) {
    EXPECT_EQ(CUPSParsers::deviceURIs(lines("device for A: one", "device for B: two")),
              (URIs{{text("A"), text("one")}, {text("B"), text("two")}}));
}

// Driver options

TEST(CUPSParsers, ReadsTheOptionsOfADriver) {
    EXPECT_EQ(CUPSParsers::driverOptions(toolText("lpoptions_W9400.txt")),
              (Options{option("PageSize", "Media Size", split("A4 Roll60 Custom.WIDTHxHEIGHT"), text("A4")),
                       option("Resolution", "Print Quality", split("600dpi 1200dpi"), text("600dpi")),
                       option("CutMedia", "Cutting", split("PrinterDefault None"), text("PrinterDefault"))}));
}

TEST(CUPSParsers, ReadsTheOptionsOfADriverlessQueue) {
    EXPECT_EQ(CUPSParsers::driverOptions(toolText("lpoptions_WEVE.txt")),
              (Options{option("PageSize", "Media Size", split("A4.Borderless Custom.WIDTHxHEIGHT")),
                       option("cupsPrintQuality", "cupsPrintQuality", split("Draft Normal High"), text("Normal")),
                       option("ColorModel", "Output Mode", split("Gray RGB"), text("RGB")),
                       option("OutputBin", "OutputBin", split("FaceDown"), text("FaceDown")),
                       option("cupsFinishingTemplate", "cupsFinishingTemplate", split("none"), text("none"))}));
}

TEST(CUPSParsers, FindsNoOptionInTheToolsErrors) {
    EXPECT_EQ(CUPSParsers::driverOptions(toolText("lpoptions_WRAW.txt")), Options());
    EXPECT_EQ(CUPSParsers::driverOptions(toolText("lpoptions_NOSUCH.txt")), Options());
    EXPECT_EQ(CUPSParsers::driverOptions(toolText("down_lpoptions_W9400.txt")), Options());
    EXPECT_EQ(options(" \tlpoptions: Unable to open: *x\n"), Options());
    EXPECT_EQ(options(""), Options());
}

TEST(CUPSParsers, TakesAnOptionThatOnlyBeginsLikeTheToolsName) {
    EXPECT_EQ(options("lpoptions/Label: a\nlpoptionsX: b\n"),
              (Options{option("lpoptions", "Label", split("a")), option("lpoptionsX", "lpoptionsX", split("b"))}));
}

TEST(CUPSParsers, KeepsARepeatedChoiceOnceAndItsMark) {
    EXPECT_EQ(options("PageSize/Media Size: Letter *A4 A4"),
              (Options{option("PageSize", "Media Size", split("Letter A4"), text("A4"))}));
    EXPECT_EQ(options("PageSize: A4 Letter *A4"),
              (Options{option("PageSize", "PageSize", split("A4 Letter"), text("A4"))}));
}

TEST(CUPSParsers, TakesTheLastMarkedChoiceForTheDefault) {
    EXPECT_EQ(options("A: *x y *z *x"), (Options{option("A", "A", split("x y z"), text("x"))}));
}

TEST(CUPSParsers, TakesOneAsteriskOffAMarkedChoice) {
    EXPECT_EQ(options("A: **x y*"), (Options{option("A", "A", split("*x y*"), text("*x"))}));
}

TEST(CUPSParsers, IgnoresALoneAsterisk) {
    EXPECT_EQ(options("A: * x *"), (Options{option("A", "A", split("x"))}));
    EXPECT_EQ(options("A: *"), Options());
}

TEST(CUPSParsers, TellsChoicesApartByCase) {
    EXPECT_EQ(options("A: x X"), (Options{option("A", "A", split("x X"))}));
}

TEST(CUPSParsers, DropsAnOptionWithoutChoices) {
    EXPECT_EQ(options("A:\nB/Label: \t \nC/Label:"), Options());
}

TEST(CUPSParsers, TakesTheFirstLineOfARepeatedKeyword) {
    EXPECT_EQ(options("A/One: x\nB: y\nA/Two: z\n"),
              (Options{option("A", "One", split("x")), option("B", "B", split("y"))}));
}

TEST(CUPSParsers, TakesALaterLineOfAKeywordThatHadNoChoicesYet) {
    EXPECT_EQ(options("A/One:\nA/Two: z\n"), (Options{option("A", "Two", split("z"))}));
}

TEST(CUPSParsers, TellsKeywordsApartByCase) {
    EXPECT_EQ(options("A: x\na: y\n"), (Options{option("A", "A", split("x")), option("a", "a", split("y"))}));
}

TEST(CUPSParsers, TakesTheKeywordForAMissingOrEmptyLabel) {
    EXPECT_EQ(options("A: x\nB/: y\n"), (Options{option("A", "A", split("x")), option("B", "B", split("y"))}));
}

TEST(CUPSParsers, EndsAKeywordAtTheFirstSlashAndALabelAtTheFirstColon) {
    EXPECT_EQ(options("A/one/two: x:y /z"), (Options{option("A", "one/two", split("x:y /z"))}));
    EXPECT_EQ(options("A/one: two/three: x"), (Options{option("A", "one", split("two/three: x"))}));
    EXPECT_EQ(options("A: x/y"), (Options{option("A", "A", split("x/y"))}));
}

TEST(CUPSParsers, KeepsALabelOfAnyLettersAsItStands) {
    EXPECT_EQ(options("A/ 裁切 刀 : x"), (Options{option("A", " 裁切 刀 ", split("x"))}));
}

TEST(CUPSParsers, TrimsAnOptionLine) {
    EXPECT_EQ(options(" \tA/One: \t x \t *y \t"), (Options{option("A", "One", split("x y"), text("y"))}));
}

TEST(CUPSParsers, SkipsALineWithoutAColon) {
    EXPECT_EQ(options("PageSize/Media Size A4\nA\n"), Options());
}

struct Keyword {
    const char* name;
    const char* keyword;
    bool isKeyword;
};

void PrintTo(const Keyword& row, std::ostream* out) {
    *out << row.name;
}

class KeywordTest : public ::testing::TestWithParam<Keyword> {};

TEST_P(KeywordTest, IsOneOrItsLineIsSkipped) {
    const Keyword& row = GetParam();
    const QString line = text(row.keyword) + text("/Label: x\n");
    EXPECT_EQ(CUPSParsers::driverOptions(line),
              row.isKeyword ? Options{option(row.keyword, "Label", split("x"))} : Options());
}

INSTANTIATE_TEST_SUITE_P(
    CUPSParsers, KeywordTest,
    ::testing::Values(Keyword{"AllKindsOfCharacters", "Az09_.-", true}, Keyword{"LowerCase", "zA", true},
                      Keyword{"OneLetter", "Q", true}, Keyword{"Empty", "", false},
                      Keyword{"DigitFirst", "9Page", false}, Keyword{"UnderscoreFirst", "_Page", false},
                      Keyword{"DotFirst", ".Page", false}, Keyword{"HyphenFirst", "-Page", false},
                      Keyword{"NonASCIILetter", "Größe", false}, Keyword{"NonASCIILetterFirst", "ÄPage", false},
                      Keyword{"FullWidthLetter", "ＰＡＧＥ", false}, Keyword{"LetterThatFoldsToASCII", "\u212A", false},
                      Keyword{"DigitOfAnotherScript", "Page٣", false},
                      Keyword{"CombiningMark", "Pag\u0065\u0301", false}, Keyword{"Blank", "Page Size", false},
                      Keyword{"BlankBehind", "Page ", false}, Keyword{"Plus", "A+B", false},
                      Keyword{"Asterisk", "*Page", false}, Keyword{"BeforeTheLetters", "A@", false},
                      Keyword{"BetweenTheLetters", "A[", false}, Keyword{"BehindTheLetters", "A{", false}),
    test::RowName());

TEST_P(EveryNewline, EndsAnOptionLine) {
    EXPECT_EQ(CUPSParsers::driverOptions(lines("A: x", "B: y")),
              (Options{option("A", "A", split("x")), option("B", "B", split("y"))}));
}

TEST_P(EveryWhiteSpace, PartsChoices) {
    EXPECT_EQ(CUPSParsers::driverOptions(spaced("|A:|x||*y|")), (Options{option("A", "A", split("x y"), text("y"))}));
}

// Jobs

TEST(CUPSParsers, ListsTheJobsOfOneQueueInTheirOrder) {
    const QString output = toolText("lpstat_jobs_waiting.txt");
    EXPECT_EQ(CUPSParsers::jobs(output, text("W9400")),
              (Jobs{{.id = text("W9400-105"),
                     .rawLine = text("W9400-105               root              1024   Sat Nov 21 06:40:15 2026")},
                    {.id = text("W9400-106"),
                     .rawLine = text("W9400-106               root              1024   Sat Nov 21 06:40:15 2026")}}));
    EXPECT_EQ(CUPSParsers::jobs(output, text("W9400F")),
              (Jobs{{.id = text("W9400F-107"),
                     .rawLine = text("W9400F-107              root              1024   Sat Nov 21 06:40:15 2026")}}));
    EXPECT_EQ(CUPSParsers::jobs(output, text("W940")), Jobs());
    EXPECT_EQ(CUPSParsers::jobs(output, text("w9400")), Jobs());
}

TEST(CUPSParsers, FindsNoJobInTheToolsErrors) {
    EXPECT_EQ(CUPSParsers::jobs(toolText("down_lpstat_jobs.txt"), text("lpstat")), Jobs());
    EXPECT_EQ(CUPSParsers::jobs(toolText("lpstat_jobs_none.txt"), text("W9400")), Jobs());
    EXPECT_EQ(jobIDs("\n \n\t\n", "A"), QStringList());
}

TEST(CUPSParsers, TellsTheJobsOfAQueueFromThoseOfALongerName) {
    EXPECT_EQ(jobIDs("A-B-12 root\nA-12 root\n", "A"), split("A-12"));
    EXPECT_EQ(jobIDs("A-B-12 root\nA-12 root\n", "A-B"), split("A-B-12"));
    EXPECT_EQ(jobIDs("A-1-2 root\nA-1 root\n", "A"), split("A-1"));
    EXPECT_EQ(jobIDs("A-1-2 root\nA-1 root\n", "A-1"), split("A-1-2"));
}

TEST(CUPSParsers, DemandsANumberOfASCIIDigitsBehindTheQueueName) {
    EXPECT_EQ(jobIDs("A- root\nA-x root\nA-1x root\nA-x1 root\nA--1 root\nA-+1 root\nA-1.0 root\nA-٣ root\nA-１ root\n"
                     "A root\nA 12\nA-²\n",
                     "A"),
              QStringList());
    EXPECT_EQ(jobIDs("A-0\nA-007 root\nA-99999999999999999999999999 root\n", "A"),
              split("A-0 A-007 A-99999999999999999999999999"));
}

TEST(CUPSParsers, LooksForAJobInTheFirstWordOnly) {
    EXPECT_EQ(jobIDs("job A-12 root\nB-1 A-2\n", "A"), QStringList());
}

TEST(CUPSParsers, KeepsAJobsTrimmedLineAsItStands) {
    EXPECT_EQ(CUPSParsers::jobs(text(" \tA-12\troot   1024 \t\n"), text("A")),
              (Jobs{{.id = text("A-12"), .rawLine = text("A-12\troot   1024")}}));
    EXPECT_EQ(CUPSParsers::jobs(text("A-12"), text("A")), (Jobs{{.id = text("A-12"), .rawLine = text("A-12")}}));
}

TEST(CUPSParsers, KeepsARepeatedJob) {
    EXPECT_EQ(jobIDs("A-12 root\nA-12 root\n", "A"), split("A-12 A-12"));
}

TEST(CUPSParsers, TakesAQueueNameForJobsAsItStands) {
    EXPECT_EQ(jobIDs("A.+-12 root\nAxx-13 root\n", "A.+"), split("A.+-12"));
    EXPECT_EQ(jobIDs("卷纸-12 root\n", "卷纸"), split("卷纸-12"));
}

TEST_P(EveryNewline, EndsAJobLine) {
    const Jobs found = CUPSParsers::jobs(lines("A-1 root", "A-2 root"), text("A"));
    EXPECT_EQ(found, (Jobs{{.id = text("A-1"), .rawLine = text("A-1 root")},
                           {.id = text("A-2"), .rawLine = text("A-2 root")}}));
}

TEST_P(EveryWhiteSpace, EndsAJobID) {
    EXPECT_EQ(CUPSParsers::jobs(spaced("|A-1|root|"), text("A")),
              (Jobs{{.id = text("A-1"), .rawLine = spaced("A-1|root")}}));
}

INSTANTIATE_TEST_SUITE_P(CUPSParsers, EveryNewline,
                         ::testing::Values(Separator{"LineFeed", "\n"}, Separator{"VerticalTab", "\v"},
                                           Separator{"FormFeed", "\f"}, Separator{"CarriageReturn", "\r"},
                                           Separator{"CarriageReturnAndLineFeed", "\r\n"},
                                           Separator{"NextLine", "\u0085"}, Separator{"LineSeparator", "\u2028"},
                                           Separator{"ParagraphSeparator", "\u2029"}),
                         test::RowName());

INSTANTIATE_TEST_SUITE_P(CUPSParsers, EveryWhiteSpace,
                         ::testing::Values(Separator{"Blank", " "}, Separator{"Tab", "\t"},
                                           Separator{"NoBreakSpace", "\u00A0"}, Separator{"EmSpace", "\u2003"},
                                           Separator{"IdeographicSpace", "\u3000"}, Separator{"Several", " \t\u00A0 "}),
                         test::RowName());

} // namespace orvex
