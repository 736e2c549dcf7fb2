// A FIFO for tests of code that must never open one to read (a read blocks
// until a writer comes). A thread watches it until the object goes: when
// someone has it open for reading, the watch opens it for writing and closes
// it again, which ends the reader's wait with an empty read, so a fault
// shows as WasOpened() rather than as a hung test.
#pragma once

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <string>
#include <thread>

class FifoWatch {
public:
    explicit FifoWatch(std::string path) : path(std::move(path)) {
        made = mkfifo(this->path.c_str(), 0644) == 0;
        watcher = std::thread([this] {
            while (!done.load()) {
                // Succeeds only while a reader holds the FIFO open.
                int fd = open(this->path.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
                if (fd >= 0) {
                    opened = true;
                    close(fd);
                }
                std::this_thread::sleep_for(std::chrono::milliseconds(5));
            }
        });
    }
    ~FifoWatch() {
        done = true;
        watcher.join();
    }
    FifoWatch(const FifoWatch&) = delete;
    FifoWatch& operator=(const FifoWatch&) = delete;

    bool IsMade() const { return made; }
    bool WasOpened() const { return opened.load(); }
    const std::string& Path() const { return path; }

private:
    std::string path;
    bool made = false;
    std::atomic<bool> done{false};
    std::atomic<bool> opened{false};
    std::thread watcher;
};
