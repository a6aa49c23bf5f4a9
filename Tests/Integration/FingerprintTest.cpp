#include "ChildProcess.h"
#include "Command.h"
#include "OpenFiles.h"
#include "TemporaryFolder.h"

#include <QCryptographicHash>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QThread>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>

namespace orvex {
namespace {

using test::CommandResult;
using test::q;
using test::runCommand;

const QString contentHash =
    QString::fromLatin1(QCryptographicHash::hash("content", QCryptographicHash::Sha256).toHex());
const QString invalidBaseline = q("The settings protection baseline is invalid or its version is unsupported. The "
                                  "original file was kept.");

class Fingerprint : public ::testing::Test {
protected:
    Fingerprint() {
        QDir().mkpath(path("settings"));
        folder_.write(q("settings/a.ppd"), "content");
    }

    QString path(const char* name) const { return root_ + u'/' + q(name); }

    QString baseline() const { return path("baseline.json"); }

    QByteArray baselineBytes() const { return test::TemporaryFolder::read(baseline()); }

    CommandResult save() const {
        return runCommand({q("fingerprint"), q("--baseline"), baseline(), q("--save"), path("settings")});
    }

    CommandResult compare(const QString& language = q("en")) const {
        return runCommand({q("fingerprint"), q("--baseline"), baseline()}, {}, language);
    }

    /// A command that was refused with this line and said nothing on standard output.
    static void expectRefused(const CommandResult& result, const QString& message) {
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.output, QByteArray());
        EXPECT_EQ(result.errors, message + u'\n');
    }

    /// The capture of the settings folder as the command shows it, whatever the time.
    QByteArray shownCapture(const QByteArray& output) const {
        static const QRegularExpression time(q("\"timestamp\": ([0-9.e+]+)\n"));
        const QByteArray shown = time.match(QString::fromUtf8(output)).captured(1).toUtf8();
        EXPECT_GT(shown.toDouble(), 800'000'000.0);
        const QByteArray settings = path("settings").toUtf8();
        return R"({
    "files": [
        {
            "path": ")" +
               settings + R"(",
            "status": "directory"
        },
        {
            "path": ")" +
               settings + R"(/a.ppd",
            "sha256": ")" +
               contentHash.toUtf8() + R"(",
            "status": "regularFile"
        }
    ],
    "rootPaths": [
        ")" + settings +
               R"("
    ],
    "schemaVersion": 1,
    "timestamp": )" +
               shown + "\n}\n";
    }

    test::TemporaryFolder folder_;
    QString root_ = QFileInfo(folder_.path()).canonicalFilePath();
};

const QByteArray unchanged = R"({
    "changes": [
    ],
    "isUnchanged": true,
    "unverifiablePaths": [
    ]
}
)";

TEST_F(Fingerprint, showsACapture) {
    const CommandResult result = runCommand({q("fingerprint"), path("settings")});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.errors, QString());
    EXPECT_EQ(result.output.toStdString(), shownCapture(result.output).toStdString());
    EXPECT_EQ(folder_.names(), QStringList{q("settings")}) << "nothing is written";
}

TEST_F(Fingerprint, savesACaptureAsTheBaselineAndShowsIt) {
    const CommandResult result = save();
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.errors, QString());
    EXPECT_EQ(result.output.toStdString(), shownCapture(result.output).toStdString());
    EXPECT_EQ(baselineBytes(), result.output);
    EXPECT_EQ(folder_.names(), (QStringList{q("baseline.json"), q("settings")}));
}

TEST_F(Fingerprint, replacesAGoodBaseline) {
    ASSERT_EQ(save().status, 0);
    folder_.write(q("settings/b.ppd"), "new");
    const CommandResult again = save();
    EXPECT_EQ(again.status, 0);
    EXPECT_EQ(baselineBytes(), again.output);
    EXPECT_EQ(again.json()[q("files")].toArray().size(), 3);
    EXPECT_EQ(compare().output.toStdString(), unchanged.toStdString());
}

