#include "SavedKinds.h"

#include "Files/ApplicationFolder.h"
#include "Files/FileReplacer.h"
#include "Files/Paths.h"
#include "Files/RandomAccessFile.h"
#include "IccFixtures.h"
#include "Layout/RollWorkspaceFile.h"
#include "ProtectedSettingsBaseline.h"
#include "Sha256.h"
#include "Stores/LocalQueue.h"
#include "Stores/PresetStore.h"
#include "Stores/PrintJournal.h"
#include "TemporaryFolder.h"

#include <QFile>

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <stdexcept>

namespace orvex::test {

namespace {

using Save = std::function<void(int)>;

/// From 1 to 100, up and down.
int sizeOf(int number) {
    return 1 + number * 37 % 100;
}

QUuid idOf(const char* kind, int number) {
    return QUuid::createUuidV5(QUuid(), QString::fromUtf8(kind) + QString::number(number));
}

QUrl url(const QString& folder) {
    return QUrl::fromLocalFile(folder);
}

platform::Timestamp moment(int number) {
    return {800'000'000.5 + number};
}

int numberIn(const QString& text) {
    return text.section(u' ', 1, 1).toInt();
}

void requireWhole(bool isWhole, const char* kind, int number) {
    if (!isWhole) {
        throw std::runtime_error(std::string(kind) + ' ' + std::to_string(number) + " is not what was saved");
    }
}

// The queue

QList<StagedJob> jobs(int number) {
    QList<StagedJob> list;
    for (int index = 0; index < sizeOf(number); ++index) {
        list.append({.id = idOf("job", number * 1000 + index),
                     .title = QStringLiteral("state %1 job %2").arg(number).arg(index),
                     .printerName = QStringLiteral("W9400"),
                     .createdAt = moment(number),
                     .settings = {},
                     .sourceProfile = QStringLiteral("Display P3")});
    }
    return list;
}

FoundStates findQueue(const QString& folder) {
    const QList<StagedJob> found = LocalQueueStore(url(folder)).load();
    if (found.isEmpty()) {
        return {};
    }
    const int number = numberIn(found.first().title);
    requireWhole(found == jobs(number), "queue", number);
    return {number, 1};
}

// Presets: one that is saved again and again, and new ones

QUuid presetId(int number) {
    constexpr int most = 128;
    return number % 2 == 0 ? idOf("preset", 0) : idOf("preset", number % most);
}

PrintPreset preset(int number) {
    PrintPreset made;
    made.id = presetId(number);
    made.name = QStringLiteral("State %1").arg(number);
    made.createdAt = moment(0);
    made.mediaName = QString(40 * sizeOf(number), u'm');
    return made;
}

bool isPreset(const PrintPreset& found, int number) {
    PrintPreset expected = preset(number);
    expected.updatedAt = found.updatedAt; // the moment of the saving
    return found == expected;
}

FoundStates findPresets(const QString& folder) {
    FoundStates states;
    for (const PrintPreset& each : PresetStore(url(folder)).load()) {
        const int number = numberIn(each.name);
        requireWhole(isPreset(each, number), "preset", number);
        states = {std::max(states.newest, number), states.count + 1};
    }
    return states;
}

// Profiles, each of them new

QByteArray profile(int number) {
    const std::wstring description = L"Profile " + std::to_wstring(number) + L' ' +
                                     std::wstring(static_cast<std::size_t>(20 * sizeOf(number)), L'd');
    constexpr qsizetype madeAt = 24; // in the header, where it would tell profiles of one number apart
    return icc::saved(icc::rgb(1.8, cmsSigDisplayClass, description)).replace(madeAt, 12, QByteArray(12, '\0'));
}

QString profileFile(const QString& folder, int number) {
    return folder + QStringLiteral("/profiles/") + platform::sha256Hex(profile(number)) + QStringLiteral(".icc");
}

/// Where profiles are imported from; any user may write there.
const QString& sourceFolder() {
    static const TemporaryFolder folder;
    static const QString path = folder.path();
    static const int result = ::chmod(path.toUtf8().constData(), 0777);
    requireWhole(result == 0, "folder", 0);
    return path;
}

void importProfile(const PresetStore& store, const QString& sourcePath, int number) {
    QFile source(sourcePath);
    const QByteArray bytes = profile(number);
    if (!source.open(QIODevice::WriteOnly) || source.write(bytes) != bytes.size() || !source.flush()) {
        throw std::runtime_error("a source of the tests cannot be written");
    }
    static_cast<void>(store.importICC(url(sourcePath)));
}

FoundStates findProfiles(const QString& folder) {
    FoundStates states;
    for (const ManagedICCAsset& each : PresetStore(url(folder)).listICCAssets()) {
        const int number = numberIn(each.displayName);
        requireWhole(each.sha256 == platform::sha256Hex(profile(number)), "profile", number);
        states = {std::max(states.newest, number), states.count + 1};
    }
    return states;
}

// The journal, which only grows

PrintObservation observation(int number) {
    return {.id = idOf("observation", number),
            .createdAt = moment(number),
            .sequenceNumber = number,
            .result = PrintObservationResult::purple,
            .note = QString(2 * sizeOf(number), u'n'),
            .artwork = QStringLiteral("artwork"),
            .media = QStringLiteral("media"),
            .preset = QStringLiteral("preset"),
            .colorMode = QStringLiteral("driver")};
}

FoundStates findObservations(const QString& folder) {
    FoundStates states;
    for (const PrintObservation& each : PrintJournalStore(url(folder)).load()) {
        const auto number = static_cast<int>(each.sequenceNumber);
        requireWhole(each == observation(number), "observation", number);
        states = {std::max(states.newest, number), states.count + 1};
    }
    return states;
}

// The baseline

ProtectedSettingsSnapshot snapshot(int number) {
    const QString root = QStringLiteral("/protected");
    ProtectedSettingsSnapshot made{.timestamp = moment(number), .rootPaths = {root}};
    made.files.append({.path = root, .status = ProtectedSettingsFileStatus::directory});
    for (int index = 0; index < sizeOf(number); ++index) {
        made.files.append({.path = QStringLiteral("/protected/state %1 file %2").arg(number).arg(index, 3),
                           .status = ProtectedSettingsFileStatus::regularFile,
                           .sha256 = QString(64, u'a')});
    }
    return made;
}

FoundStates findBaseline(const QString& folder) {
    const auto found = ProtectedSettingsBaselineStore(url(folder)).load();
    if (!found) {
        return {};
    }
    const int number = numberIn(found->files.last().path);
    requireWhole(*found == snapshot(number), "baseline", number);
    return {number, 1};
}

// The workspace that is saved by itself

QString workspaceFile(const QString& folder) {
    return folder + QStringLiteral("/workspace.json");
}

RollWorkspaceFile workspace(int number) {
    RollWorkspaceFile made;
    made.gapInches = number;
    for (int index = 0; index < sizeOf(number); ++index) {
        made.layout.items.append(
            RollArtwork::make({.id = idOf("artwork", number * 1000 + index),
                               .sourceURL = QUrl(QStringLiteral("file:///images/%1.png").arg(index)),
                               .pixelWidth = 600,
                               .pixelHeight = 300 + number % 1000,
                               .yInches = 10.0 * index}));
    }
    return made;
}

FoundStates findWorkspace(const QString& folder) {
    const auto content = platform::readFileIfThere(workspaceFile(folder), 1 << 20);
    if (!content) {
        return {};
    }
    const RollWorkspaceFile found = RollWorkspaceFile::decode(*content);
    found.validate();
    const auto number = static_cast<int>(found.gapInches);
    requireWhole(found == workspace(number), "workspace", number);
    return {number, 1};
}

SavedKind queueKind() {
    return {.name = "queue",
            .keepsAll = false,
            .open = [](const QString& folder) -> Save {
                return [store = LocalQueueStore(url(folder))](int number) { store.save(jobs(number)); };
            },
            .find = findQueue,
            .file = [](const QString& folder, int) { return folder + QStringLiteral("/queue.json"); }};
}

SavedKind presetKind() {
    return {.name = "preset",
            .keepsAll = false,
            .open = [](const QString& folder) -> Save {
                return [store = PresetStore(url(folder))](int number) { store.save(preset(number)); };
            },
            .find = findPresets,
            .file =
                [](const QString& folder, int number) {
                    return folder + u'/' + presetId(number).toString(QUuid::WithoutBraces) + QStringLiteral(".json");
                }};
}

SavedKind profileKind() {
    return {.name = "profile",
            .keepsAll = true,
            .open = [](const QString& folder) -> Save {
                const QString source = sourceFolder() + QStringLiteral("/%1.icc").arg(::getpid());
                return [store = PresetStore(url(folder)), source](int number) { importProfile(store, source, number); };
            },
            .find = findProfiles,
            .file = profileFile};
}

SavedKind journalKind() {
    return {.name = "journal",
            .keepsAll = true,
            .open = [](const QString& folder) -> Save {
                return [store = PrintJournalStore(url(folder))](int number) { store.append(observation(number)); };
            },
            .find = findObservations,
            .file = [](const QString& folder, int) { return folder + QStringLiteral("/print-observations.json"); }};
}

SavedKind baselineKind() {
    return {.name = "baseline",
            .keepsAll = false,
            .open = [](const QString& folder) -> Save {
                return
                    [store = ProtectedSettingsBaselineStore(url(folder))](int number) { store.save(snapshot(number)); };
            },
            .find = findBaseline,
            .file = [](const QString& folder,
                       int) { return folder + QStringLiteral("/settings-preservation-baseline.json"); }};
}

SavedKind workspaceKind() {
    return {.name = "workspace",
            .keepsAll = false,
            .open = [](const QString& folder) -> Save {
                platform::makeFolder(folder);
                return [folder](int number) {
                    platform::FileReplacer::replace(workspaceFile(folder), workspace(number).encode());
                };
            },
            .find = findWorkspace,
            .file = [](const QString& folder, int) { return workspaceFile(folder); }};
}

} // namespace

const std::vector<SavedKind>& savedKinds() {
    static_cast<void>(sourceFolder()); // made before processes are forked, so that there is one for all of them
    static const std::vector<SavedKind> kinds{queueKind(),   presetKind(),   profileKind(),
                                              journalKind(), baselineKind(), workspaceKind()};
    return kinds;
}

} // namespace orvex::test
