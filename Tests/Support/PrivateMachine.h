#pragma once

#include "TemporaryFolder.h"

#include <QByteArray>
#include <QString>

#include <sys/types.h>

#include <string>

/// A process that has the folders of the print system, and the network, to itself: it sees none of the machine's own
/// print system, and nothing that it does there is seen outside. The machine's folders come back when it has ended,
/// however it ended.
namespace orvex::test::PrivateMachine {

/// Leads this process and all that it will start into namespaces of their own, with loopback as the only network, and
/// puts empty folders over those of the print system and over /run, and a copy over the one of its backends. Needs the
/// rights of the superuser; without them nothing changes and refusal() says why. Call it once, before any other thread
/// exists.
void enter();

/// Why enter() failed, or that it was not called; empty if all went well.
[[nodiscard]] const std::string& refusal();

/// Throws std::runtime_error with the refusal unless enter() went well. To be called before anything that would change
/// the machine itself otherwise.
void require();

/// A path by which the machine's own folder can still be read, such as of "/etc/cups".
[[nodiscard]] QString outsideFolder(const QByteArray& folder);

} // namespace orvex::test::PrivateMachine

namespace orvex::test {

/// An empty folder over an existing one, for this process and those it starts, as long as this object lives.
class EmptiedFolder {
public:
    /// `mode` as in chmod; the folder belongs to the superuser and to this group.
    EmptiedFolder(const QByteArray& folder, mode_t mode, const char* group);
    EmptiedFolder(const EmptiedFolder&) = delete;
    EmptiedFolder& operator=(const EmptiedFolder&) = delete;
    ~EmptiedFolder();

private:
    QByteArray folder_;
};

/// Another program in place of a system tool, for this process and those it starts, as long as this object lives. A
/// tool's other names that are links to it are replaced with it.
class ReplacedTool {
public:
    /// The tool's absolute path, and the whole file that takes its place: a script with its #! line, or a binary.
    ReplacedTool(const QByteArray& tool, const QByteArray& program);
    ReplacedTool(const ReplacedTool&) = delete;
    ReplacedTool& operator=(const ReplacedTool&) = delete;
    ~ReplacedTool();

private:
    TemporaryFolder folder_;
    QByteArray tool_;
};

} // namespace orvex::test
