// SNetwork: what the program needs of the internet and of the desktop:
// blocking HTTP reads, mail through the user's mail client or a "mailto:"
// address, the update check, opening addresses, and the machine's shutdown.
//
// Every call blocks its thread; a caller that must stay responsive runs it
// on a worker thread. Objects share nothing, so objects on separate threads
// do not interact. Every transfer has a connect timeout, a stall timeout, a
// total timeout and a size limit, follows at most MAX_REDIRECTS redirects,
// speaks only http and https, and checks https certificates.
#pragma once

#include <functional>

#include <atomic>
#include <cstdint>

#include "foundation/disk.h"
#include "foundation/geometry.h"
#include "foundation/string.h"

class SFile;

// Status codes of Download, passed to OnDownloadEnd.
constexpr int NET_OK = 0;              // finished
constexpr int NET_NO_TARGET = 1;       // the target was null
constexpr int NET_NO_SESSION = 2;      // the transfer library could not start
constexpr int NET_NO_SOURCE = 4;       // the address could not be opened, nor read as a local file
constexpr int NET_TRANSFER_FAILED = 5; // failed, aborted, too large or cut short

// Answers of OnDownloadBlock.
constexpr int NET_BLOCK_WRITE = 0; // write the block to the target
constexpr int NET_BLOCK_ABORT = 1; // stop the transfer: status NET_TRANSFER_FAILED
constexpr int NET_BLOCK_SKIP = 2;  // do not write this block, but go on

// Message boxes of the update check: flags and the answer "yes".
constexpr unsigned NET_BOX_INFORMATION = 64; // OK button, information icon
constexpr unsigned NET_BOX_YES_NO = 36;      // Yes and No buttons, question icon
constexpr int NET_ANSWER_YES = 6;

// Hooks the window layer installs; until then the network layer has no
// display. Each may be set to null again. Thread-safe.
// Shows a modal message box owned by window (may be null) and returns the
// button pressed.
using SMessageBoxHook = int (*)(void* window, const char* text, const char* caption,
                                unsigned flags);
// Fills the part of the screen not taken by panels and docks; false when
// there is no screen.
using SWorkAreaHook = bool (*)(SRect* area);
// Hands an address (web, "mailto:") to the desktop; replaces SDisk::Run for
// OpenUrl and SendMailto, so that tests can watch what would be opened.
using SUrlLauncher = bool (*)(const char* address);
void SetMessageBoxHook(SMessageBoxHook hook);
void SetWorkAreaHook(SWorkAreaHook hook);
void SetUrlLauncher(SUrlLauncher launcher);

// The work area of the screen. On failure (no screen) the rectangle is
// zeroed and the result is false; the single-edge forms then give 0.
bool GetWorkArea(SRect* area);
int GetWorkAreaLeft();
int GetWorkAreaRight();
int GetWorkAreaBottom();
int GetWorkAreaWidth();

// The system's version: platform OS_PLATFORM_LINUX and the kernel's release
// numbers ("6.1.0-13-amd64" gives 6 and 1). False (and zeros) when it
// cannot be read.
constexpr int OS_PLATFORM_LINUX = 3;
bool GetOsVersion(int* platform, int* major, int* minor);
// The kind number of a version: 1 to 8 for the Windows versions the
// program once told apart, 255 for any other system (Linux included), and 0
// when the version cannot be read.
int GetOsKind();
int GetOsKindOf(int platform, int major, int minor);

class SNetwork {
public:
    // Limits of every transfer, changeable per object with SetLimits.
    static constexpr int DEFAULT_CONNECT_TIMEOUT_MS = 15000;
    // A transfer that moves no byte for this long is given up.
    static constexpr int DEFAULT_STALL_TIMEOUT_SECONDS = 30;
    static constexpr int DEFAULT_TOTAL_TIMEOUT_MS = 300000;
    static constexpr int64_t DEFAULT_SIZE_LIMIT_BYTES = 64 * 1024 * 1024;
    static constexpr int MAX_REDIRECTS = 5;
    // GetPage keeps the text of each block of this many bytes up to the
    // block's first zero byte.
    static constexpr int PAGE_BLOCK_BYTES = 512;
    // The program that applies an update, in the running program's folder.
    static constexpr const char* UPDATER_NAME = "melkora-update";

    SNetwork();
    virtual ~SNetwork();

