#include "SilentScheduler.h"

#include <netinet/in.h>
#include <poll.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <stdexcept>
#include <system_error>

namespace orvex::test {

namespace {

constexpr sockaddr_un schedulerSocket{.sun_family = AF_UNIX, .sun_path = "/run/cups/cups.sock"};

/// The port 631 of loopback.
sockaddr_in schedulerPort() {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(631);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

template <typename Address>
SilentSocket silentSocket(const Address& address) {
    return {reinterpret_cast<const sockaddr*>(&address), sizeof address};
}

} // namespace

SilentSocket::SilentSocket(const sockaddr* address, socklen_t addressBytes)
    : descriptor_(::socket(address->sa_family, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    constexpr int waitingClients = 64; // the kernel connects them without being asked to
    if (::bind(descriptor_, address, addressBytes) != 0 || ::listen(descriptor_, waitingClients) != 0) {
        const int error = errno;
        ::close(descriptor_);
        throw std::system_error(error, std::generic_category(), "a silent socket");
    }
}

SilentSocket::~SilentSocket() {
    ::close(descriptor_);
}

SilentScheduler::SilentScheduler() : socket_(silentSocket(schedulerSocket)), port_(silentSocket(schedulerPort())) {}

void SilentScheduler::waitForClient() {
    std::array<pollfd, 2> sockets{pollfd{.fd = socket_.descriptor(), .events = POLLIN, .revents = 0},
                                  pollfd{.fd = port_.descriptor(), .events = POLLIN, .revents = 0}};
    constexpr int patienceMilliseconds = 60'000;
    if (::poll(sockets.data(), sockets.size(), patienceMilliseconds) <= 0) {
        throw std::runtime_error("nobody connected to the silent scheduler");
    }
}

} // namespace orvex::test
