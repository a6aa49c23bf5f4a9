#pragma once

#include "TemporaryFolder.h"

#include <QDirIterator>
#include <QProcess>
#include <QProcessEnvironment>

#include <stdexcept>

namespace orvex::test {

/// What a run of a program left.
struct ProgramResult {
    int status = 0; ///< -1 if the process ended by a signal
    QString output;
    QString errors;
};

/// Runs a program with this environment and waits for its end.
inline ProgramResult runProgram(const QString& program, const QStringList& arguments,
                                const QProcessEnvironment& environment) {
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(program, arguments, QIODevice::ReadOnly);
    constexpr int patienceMilliseconds = 120'000;
    if (!process.waitForFinished(patienceMilliseconds)) {
        throw std::runtime_error(program.toStdString() + " did not start or end");
    }
    return {.status = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
            .output = QString::fromUtf8(process.readAllStandardOutput()),
            .errors = QString::fromUtf8(process.readAllStandardError())};
}

/// The programs as `cmake --install` leaves them, in a folder of their own.
class InstalledTree {
public:
    /// How the files come to their place: at once, with the machine's tables renewed, or collected for a package.
    enum class Way { direct, staged };

    explicit InstalledTree(Way way = Way::direct) : way_(way) {
        QProcessEnvironment own = environment();
        if (way == Way::staged) {
            own.insert(QStringLiteral("DESTDIR"), folder_.path());
        }
        const QString prefix = way == Way::staged ? QStringLiteral("/usr") : folder_.path();
        const ProgramResult result = runProgram(
            QStringLiteral(ORVEX_CMAKE),
            {QStringLiteral("--install"), QStringLiteral(ORVEX_BUILD), QStringLiteral("--prefix"), prefix}, own);
        if (result.status != 0) {
            throw std::runtime_error(result.errors.toStdString());
        }
    }

    /// The place of an installed file.
    [[nodiscard]] QString path(const char* name) const { return path(QString::fromUtf8(name)); }

    [[nodiscard]] QString path(const QString& name) const { return prefix() + u'/' + name; }

    /// The folder that a package is made of.
    [[nodiscard]] QString root() const { return folder_.path(); }

    [[nodiscard]] QString text(const char* name) const { return QString::fromUtf8(TemporaryFolder::read(path(name))); }

    /// All files, sorted, by their places below the prefix.
    [[nodiscard]] QStringList files() const {
        QStringList found;
        QDirIterator each(prefix(), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
        while (each.hasNext()) {
            found.append(QDir(prefix()).relativeFilePath(each.next()));
        }
        found.sort();
        return found;
    }

    /// That of a user with this locale, a home folder in here and no display.
    [[nodiscard]] QProcessEnvironment environment(const char* locale = "C.UTF-8") const {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const char* name : {"LANGUAGE", "DESTDIR", "DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
            environment.remove(QString::fromLatin1(name));
        }
        environment.insert(QStringLiteral("LC_ALL"), QString::fromLatin1(locale));
        environment.insert(QStringLiteral("HOME"), home_.path());
        environment.insert(QStringLiteral("XDG_DATA_HOME"), home_.path(QStringLiteral("data")));
        return environment;
    }

    /// Runs an installed program, or a tool of the system, which is looked for.
    [[nodiscard]] ProgramResult run(const QString& program, const QStringList& arguments,
                                    const char* locale = "C.UTF-8") const {
        return runProgram(program, arguments, environment(locale));
    }

private:
    [[nodiscard]] QString prefix() const {
        return way_ == Way::staged ? folder_.path(QStringLiteral("usr")) : folder_.path();
    }

    Way way_;
    TemporaryFolder folder_;
    TemporaryFolder home_;
};

} // namespace orvex::test
