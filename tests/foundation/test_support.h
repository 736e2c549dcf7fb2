// Helpers that several foundation tests share: an environment variable set
// for a scope, a temporary folder on a memory file system, and a writer
// process killed at a random moment.
#pragma once

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cctype>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

// Sets an environment variable (null unsets it) for the life of the object,
// then puts the old value back.
class ScopedEnv {
public:
    ScopedEnv(const char* name, const char* value) : name(name) {
        if (const char* old = std::getenv(name); old != nullptr) {
            saved = old;
        }
        value != nullptr ? setenv(name, value, 1) : unsetenv(name);
    }
    ~ScopedEnv() { saved ? setenv(name, saved->c_str(), 1) : unsetenv(name); }
    ScopedEnv(const ScopedEnv&) = delete;
    ScopedEnv& operator=(const ScopedEnv&) = delete;

private:
    const char* name;
    std::optional<std::string> saved;
};

// A temporary folder on a memory file system when the machine has one, else
// in the usual temporary folder. Crash tests use it: a write there costs no
// disk flush, so the killed writer gets through many writes in each round
// and the kill lands at every step of a write.
class MemoryTempDir {
public:
    MemoryTempDir() {
        std::error_code error;
        std::string base =
            std::filesystem::is_directory("/dev/shm", error) && access("/dev/shm", W_OK) == 0
                ? "/dev/shm"
                : std::filesystem::temp_directory_path().string();
        std::string pattern = base + "/melkora-XXXXXX";
        if (mkdtemp(pattern.data()) != nullptr) {
            path = pattern;
        }
    }
    ~MemoryTempDir() {
        std::error_code error;
        std::filesystem::remove_all(path, error);
    }
    MemoryTempDir(const MemoryTempDir&) = delete;
    MemoryTempDir& operator=(const MemoryTempDir&) = delete;

    const std::string& Path() const { return path; }
    std::string operator/(const std::string& name) const { return path + "/" + name; }

private:
    std::string path;
};

// A parameterised case's name field as a test name: letters and digits,
// "_" for the rest.
template <typename Info> std::string CaseName(const Info& info) {
    std::string name;
    for (const char* p = info.param.name; *p != 0; ++p) {
        name += std::isalnum(static_cast<unsigned char>(*p)) ? *p : '_';
    }
    return name;
}

// The values the crash tests write: "<n>/<n>/<n>". A value is whole when it
// reads so with the same n three times.
inline std::string Generation(uint64_t n) {
    std::string value = std::to_string(n);
    return value + "/" + value + "/" + value;
}
inline bool IsWholeValue(const std::string& value) {
    size_t first = value.find('/');
    if (first == 0 || value.find_first_not_of("0123456789") != first || first > 18) {
        return false;
    }
    return value == Generation(std::stoull(value.substr(0, first)));
}

// Runs writer in a child process and kills it with SIGKILL delayMicroseconds
// after the child first calls the ready function it is given (so that each
// round gets at least one write in). The writer never returns. False when
// the child cannot be started.
inline bool RunAndKill(const std::function<void(const std::function<void()>& ready)>& writer,
                       int delayMicroseconds) {
    int pipeEnds[2];
    if (pipe(pipeEnds) != 0) {
        return false;
    }
    pid_t child = fork();
    if (child < 0) {
        return false;
    }
    if (child == 0) {
        close(pipeEnds[0]);
        int readyEnd = pipeEnds[1];
        writer([&readyEnd] {
            if (readyEnd >= 0) {
                (void)write(readyEnd, "r", 1);
                close(readyEnd);
                readyEnd = -1;
            }
        });
        _exit(0);
    }
    close(pipeEnds[1]);
    char signal = 0;
    (void)read(pipeEnds[0], &signal, 1);
    close(pipeEnds[0]);
    usleep(useconds_t(delayMicroseconds));
    kill(child, SIGKILL);
    int status = 0;
    waitpid(child, &status, 0);
    return true;
}