TEST_F(Fingerprint, findsNothingChanged) {
    ASSERT_EQ(save().status, 0);
    const QByteArray before = baselineBytes();
    const CommandResult result = compare();
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.errors, QString());
    EXPECT_EQ(result.output.toStdString(), unchanged.toStdString());
    EXPECT_EQ(baselineBytes(), before);
}

TEST_F(Fingerprint, showsWhatChangedAndWhatCannotBeVerified) {
    ASSERT_EQ(save().status, 0);
    const QByteArray before = baselineBytes();
    ASSERT_TRUE(QFile::remove(path("settings/a.ppd")));
    ASSERT_TRUE(QFile::link(q("nowhere"), path("settings/link")));
    const CommandResult result = compare();
    EXPECT_EQ(result.status, 0) << "a comparison that was made is no refusal";
    const QByteArray settings = path("settings").toUtf8();
    const QByteArray targetHash = QCryptographicHash::hash("nowhere", QCryptographicHash::Sha256).toHex();
    EXPECT_EQ(result.output.toStdString(), (R"({
    "changes": [
        {
            "before": {
                "path": ")" + settings + R"(/a.ppd",
                "sha256": ")" + contentHash.toUtf8() +
                                            R"(",
                "status": "regularFile"
            },
            "path": ")" + settings + R"(/a.ppd"
        },
        {
            "after": {
                "diagnostic": "The link target was recorded without following it. This path cannot be confirmed unchanged.",
                "path": ")" + settings + R"(/link",
                "sha256": ")" + targetHash + R"(",
                "status": "symbolicLink"
            },
            "path": ")" + settings + R"(/link"
        }
    ],
    "isUnchanged": false,
    "unverifiablePaths": [
        ")" + settings + R"(/link"
    ]
}
)")
                                               .toStdString());
    EXPECT_EQ(baselineBytes(), before) << "it stays until the person removes it";
}

TEST_F(Fingerprint, looksWhereTheBaselineLooked) {
    ASSERT_EQ(
        runCommand({q("fingerprint"), q("--baseline"), baseline(), q("--save"), path("settings/a.ppd"), path("none")})
            .status,
        0);
    folder_.write(q("settings/b.ppd"), "not looked at");
    EXPECT_EQ(compare().output.toStdString(), unchanged.toStdString());
    folder_.write(q("none"), "new");
    const QJsonObject json = compare().json().object();
    ASSERT_EQ(json[q("changes")].toArray().size(), 1);
    EXPECT_EQ(json[q("changes")][0][q("before")],
              (QJsonObject{{q("path"), path("none")}, {q("status"), q("missing")}}));
    EXPECT_EQ(json[q("changes")][0][q("after")][q("status")], q("regularFile"));
}

