#include "app/doc/CrashReport.h"

#include "app/doc/Profile.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

// Connects without blocking longer than `timeoutMs`; -1 on failure.
int connectWithTimeout(const addrinfo& address, int timeoutMs) {
    int fd = socket(address.ai_family, address.ai_socktype | SOCK_CLOEXEC, address.ai_protocol);
    if (fd < 0) return -1;
    int flags = fcntl(fd, F_GETFL, 0);
    fcntl(fd, F_SETFL, flags | O_NONBLOCK);
    int rc = connect(fd, address.ai_addr, address.ai_addrlen);
    if (rc != 0 && errno == EINPROGRESS) {
        pollfd waiter{fd, POLLOUT, 0};
        rc = poll(&waiter, 1, timeoutMs) == 1 ? 0 : -1;
        int error = 0;
        socklen_t length = sizeof error;
        if (rc == 0 && (getsockopt(fd, SOL_SOCKET, SO_ERROR, &error, &length) != 0 || error))
            rc = -1;
    }
    if (rc != 0) {
        close(fd);
        return -1;
    }
    return fd;
}

bool sendAll(int fd, const char* data, size_t length, int timeoutMs) {
    while (length > 0) {
        pollfd waiter{fd, POLLOUT, 0};
        if (poll(&waiter, 1, timeoutMs) != 1) return false;
        ssize_t sent = send(fd, data, length, MSG_NOSIGNAL | MSG_DONTWAIT);
        if (sent < 0 && (errno == EAGAIN || errno == EINTR)) continue;
        if (sent <= 0) return false;
        data += sent;
        length -= static_cast<size_t>(sent);
    }
    return true;
}

} // namespace

bool SendCrashReport(const std::string& host, int port, const std::string& line, int timeoutMs) {
    if (host.empty() || port <= 0 || port > 65535) return false;
    // The line travels in a zero-filled 256-byte buffer: at most 255
    // characters, and never the terminating zero.
    char buffer[256] = {};
    strncpy(buffer, line.c_str(), sizeof buffer - 1);
    const size_t length = strlen(buffer);

    addrinfo hints{};
    hints.ai_family = AF_UNSPEC;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    std::string service = std::to_string(port);
    if (getaddrinfo(host.c_str(), service.c_str(), &hints, &found) != 0 || !found) return false;
    bool sent = false;
    for (addrinfo* a = found; a && !sent; a = a->ai_next) {
        int fd = connectWithTimeout(*a, timeoutMs);
        if (fd < 0) continue;
        sent = sendAll(fd, buffer, length, timeoutMs);
        close(fd);
    }
    freeaddrinfo(found);
    return sent;
}

bool ReportCrashLine(const CProfile& profile, const std::string& line) {
    if (!profile.GetInt("CZy", "m_CrashReport", 0)) return false;
    std::string host = profile.GetString("CZy", "m_CrashReportHost", "");
    return SendCrashReport(host, kCrashReportPort, line);
}
