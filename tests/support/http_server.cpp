// TestHttpServer: blocking sockets, poll with a wake-up pipe for stopping.
#include "support/http_server.h"

#include <arpa/inet.h>
#include <cerrno>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

// A client that sends no complete request head within this time is dropped.
constexpr int REQUEST_TIMEOUT_MS = 5000;
// Request heads longer than this are cut off.
constexpr size_t MAX_REQUEST_BYTES = 16384;

void SendAll(int fd, const std::string& bytes) {
    size_t sent = 0;
    while (sent < bytes.size()) {
        ssize_t count = send(fd, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
        if (count <= 0) {
            return; // the client went away
        }
        sent += static_cast<size_t>(count);
    }
}

} // namespace

TestHttpServer::Response TestHttpServer::Ok(const std::string& body, bool withLength) {
    std::string head = "HTTP/1.1 200 OK\r\nContent-Type: text/plain\r\nConnection: close\r\n";
    if (withLength) {
        head += "Content-Length: " + std::to_string(body.size()) + "\r\n";
    }
    return Response{head + "\r\n" + body, false};
}

TestHttpServer::Response TestHttpServer::Status(int code, const char* reason) {
    return Response{"HTTP/1.1 " + std::to_string(code) + " " + reason +
                        "\r\nContent-Length: 0\r\nConnection: close\r\n\r\n",
                    false};
}

TestHttpServer::Response TestHttpServer::Redirect(const std::string& location) {
    return Response{"HTTP/1.1 302 Found\r\nLocation: " + location +
                        "\r\nContent-Length: 0\r\nConnection: close\r\n\r\n",
                    false};
}

TestHttpServer::Response TestHttpServer::Stalled(const std::string& part, int length) {
    return Response{"HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(length) +
                        "\r\nConnection: close\r\n\r\n" + part,
                    true};
}

TestHttpServer::~TestHttpServer() {
    Stop();
}

void TestHttpServer::Route(const std::string& path, Response response) {
    std::lock_guard<std::mutex> lock(mutex);
    routes[path] = std::move(response);
}

bool TestHttpServer::Start() {
    if (thread.joinable()) {
        return true;
    }
    int pipeFds[2];
    if (pipe2(pipeFds, O_CLOEXEC) != 0) {
        return false;
    }
    wakeRead = pipeFds[0];
    wakeWrite = pipeFds[1];
    listenFd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = 0;
    socklen_t size = sizeof(address);
    if (listenFd < 0 || bind(listenFd, reinterpret_cast<sockaddr*>(&address), size) != 0 ||
        listen(listenFd, 8) != 0 ||
        getsockname(listenFd, reinterpret_cast<sockaddr*>(&address), &size) != 0) {
        Stop();
        return false;
    }
    port = ntohs(address.sin_port);
    thread = std::thread([this] { Serve(); });
    return true;
}

void TestHttpServer::Stop() {
    if (thread.joinable()) {
        char wake = 'x';
        ssize_t written = write(wakeWrite, &wake, 1);
        (void)written;
        thread.join();
    }
    for (int* fd : {&listenFd, &wakeRead, &wakeWrite}) {
        if (*fd >= 0) {
            close(*fd);
            *fd = -1;
        }
    }
}

std::string TestHttpServer::Url(const std::string& pathAndQuery) const {
    return "http://127.0.0.1:" + std::to_string(port) + pathAndQuery;
}

std::vector<std::string> TestHttpServer::Targets() const {
    std::lock_guard<std::mutex> lock(mutex);
    return targets;
}

std::string TestHttpServer::LastHeaders() const {
    std::lock_guard<std::mutex> lock(mutex);
    return lastHeaders;
}

bool TestHttpServer::WaitReadable(int fd, int timeoutMilliseconds) const {
    pollfd fds[2] = {{fd, POLLIN, 0}, {wakeRead, POLLIN, 0}};
    int ready;
    do {
        ready = poll(fds, 2, timeoutMilliseconds);
    } while (ready < 0 && errno == EINTR);
    return ready > 0 && fds[1].revents == 0 && fds[0].revents != 0;
}

void TestHttpServer::Serve() {
    while (WaitReadable(listenFd, -1)) {
        int client = accept4(listenFd, nullptr, nullptr, SOCK_CLOEXEC);
        if (client < 0) {
            continue;
        }
        Answer(client);
        close(client);
    }
}

void TestHttpServer::Answer(int client) {
    std::string request;
    char buffer[4096];
    while (request.find("\r\n\r\n") == std::string::npos && request.size() < MAX_REQUEST_BYTES) {
        if (!WaitReadable(client, REQUEST_TIMEOUT_MS)) {
            return;
        }
        ssize_t count = recv(client, buffer, sizeof(buffer), 0);
        if (count <= 0) {
            return;
        }
        request.append(buffer, static_cast<size_t>(count));
    }
    // "GET /path?query HTTP/1.1"
    size_t lineEnd = request.find("\r\n");
    size_t targetStart = request.find(' ');
    size_t targetEnd =
        targetStart == std::string::npos ? std::string::npos : request.find(' ', targetStart + 1);
    if (targetEnd == std::string::npos || targetEnd > lineEnd) {
        return;
    }
    std::string target = request.substr(targetStart + 1, targetEnd - targetStart - 1);
    std::string path = target.substr(0, target.find('?'));
    Response response = Status(404, "Not Found");
    {
        std::lock_guard<std::mutex> lock(mutex);
        targets.push_back(target);
        lastHeaders = request.substr(lineEnd + 2);
        auto found = routes.find(path);
        if (found != routes.end()) {
            response = found->second;
        }
    }
    SendAll(client, response.bytes);
    if (response.stall) {
        // Hold the line until the client closes it (a read of 0) or Stop.
        while (WaitReadable(client, -1) && recv(client, buffer, sizeof(buffer), 0) > 0) {
        }
    }
}