    // Limits: milliseconds to connect, whole seconds without data, and
    // milliseconds for the whole transfer (each at least 1), and the largest
    // body accepted, in bytes (at least 1).
    void SetLimits(int connectMilliseconds, int stallSeconds, int totalMilliseconds,
                   int64_t sizeLimitBytes);
    // The running program's file, whose folder holds the updater; the
    // default is the executable of this process.
    void SetProgramPath(const char* path);
    // The User-Agent header of every request; null or "" restores the
    // default.
    void SetUserAgent(const char* agent);
    // A flag another thread may raise to end this object's transfers: a
    // transfer running then fails within about a second, even while
    // the server sends nothing. Null (the default) means no flag; the flag
    // must outlive the transfers.
    void SetCancelFlag(const std::atomic<bool>* flag);

    // HTTP. The text of the page at url, with "?" and the query appended
    // when the query is not empty; "" when the address fails, the server
    // answers with an error status, or anything goes wrong on the way.
    SString GetPage(const char* url, const char* query);
    // Streams the body at url into target through OnDownloadBlock, in blocks
    // of at most blockSize bytes (below 1 counts as 1); memory held is one
    // transfer buffer. An address that cannot be opened is tried as a local
    // file and copied whole. OnDownloadEnd is called exactly once with the
    // status; the result is true for NET_OK.
    bool Download(SFile* target, const char* url, void* user, int blockSize);
    // Asks the update server. Its reply is four lines (CR LF or LF): "OK",
    // the latest version, the updater's first arguments (split as a shell
    // would) and its last argument. The program is up to date when the
    // versions' parts before their first "." differ, or when the latest
    // equals currentVersion exactly (so another major series is never
    // offered, and any other version of the same series is). Unless quiet,
    // a failure or "up to date" shows a box. True when an update is
    // available and ask is false, or when the user said yes and the updater
    // started; the caller then ends the program at once.
    bool CheckForUpdates(void* window, const char* url, const char* currentVersion, bool quiet,
                         bool ask);

    // The desktop.
    // Opens an address or a document with the desktop's default program.
    bool OpenUrl(const char* url);
    // Hands a message to the user's mail client through xdg-email, where
    // the user sees and sends it; waits until xdg-email returns. Empty or
    // null parts are left out. False when xdg-email is not on PATH, cannot
    // start or reports failure.
    bool SendMail(const char* to, const char* subject, const char* body, const char* attachment);
    // The same without waiting: xdg-email runs on its own, and done is
    // called with its result on the calling thread, from its GLib context
    // (the thread's message loop), when it has ended. False, and done is
    // never called, when xdg-email is not on PATH or cannot start.
    bool SendMailAsync(const char* to, const char* subject, const char* body,
                       const char* attachment, std::function<void(bool sent)> done);
    // Opens "mailto:to?SUBJECT=...&BODY=..." (the parts URL-encoded, "?" and
    // "&" only as needed).
    bool SendMailto(const char* to, const char* subject, const char* body);
    // The "mailto:" address SendMailto opens.
    static SString MakeMailto(const char* to, const char* subject, const char* body);
    // Powers the machine off through logind. When MELKORA_SHUTDOWN_COMMAND
    // is set, that command (split as a shell would, run without a shell) is
    // run instead and waited for; set but empty, nothing happens. True when
    // the request was accepted.
    bool Shutdown();

    // Download notifications, on the calling thread. total is the length
    // the server announced (0 when none), offset the position of this block
    // in the body. The answer is one of NET_BLOCK_*; the default writes.
    virtual int OnDownloadBlock(unsigned total, unsigned offset, unsigned count, const void* data,
                                SFile* target, void* user);
    virtual void OnDownloadEnd(int status, void* user);

    SDisk disk;

private:
    struct Limits {
        int connectMilliseconds = DEFAULT_CONNECT_TIMEOUT_MS;
        int stallSeconds = DEFAULT_STALL_TIMEOUT_SECONDS;
        int totalMilliseconds = DEFAULT_TOTAL_TIMEOUT_MS;
        int64_t sizeLimitBytes = DEFAULT_SIZE_LIMIT_BYTES;
    };
    struct DownloadState;

    // Copies a local file into target: the fallback of Download.
    int CopyLocalFile(SFile* target, const char* path);
    // Starts the updater with the reply's arguments, without waiting.
    bool StartUpdater(const SString& arguments, const SString& lastArgument);
    static size_t WriteDownload(char* data, size_t size, size_t count, void* state);
    bool Launch(const char* address);

    Limits limits;
    SString programPath;
    SString userAgent;
    const std::atomic<bool>* cancelFlag = nullptr;
};
