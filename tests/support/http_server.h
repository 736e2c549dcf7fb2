// TestHttpServer: a tiny HTTP server on 127.0.0.1 with a port the system
// picks, serving canned responses by path, for the tests of the network
// code. One thread serves one connection at a time, and every response
// closes its connection. Stop (or the destructor) wakes and joins the
// thread.
#pragma once

#include <mutex>
#include <string>
#include <thread>
#include <unordered_map>
#include <vector>

class TestHttpServer {
public:
    // The bytes sent back as they are. With stall, the server then keeps
    // the connection open without sending more, until the client gives up
    // or the server stops.
    struct Response {
        std::string bytes;
        bool stall = false;
    };

    // "200 OK" with the body, announcing its length or, without withLength,
    // ending it by closing the connection.
    static Response Ok(const std::string& body, bool withLength = true);
    // A status with an empty body, "404 Not Found" for instance.
    static Response Status(int code, const char* reason);
    // "302 Found" to location, which may be a path on this server.
    static Response Redirect(const std::string& location);
    // Headers announcing length bytes, then only the first part of them.
    static Response Stalled(const std::string& part, int length);

    TestHttpServer() = default;
    ~TestHttpServer();
    TestHttpServer(const TestHttpServer&) = delete;
    TestHttpServer& operator=(const TestHttpServer&) = delete;

    // Serves response for path (without the query). Unknown paths get 404.
    void Route(const std::string& path, Response response);
    // Listens and starts the thread; false when the socket fails.
    bool Start();
    void Stop();

    int Port() const { return port; }
    // "http://127.0.0.1:<port>" followed by pathAndQuery.
    std::string Url(const std::string& pathAndQuery) const;
    // The request targets received, in order ("/check.php?id=melkora").
    std::vector<std::string> Targets() const;
    // The header lines of the last request ("User-Agent: ..." and so on).
    std::string LastHeaders() const;

private:
    void Serve();
    void Answer(int client);
    // Waits until fd is readable or the server is asked to stop; false
    // when stopping or after timeoutMilliseconds.
    bool WaitReadable(int fd, int timeoutMilliseconds) const;

    mutable std::mutex mutex; // guards routes, targets and lastHeaders
    std::unordered_map<std::string, Response> routes;
    std::vector<std::string> targets;
    std::string lastHeaders;
    int listenFd = -1;
    int wakeRead = -1;
    int wakeWrite = -1;
    int port = 0;
    std::thread thread;
};