TEST_F(Fingerprint, takesRelativeAndUnstandardisedPaths) {
    QProcess process;
    process.setWorkingDirectory(root_);
    process.start(q(ORVEXCTL), {q("fingerprint"), q("./settings//x/../a.ppd"), q("settings/"), q("none")});
    ASSERT_TRUE(process.waitForFinished(60'000));
    const QJsonDocument json = QJsonDocument::fromJson(process.readAllStandardOutput());
    EXPECT_EQ(json[q("rootPaths")], (QJsonArray{path("none"), path("settings"), path("settings/a.ppd")}));
    EXPECT_EQ(json[q("files")][0][q("status")], q("missing"));
    EXPECT_EQ(json[q("files")][2][q("sha256")], contentHash);
    EXPECT_EQ(json[q("files")].toArray().size(), 3);
}

TEST_F(Fingerprint, takesARelativeBaseline) {
    ASSERT_EQ(save().status, 0);
    QProcess process;
    process.setWorkingDirectory(path("settings"));
    process.start(q(ORVEXCTL), {q("fingerprint"), q("--baseline"), q("../baseline.json")});
    ASSERT_TRUE(process.waitForFinished(60'000));
    EXPECT_EQ(process.readAllStandardOutput(), unchanged);
}

TEST_F(Fingerprint, readsABaselineFromStandardInput) {
    ASSERT_EQ(save().status, 0);
    const QByteArray bytes = baselineBytes();
    EXPECT_EQ(runCommand({q("fingerprint"), q("--baseline"), q("-")}, bytes).output.toStdString(),
              unchanged.toStdString());
    expectRefused(
        runCommand({q("fingerprint"), q("--baseline"), q("-")}, QByteArray(bytes).replace(contentHash.toUtf8(), "x")),
        invalidBaseline);
    for (const QByteArray& damaged : {QByteArray(), bytes.chopped(3)}) {
        const CommandResult result = runCommand({q("fingerprint"), q("--baseline"), q("-")}, damaged);
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.output, QByteArray());
        EXPECT_TRUE(result.errors.startsWith(q("Not valid JSON (at byte "))) << result.errors.toStdString();
    }
}

TEST_F(Fingerprint, knowsThreeFormsAlone) {
    const QString file = baseline();
    for (const QStringList& arguments :
         {QStringList{}, QStringList{q("--save")}, QStringList{q("--save"), path("settings")},
          QStringList{q("--baseline"), file, path("settings")}, QStringList{q("--baseline"), file, q("--save")},
          QStringList{q("--baseline")}, QStringList{q("--baseline"), q("-"), q("--save"), path("settings")},
          QStringList{q("--baseline"), q(""), q("--save"), path("settings")}, QStringList{q("--baseline"), q("")},
          QStringList{q("--baseline"), file, q("--baseline"), file}, QStringList{q("--unknown"), path("settings")}}) {
        const CommandResult result = runCommand(QStringList{q("fingerprint")} + arguments);
        EXPECT_EQ(result.status, 2) << arguments.join(u' ').toStdString();
        EXPECT_EQ(result.output, QByteArray());
        EXPECT_TRUE(result.errors.contains(q("usage: orvexctl"))) << result.errors.toStdString();
    }
    EXPECT_EQ(folder_.names(), QStringList{q("settings")});
}

TEST_F(Fingerprint, takesAPathInBracketsAsItStands) {
    QDir().mkpath(path("[settings]"));
    folder_.write(q("[settings]/b.ppd"), "content");
    const QByteArray root = QFile::encodeName(root_);
    const auto enterRoot = [&root] { [[maybe_unused]] const int result = ::chdir(root.constData()); };
    const QJsonObject snapshot =
        runCommand({q("fingerprint"), q("--baseline"), baseline(), q("--save"), q("[settings]")}, {}, q("en"),
                   enterRoot)
            .json()
            .object();
    EXPECT_EQ(snapshot[q("rootPaths")].toArray(), QJsonArray{path("[settings]")});
    EXPECT_EQ(snapshot[q("files")].toArray().size(), 2);
}

TEST_F(Fingerprint, refusesAnEmptyPath) {
    expectRefused(runCommand({q("fingerprint"), QString()}), q("A path is empty."));
    EXPECT_EQ(runCommand({q("fingerprint"), q("--baseline"), QString(), path("settings")}).status, 2);
}

TEST_F(Fingerprint, refusesAPathThatIsNoText) {
    const QByteArray script = "exec \"" ORVEXCTL "\" --language en fingerprint \"$(printf 'bad\\377')\" 2>&1";
    QProcess process;
    process.start(q("/bin/sh"), {q("-c"), QString::fromUtf8(script)});
    ASSERT_TRUE(process.waitForFinished(60'000));
    EXPECT_EQ(process.exitCode(), 1);
    EXPECT_EQ(QString::fromUtf8(process.readAll()), q("The path \"bad\uFFFD\" is not valid UTF-8 text.\n"));
}

TEST_F(Fingerprint, doesNotPutABaselineIntoAProtectedFolder) {
    expectRefused(
        runCommand({q("fingerprint"), q("--baseline"), path("settings/baseline.json"), q("--save"), path("settings")}),
        q("The settings baseline cannot be kept in the protected path \"%1\". Choose another place.")
            .arg(path("settings/baseline.json")));
    EXPECT_FALSE(QFile::exists(path("settings/baseline.json")));
}

TEST_F(Fingerprint, refusesAMissingBaseline) {
    expectRefused(compare(), baseline() + q(": No such file or directory"));
    EXPECT_EQ(folder_.names(), QStringList{q("settings")});
}

TEST_F(Fingerprint, refusesADamagedBaselineAndKeepsIt) {
    ASSERT_EQ(save().status, 0);
    const QByteArray good = baselineBytes();
    const QList<std::pair<QByteArray, QString>> damages{
        {QByteArray(good).replace(contentHash.toUtf8(), contentHash.toUpper().toUtf8()), invalidBaseline},
        {QByteArray(good).replace("\"schemaVersion\": 1", "\"schemaVersion\": 2"), invalidBaseline},
        {QByteArray(good).replace("a.ppd", "../settings2/a.ppd").replace("settings/..", ".."), invalidBaseline},
        {QByteArray(good).replace("regularFile", "file"), q("files[1].status: There is no status named file.")},
        {QByteArray(good).replace("rootPaths", "roots"), q("rootPaths: The required key is missing.")},
        {"[]", q("Expected an object.")}};
    for (const auto& [bytes, message] : damages) {
        folder_.write(q("baseline.json"), bytes);
        expectRefused(compare(), message);
        expectRefused(save(), message);
        EXPECT_EQ(baselineBytes(), bytes);
    }
    EXPECT_EQ(folder_.names(), (QStringList{q("baseline.json"), q("settings")}));
}

TEST_F(Fingerprint, speaksChinese) {
    folder_.write(q("baseline.json"), R"({"files":[],"rootPaths":["/a"],"schemaVersion":1,"timestamp":0})");
    const CommandResult refused = compare(q("zh-Hans"));
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.output, QByteArray());
    EXPECT_EQ(refused.errors, q("设置基线无效，或其版本不受支持。原文件已保留。\n"));
    ASSERT_TRUE(QFile::link(q("nowhere"), path("link")));
    EXPECT_EQ(runCommand({q("fingerprint"), path("link")}, {}, q("zh-Hans")).json()[q("files")][0][q("diagnostic")],
              q("已记录链接目标，但未跟随链接，无法确认此路径没有变化。"));
    const CommandResult usage = runCommand({q("fingerprint")}, {}, q("zh-Hans"));
    EXPECT_EQ(usage.status, 2);
    EXPECT_TRUE(usage.errors.contains(q("用法：orvexctl"))) << usage.errors.toStdString();
}

TEST_F(Fingerprint, findsNoChangeBetweenLanguages) {
    ASSERT_EQ(::mkfifo(path("settings/pipe").toUtf8().constData(), 0600), 0);
    ASSERT_EQ(save().status, 0);
    const QJsonObject json = compare(q("zh-Hans")).json().object();
    EXPECT_EQ(json[q("changes")], QJsonArray());
    EXPECT_EQ(json[q("unverifiablePaths")], QJsonArray{path("settings/pipe")});
    EXPECT_EQ(json[q("isUnchanged")], false);
}

TEST_F(Fingerprint, refusesABaselineThatIsNoFile) {
    QDir().mkpath(path("folder"));
    ASSERT_EQ(::mkfifo(path("pipe").toUtf8().constData(), 0600), 0);
    for (const QString& place : {path("folder"), path("pipe"), q("/dev/null")}) {
        for (const QStringList& more : {QStringList{}, QStringList{q("--save"), path("settings")}}) {
            const CommandResult result = runCommand(QStringList{q("fingerprint"), q("--baseline"), place} + more);
            EXPECT_EQ(result.status, 1) << place.toStdString();
            EXPECT_EQ(result.output, QByteArray());
            EXPECT_TRUE(result.errors.startsWith(place + q(": "))) << result.errors.toStdString();
        }
    }
    EXPECT_FALSE(QFileInfo(q("/dev/null")).isFile());
    EXPECT_EQ(folder_.names(), (QStringList{q("folder"), q("pipe"), q("settings")}));
}

TEST_F(Fingerprint, keepsTheBaselineWhenItMayNotGrow) {
    ASSERT_EQ(save().status, 0);
    const QByteArray before = baselineBytes();
    const CommandResult result =
        runCommand({q("fingerprint"), q("--baseline"), baseline(), q("--save"), path("settings")}, {}, q("en"),
                   [] { test::limitFileSize(10); });
    expectRefused(result, baseline() + q(": File too large"));
    EXPECT_EQ(baselineBytes(), before);
    EXPECT_EQ(folder_.names(), (QStringList{q("baseline.json"), q("settings")}));
}

TEST_F(Fingerprint, tellsAnOrdinaryUserWhatHeMayNotRead) {
    // The superuser's files are closed to others; an ordinary user closes his own.
    const bool isRoot = ::geteuid() == 0;
    QDir().mkpath(path("settings/closed"));
    folder_.write(q("settings/closed/inner"), "secret");
    folder_.write(q("settings/secret"), "secret");
    ASSERT_EQ(::chmod(root_.toUtf8().constData(), 0755), 0);
    ASSERT_EQ(::chmod(path("settings").toUtf8().constData(), 0755), 0);
    ASSERT_EQ(::chmod(path("settings/a.ppd").toUtf8().constData(), 0644), 0);
    ASSERT_EQ(::chmod(path("settings/closed").toUtf8().constData(), isRoot ? 0700 : 0), 0);
    ASSERT_EQ(::chmod(path("settings/secret").toUtf8().constData(), isRoot ? 0600 : 0), 0);
    const CommandResult result =
        runCommand({q("fingerprint"), path("settings")}, {}, q("en"), [] { test::becomeOrdinaryUser(); });
    ASSERT_EQ(::chmod(path("settings/closed").toUtf8().constData(), 0700), 0);
    EXPECT_EQ(result.status, 0);
    const auto unreadable = [](const QString& file) {
        return QJsonObject{
            {q("path"), file}, {q("status"), q("unreadable")}, {q("diagnostic"), file + q(": Permission denied")}};
    };
    EXPECT_EQ(result.json()[q("files")],
              (QJsonArray{QJsonObject{{q("path"), path("settings")}, {q("status"), q("directory")}},
                          QJsonObject{{q("path"), path("settings/a.ppd")},
                                      {q("status"), q("regularFile")},
                                      {q("sha256"), contentHash}},
                          unreadable(path("settings/closed")), unreadable(path("settings/secret"))}));
}

TEST_F(Fingerprint, endsWhenItIsInterruptedAndSavesNothing) {
    const QString file = path("settings/endless");
    folder_.write(q("settings/endless"), {});
    ASSERT_EQ(::truncate(file.toUtf8().constData(), 1LL << 40), 0);
    QProcess process;
    process.start(q(ORVEXCTL), {q("fingerprint"), q("--baseline"), baseline(), q("--save"), path("settings")});
    ASSERT_TRUE(process.waitForStarted());
    QElapsedTimer patience;
    patience.start();
    while (!test::hasOpen(QString::number(process.processId()), file) && process.state() == QProcess::Running &&
           patience.elapsed() < 120'000) {
        QThread::msleep(1);
    }
    ASSERT_EQ(::kill(static_cast<pid_t>(process.processId()), SIGINT), 0);
    ASSERT_TRUE(process.waitForFinished(120'000));
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(process.exitCode(), 130);
    EXPECT_EQ(process.readAllStandardOutput(), QByteArray());
    EXPECT_EQ(folder_.names(), QStringList{q("settings")});
}

// The same, line by line

QByteArray answerTo(const QByteArray& operation, const QByteArray& args) {
    return runCommand({q("apply")}, R"({"id":1,"op":")" + operation + R"(","args":)" + args + "}\n").output;
}

QByteArray snapshotWith(const QByteArray& files, const QByteArray& version = "1", const QByteArray& timestamp = "0") {
    return R"({"schemaVersion":)" + version + R"(,"timestamp":)" + timestamp + R"(,"rootPaths":["/a"],"files":[)" +
           files + "]}";
}

const QByteArray directory = R"({"path":"/a","status":"directory"})";
const QByteArray link = R"({"path":"/a/l","sha256":"00","status":"symbolicLink"})";

TEST(ApplyCompareSettings, answersAsTheCommandDoes) {
    const auto compare = [](const QByteArray& baseline, const QByteArray& current) {
        return answerTo("compareSettings", R"({"baseline":)" + baseline + R"(,"current":)" + current + "}");
    };
    EXPECT_EQ(compare(snapshotWith(directory), snapshotWith(directory)),
              R"({"id":1,"ok":true,"result":{"changes":[],"isUnchanged":true,"unverifiablePaths":[]}})"
              "\n");
    EXPECT_EQ(compare(snapshotWith(directory), snapshotWith(directory + ',' + link)),
              R"({"id":1,"ok":true,"result":{"changes":[{"after":)" + link +
                  R"(,"path":"/a/l"}],"isUnchanged":false,"unverifiablePaths":["/a/l"]}})"
                  "\n");
    EXPECT_EQ(compare(snapshotWith(directory, "2", "\"NaN\""), snapshotWith(directory)),
              R"({"id":1,"ok":true,"result":{"changes":[],"isUnchanged":false,)"
              R"("unverifiablePaths":["Unsupported settings snapshot version"]}})"
              "\n");
}

TEST(ApplyValidateBaseline, answersNullOrTheErrorText) {
    const auto validate = [](const QByteArray& snapshot) {
        return answerTo("validateBaseline", R"({"snapshot":)" + snapshot + "}");
    };
    const QByteArray valid = "{\"id\":1,\"ok\":true,\"result\":null}\n";
    const QByteArray invalid = R"({"id":1,"ok":true,"result":")" + invalidBaseline.toUtf8() + "\"}\n";
    EXPECT_EQ(validate(snapshotWith(directory)), valid);
    EXPECT_EQ(validate(snapshotWith(directory, "1", "-0.5")), valid);
    for (const QByteArray& snapshot :
         {snapshotWith(directory, "2"), snapshotWith({}), snapshotWith(directory + ',' + directory),
          snapshotWith(directory + ',' + link), snapshotWith(directory + R"(,{"path":"/ab","status":"missing"})"),
          snapshotWith(directory, "1", "\"NaN\""), snapshotWith(directory, "1", "\"Infinity\""),
          snapshotWith(directory, "1", "\"-Infinity\"")}) {
        EXPECT_EQ(validate(snapshot), invalid) << snapshot.constData();
    }
}

TEST(ApplySettings, takesWhatIsNoSnapshotForWrongUsage) {
    const auto usage = [](const QByteArray& error) {
        return R"({"error":")" + error + R"(","id":1,"ok":false,"usage":true})" + "\n";
    };
    EXPECT_EQ(answerTo("validateBaseline", "{}"), usage("args.snapshot: The required key is missing."));
    EXPECT_EQ(answerTo("validateBaseline", R"({"snapshot":{}})"),
              usage("args.snapshot.schemaVersion: The required key is missing."));
    EXPECT_EQ(answerTo("compareSettings", R"({"baseline":)" + snapshotWith(directory) + "}"),
              usage("args.current: The required key is missing."));
    EXPECT_EQ(answerTo("compareSettings", R"({"current":)" + snapshotWith(directory) + "}"),
              usage("args.baseline: The required key is missing."));
    EXPECT_EQ(answerTo("compareSettings",
                       R"({"baseline":)" + snapshotWith(R"({"path":5})") + R"(,"current":)" + snapshotWith({}) + "}"),
              usage("args.baseline.files[0].path: Expected text."));
}

} // namespace
} // namespace orvex
