#include "PrivateMachine.h"

#include <fcntl.h>
#include <grp.h>
#include <net/if.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <map>
#include <stdexcept>
#include <system_error>

namespace orvex::test {

namespace {

struct State {
    std::string refusal = "the process has not entered private namespaces";
    std::map<QByteArray, int> outside{}; ///< a descriptor of each covered folder
};

State& state() {
    static State only;
    return only;
}

void mustSucceed(int result, const QByteArray& action) {
    if (result < 0) {
        throw std::system_error(errno, std::generic_category(), action.toStdString());
    }
}

void startLoopback() {
    const int socket = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    mustSucceed(socket, "socket");
    ifreq request{};
    request.ifr_name[0] = 'l';
    request.ifr_name[1] = 'o';
    int result = ::ioctl(socket, SIOCGIFFLAGS, &request);
    if (result == 0) {
        request.ifr_flags = static_cast<short>(request.ifr_flags | IFF_UP);
        result = ::ioctl(socket, SIOCSIFFLAGS, &request);
    }
    ::close(socket);
    mustSucceed(result, "starting loopback");
}

void mountEmpty(const QByteArray& folder, const QByteArray& options) {
    mustSucceed(::mount("tmpfs", folder.constData(), "tmpfs", MS_NOSUID, options.constData()), "mount " + folder);
}

void keepOutside(const QByteArray& folder) {
    const int descriptor = ::open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    mustSucceed(descriptor, "open " + folder);
    state().outside[folder] = descriptor;
}

void cover(const QByteArray& folder) {
    keepOutside(folder);
    mountEmpty(folder, "mode=0755");
}

/// The machine's backends stay usable, and others can be added.
void coverBackends() {
    const QByteArray backends = "/usr/lib/cups/backend";
    cover(backends);
    std::filesystem::copy(PrivateMachine::outsideFolder(backends).toStdString(), backends.toStdString(),
                          std::filesystem::copy_options::recursive | std::filesystem::copy_options::copy_symlinks);
}

void enterNamespaces() {
    mustSucceed(::unshare(CLONE_NEWNS | CLONE_NEWNET), "unshare");
    mustSucceed(::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr), "mount /");
    startLoopback();
    for (const char* folder : {"/etc/cups", "/var/spool/cups", "/var/cache/cups", "/var/log/cups"}) {
        cover(folder);
    }
    coverBackends();
    // All of it, since /run/cups only exists while a scheduler runs. This also hides the sockets of D-Bus and of the
    // search for network printers, which are no part of the network namespace.
    cover("/run");
    mustSucceed(::mkdir("/run/cups", 0755), "mkdir /run/cups");
}

} // namespace

namespace PrivateMachine {

void enter() {
    try {
        enterNamespaces();
        state().refusal.clear();
    } catch (const std::exception& error) {
        state().refusal = error.what();
    }
}

const std::string& refusal() {
    return state().refusal;
}

void require() {
    if (!refusal().empty()) {
        throw std::runtime_error("no private print system: " + refusal());
    }
}

QString outsideFolder(const QByteArray& folder) {
    return QStringLiteral("/proc/self/fd/%1/.").arg(state().outside.at(folder));
}

} // namespace PrivateMachine

EmptiedFolder::EmptiedFolder(const QByteArray& folder, mode_t mode, const char* group) : folder_(folder) {
    PrivateMachine::require();
    const struct group* found = ::getgrnam(group);
    if (found == nullptr) {
        throw std::runtime_error(std::string("no group ") + group);
    }
    mountEmpty(folder, "mode=" + QByteArray::number(mode, 8) + ",gid=" + QByteArray::number(found->gr_gid));
}

EmptiedFolder::~EmptiedFolder() {
    ::umount2(folder_.constData(), MNT_DETACH); // even if a process that is just ending still uses it
}

ReplacedTool::ReplacedTool(const QByteArray& tool, const QByteArray& program) : tool_(tool) {
    PrivateMachine::require();
    const QByteArray file = QFile::encodeName(folder_.write(QStringLiteral("program"), program));
    mustSucceed(::chmod(file.constData(), 0755), "chmod " + file);
    mustSucceed(::mount(file.constData(), tool.constData(), nullptr, MS_BIND, nullptr), "mount " + tool);
}

ReplacedTool::~ReplacedTool() {
    ::umount2(tool_.constData(), MNT_DETACH);
}

} // namespace orvex::test
