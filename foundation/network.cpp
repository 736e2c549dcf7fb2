// SNetwork over libcurl (HTTP), xdg-email (mail), GIO (opening addresses,
// starting the updater) and GDBus (logind's PowerOff).
#include "foundation/network.h"

#include <algorithm>
#include <atomic>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <curl/curl.h>
#include <gio/gio.h>
#include <mutex>
#include <string>
#include <sys/utsname.h>
#include <unistd.h>
#include <vector>

#include "foundation/file.h"

namespace {

const char* const AGENT = "TAVORA";
const char* const UPDATE_CAPTION = "Check for Updates";
const char* const TEXT_CONNECTION_FAILED = "Connection failed.";
const char* const TEXT_UP_TO_DATE = "You have the latest updates installed.";
const char* const TEXT_ASK_UPDATE = "Would you like to download and install the latest updates?";
const char* const SHUTDOWN_VARIABLE = "MELKORA_SHUTDOWN_COMMAND";
// How long logind may take to answer the power-off request.
constexpr int SHUTDOWN_CALL_TIMEOUT_MS = 10000;

std::atomic<SMessageBoxHook> messageBoxHook{nullptr};
std::atomic<SWorkAreaHook> workAreaHook{nullptr};
std::atomic<SUrlLauncher> urlLauncher{nullptr};

int ShowBox(void* window, const char* text, unsigned flags) {
    SMessageBoxHook hook = messageBoxHook.load();
    return hook != nullptr ? hook(window, text, UPDATE_CAPTION, flags) : 0;
}

bool IsEmpty(const char* text) {
    return text == nullptr || text[0] == 0;
}

// curl_global_init is not safe to race with itself: run it once.
bool StartCurl() {
    static std::once_flag once;
    static bool ready = false;
    std::call_once(once, [] { ready = curl_global_init(CURL_GLOBAL_DEFAULT) == CURLE_OK; });
    return ready;
}

// "scheme://..." with a scheme of letters, digits, "+", "-" or "." after a
// letter. Anything else (a local path) is never handed to curl, which would
// otherwise guess a host name from it.
bool HasScheme(const char* url) {
    if (IsEmpty(url) || !g_ascii_isalpha(url[0])) {
        return false;
    }
    const char* c = url + 1;
    while (g_ascii_isalnum(*c) || *c == '+' || *c == '-' || *c == '.') {
        ++c;
    }
    return strncmp(c, "://", 3) == 0;
}

// An easy handle with url and every limit set; null when curl fails.
struct Handle {
    CURL* curl = nullptr;
    curl_slist* headers = nullptr;

    Handle() = default;
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    ~Handle() {
        if (curl != nullptr) {
            curl_easy_cleanup(curl);
        }
        curl_slist_free_all(headers);
    }
};

// Progress callback: a raised cancel flag ends the transfer.
int CheckCancel(void* flag, curl_off_t, curl_off_t, curl_off_t, curl_off_t) {
    return static_cast<const std::atomic<bool>*>(flag)->load() ? 1 : 0;
}

bool OpenHandle(Handle& handle, const char* url, int connectMilliseconds, int stallSeconds,
                int totalMilliseconds, int64_t sizeLimitBytes, const char* agent,
                const std::atomic<bool>* cancelFlag) {
    if (!StartCurl()) {
        return false;
    }
    handle.curl = curl_easy_init();
    if (handle.curl == nullptr) {
        return false;
    }
    // Always ask the origin server, never a cache.
    handle.headers = curl_slist_append(nullptr, "Cache-Control: no-cache");
    handle.headers = curl_slist_append(handle.headers, "Pragma: no-cache");
    CURL* curl = handle.curl;
    curl_easy_setopt(curl, CURLOPT_URL, url);
    curl_easy_setopt(curl, CURLOPT_HTTPHEADER, handle.headers);
    curl_easy_setopt(curl, CURLOPT_USERAGENT, IsEmpty(agent) ? AGENT : agent);
    if (cancelFlag != nullptr) {
        curl_easy_setopt(curl, CURLOPT_XFERINFOFUNCTION, CheckCancel);
        curl_easy_setopt(curl, CURLOPT_XFERINFODATA, const_cast<std::atomic<bool>*>(cancelFlag));
        curl_easy_setopt(curl, CURLOPT_NOPROGRESS, 0L);
    }
    curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L); // safe on any thread
    curl_easy_setopt(curl, CURLOPT_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(curl, CURLOPT_REDIR_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(curl, CURLOPT_FOLLOWLOCATION, 1L);
    curl_easy_setopt(curl, CURLOPT_MAXREDIRS, static_cast<long>(SNetwork::MAX_REDIRECTS));
    curl_easy_setopt(curl, CURLOPT_SSL_VERIFYPEER, 1L);
    curl_easy_setopt(curl, CURLOPT_SSL_VERIFYHOST, 2L);
    curl_easy_setopt(curl, CURLOPT_FAILONERROR, 1L); // an error status is a failure
    curl_easy_setopt(curl, CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(connectMilliseconds));
    curl_easy_setopt(curl, CURLOPT_TIMEOUT_MS, static_cast<long>(totalMilliseconds));
    // Below 1 byte a second for stallSeconds means the server stalls.
    curl_easy_setopt(curl, CURLOPT_LOW_SPEED_LIMIT, 1L);
    curl_easy_setopt(curl, CURLOPT_LOW_SPEED_TIME, static_cast<long>(stallSeconds));
    // Refuses an announced length over the limit; the write callbacks also
    // count, for bodies sent without a length.
    curl_easy_setopt(curl, CURLOPT_MAXFILESIZE_LARGE, static_cast<curl_off_t>(sizeLimitBytes));
    return true;
}

// The page text: each PAGE_BLOCK_BYTES block of the body is kept up to its
// first zero byte.
struct PageState {
    std::string text;
    int64_t received = 0;
    int64_t sizeLimitBytes = 0;
    int blockFill = 0;     // bytes of the current block seen so far
    bool blockCut = false; // the current block held a zero byte
};

size_t WritePage(char* data, size_t size, size_t count, void* context) {
    auto* page = static_cast<PageState*>(context);
    size_t bytes = size * count;
    page->received += static_cast<int64_t>(bytes);
    if (page->received > page->sizeLimitBytes) {
        return 0; // too large: curl ends the transfer with an error
    }
    while (bytes > 0) {
        size_t take =
            std::min(bytes, static_cast<size_t>(SNetwork::PAGE_BLOCK_BYTES - page->blockFill));
        if (!page->blockCut) {
            const void* zero = memchr(data, 0, take);
            size_t keep =
                zero != nullptr ? static_cast<size_t>(static_cast<const char*>(zero) - data) : take;
            page->text.append(data, keep);
            page->blockCut = zero != nullptr;
        }
        data += take;
        bytes -= take;
        page->blockFill += static_cast<int>(take);
        if (page->blockFill == SNetwork::PAGE_BLOCK_BYTES) {
            page->blockFill = 0;
            page->blockCut = false;
        }
    }
    return size * count;
}

// The running program's file, from /proc; "" when unknown.
SString ReadProgramPath() {
    char buffer[4096];
    ssize_t length = readlink("/proc/self/exe", buffer, sizeof(buffer) - 1);
    if (length <= 0) {
        return SString("");
    }
    buffer[length] = 0;
    return SString(buffer);
}

// Runs argv (argv[0] a full path, or a name looked up on PATH) without a
// shell and waits; true when it ran and exited with status 0.
bool RunAndWait(const std::vector<const char*>& arguments) {
    std::vector<gchar*> argv;
    for (const char* argument : arguments) {
        argv.push_back(const_cast<gchar*>(argument));
    }
    argv.push_back(nullptr);
    gint status = 0;
    GError* error = nullptr;
    gboolean ran = g_spawn_sync(nullptr, argv.data(), nullptr, G_SPAWN_SEARCH_PATH, nullptr,
                                nullptr, nullptr, nullptr, &status, &error);
    if (error != nullptr) {
        g_error_free(error);
    }
    return ran != FALSE && g_spawn_check_wait_status(status, nullptr) != FALSE;
}

} // namespace

// State of one Download, reached from curl's write callback.
struct SNetwork::DownloadState {
    SNetwork* network = nullptr;
    CURL* curl = nullptr;
    SFile* target = nullptr;
    void* user = nullptr;
    size_t blockSize = 1;
    int64_t received = 0;
    int64_t sizeLimitBytes = 0;
};

void SetMessageBoxHook(SMessageBoxHook hook) {
    messageBoxHook.store(hook);
}

void SetWorkAreaHook(SWorkAreaHook hook) {
    workAreaHook.store(hook);
}

void SetUrlLauncher(SUrlLauncher launcher) {
    urlLauncher.store(launcher);
}

bool GetWorkArea(SRect* area) {
    if (area == nullptr) {
        return false;
    }
    SWorkAreaHook hook = workAreaHook.load();
    if (hook != nullptr && hook(area)) {
        return true;
    }
    *area = SRect();
    return false;
}

int GetWorkAreaLeft() {
    SRect area;
    GetWorkArea(&area);
    return area.left;
}

int GetWorkAreaRight() {
    SRect area;
    GetWorkArea(&area);
    return area.right;
}

int GetWorkAreaBottom() {
    SRect area;
    GetWorkArea(&area);
    return area.bottom;
}

int GetWorkAreaWidth() {
    SRect area;
    GetWorkArea(&area);
    return area.Width();
}

bool GetOsVersion(int* platform, int* major, int* minor) {
    int values[3] = {0, 0, 0};
    struct utsname name;
    bool read = uname(&name) == 0 && sscanf(name.release, "%d.%d", &values[1], &values[2]) == 2;
    if (read) {
        values[0] = OS_PLATFORM_LINUX;
    } else {
        values[1] = values[2] = 0;
    }
    if (platform != nullptr) {
        *platform = values[0];
    }
    if (major != nullptr) {
        *major = values[1];
    }
    if (minor != nullptr) {
        *minor = values[2];
    }
    return read;
}

int GetOsKindOf(int platform, int major, int minor) {
    struct Row {
        int platform, major, minor, kind;
    };
    static constexpr Row ROWS[] = {
        {1, 4, 0, 1}, {1, 4, 10, 3}, {1, 4, 90, 4}, {2, 4, 0, 2}, {2, 5, 0, 5},
        {2, 5, 1, 6}, {2, 5, 2, 6},  {2, 6, 0, 7},  {2, 7, 0, 8},
    };
    for (const Row& row : ROWS) {
        if (row.platform == platform && row.major == major && row.minor == minor) {
            return row.kind;
        }
    }
    return 255;
}

int GetOsKind() {
    int platform = 0;
    int major = 0;
    int minor = 0;
    if (!GetOsVersion(&platform, &major, &minor)) {
        return 0;
    }
    return GetOsKindOf(platform, major, minor);
}

SNetwork::SNetwork() : programPath(ReadProgramPath()) {}

SNetwork::~SNetwork() = default;

void SNetwork::SetLimits(int connectMilliseconds, int stallSeconds, int totalMilliseconds,
                         int64_t sizeLimitBytes) {
    limits.connectMilliseconds = std::max(connectMilliseconds, 1);
    limits.stallSeconds = std::max(stallSeconds, 1);
    limits.totalMilliseconds = std::max(totalMilliseconds, 1);
    limits.sizeLimitBytes = std::max<int64_t>(sizeLimitBytes, 1);
}

void SNetwork::SetUserAgent(const char* agent) {
    userAgent = agent != nullptr ? agent : "";
}

void SNetwork::SetCancelFlag(const std::atomic<bool>* flag) {
    cancelFlag = flag;
}

void SNetwork::SetProgramPath(const char* path) {
    programPath = path != nullptr ? path : "";
}

SString SNetwork::GetPage(const char* url, const char* query) {
    if (!HasScheme(url)) {
        return SString("");
    }
    SString address(url);
    if (!IsEmpty(query)) {
        address += "?";
        address += query;
    }
    Handle handle;
    if (!OpenHandle(handle, address.c_str(), limits.connectMilliseconds, limits.stallSeconds,
                    limits.totalMilliseconds, limits.sizeLimitBytes, userAgent.c_str(),
                    cancelFlag)) {
        return SString("");
    }
    PageState page;
    page.sizeLimitBytes = limits.sizeLimitBytes;
    curl_easy_setopt(handle.curl, CURLOPT_WRITEFUNCTION, WritePage);
    curl_easy_setopt(handle.curl, CURLOPT_WRITEDATA, &page);
    if (curl_easy_perform(handle.curl) != CURLE_OK) {
        return SString(""); // what was read is dropped
    }
    SString text;
    text.Assign(page.text.data(), static_cast<int>(std::min<size_t>(page.text.size(), INT_MAX)));
    return text;
}

size_t SNetwork::WriteDownload(char* data, size_t size, size_t count, void* context) {
    auto* state = static_cast<DownloadState*>(context);
    size_t bytes = size * count;
    state->received += static_cast<int64_t>(bytes);
    if (state->received > state->sizeLimitBytes) {
        return 0; // too large: curl ends the transfer with an error
    }
    curl_off_t length = -1;
    curl_easy_getinfo(state->curl, CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &length);
    unsigned total = length > 0 && length <= UINT_MAX ? static_cast<unsigned>(length) : 0;
    int64_t offset = state->received - static_cast<int64_t>(bytes);
    size_t done = 0;
    while (done < bytes) {
        size_t piece = std::min(bytes - done, state->blockSize);
        int answer = state->network->OnDownloadBlock(total, static_cast<unsigned>(offset),
                                                     static_cast<unsigned>(piece), data + done,
                                                     state->target, state->user);
        if (answer == NET_BLOCK_ABORT) {
            return 0;
        }
        if (answer != NET_BLOCK_SKIP &&
            state->target->Write(data + done, static_cast<int>(piece)) != static_cast<int>(piece)) {
            return 0; // the target is full or failing: a cut file is no download
        }
        done += piece;
        offset += static_cast<int64_t>(piece);
    }
    return bytes;
}

bool SNetwork::Download(SFile* target, const char* url, void* user, int blockSize) {
    if (target == nullptr) {
        OnDownloadEnd(NET_NO_TARGET, user);
        return false;
    }
    int status = NET_NO_SOURCE;
    if (HasScheme(url)) {
        Handle handle;
        if (!OpenHandle(handle, url, limits.connectMilliseconds, limits.stallSeconds,
                        limits.totalMilliseconds, limits.sizeLimitBytes, userAgent.c_str(),
                        cancelFlag)) {
            OnDownloadEnd(NET_NO_SESSION, user);
            return false;
        }
        DownloadState state;
        state.network = this;
        state.curl = handle.curl;
        state.target = target;
        state.user = user;
        state.blockSize = static_cast<size_t>(blockSize < 1 ? 1 : blockSize);
        state.sizeLimitBytes = limits.sizeLimitBytes;
        curl_easy_setopt(handle.curl, CURLOPT_WRITEFUNCTION, WriteDownload);
        curl_easy_setopt(handle.curl, CURLOPT_WRITEDATA, &state);
        CURLcode result = curl_easy_perform(handle.curl);
        long response = 0;
        curl_easy_getinfo(handle.curl, CURLINFO_RESPONSE_CODE, &response);
        if (result == CURLE_OK) {
            status = NET_OK;
        } else if (response >= 200 && response < 300) {
            // The address opened and the body went wrong on the way.
            status = NET_TRANSFER_FAILED;
        }
    }
    if (status == NET_NO_SOURCE && disk.IsFile(url) && CopyLocalFile(target, url) > 0) {
        status = NET_OK;
    }
    OnDownloadEnd(status, user);
    return status == NET_OK;
}

int SNetwork::CopyLocalFile(SFile* target, const char* path) {
    SFilePath source;
    if (!source.Open(path, false, false, true, false)) {
        return 0;
    }
    return target->AppendFrom(&source);
}

bool SNetwork::CheckForUpdates(void* window, const char* url, const char* currentVersion,
                               bool quiet, bool ask) {
    SString reply = GetPage(url, "");
    int next = 0;
    if (reply.IsEmpty() || reply.GetLine(0, &next) != "OK") {
        if (!quiet) {
            ShowBox(window, TEXT_CONNECTION_FAILED, NET_BOX_INFORMATION);
        }
        return false;
    }
    SString latest = reply.GetLine(next, &next);
    SString arguments = reply.GetLine(next, &next);
    SString lastArgument = reply.GetLine(next, &next);
    SString current(IsEmpty(currentVersion) ? "" : currentVersion);
    // Only versions of the running major series are offered, but any of
    // them, even an older one: that is how releases are withdrawn.
    bool upToDate = current.BeforeChar('.') != latest.BeforeChar('.') || latest == current;
    if (upToDate) {
        if (!quiet) {
            ShowBox(window, TEXT_UP_TO_DATE, NET_BOX_INFORMATION);
        }
        return false;
    }
    if (!ask) {
        return true;
    }
    if (ShowBox(window, TEXT_ASK_UPDATE, NET_BOX_YES_NO) != NET_ANSWER_YES) {
        return false;
    }
    return StartUpdater(arguments, lastArgument);
}

bool SNetwork::StartUpdater(const SString& arguments, const SString& lastArgument) {
    int slash = programPath.ReverseFind('/');
    if (slash < 0) {
        return false;
    }
    SString folder = slash == 0 ? SString("/") : programPath.Left(slash);
    SString name = programPath.Mid(slash + 1);
    SString updater = programPath.Left(slash + 1) + UPDATER_NAME;
    gchar** split = nullptr;
    int splitCount = 0;
    if (!arguments.IsEmpty() &&
        !g_shell_parse_argv(arguments.c_str(), &splitCount, &split, nullptr)) {
        return false;
    }
    std::vector<gchar*> argv;
    argv.push_back(const_cast<gchar*>(updater.c_str()));
    for (int i = 0; i < splitCount; ++i) {
        argv.push_back(split[i]);
    }
    argv.push_back(const_cast<gchar*>(lastArgument.c_str()));
    argv.push_back(const_cast<gchar*>(folder.c_str()));
    argv.push_back(const_cast<gchar*>(name.c_str()));
    argv.push_back(nullptr);
    // Without G_SPAWN_DO_NOT_REAP_CHILD GLib reaps the updater for us.
    gboolean started = g_spawn_async(folder.c_str(), argv.data(), nullptr, G_SPAWN_DEFAULT, nullptr,
                                     nullptr, nullptr, nullptr);
    g_strfreev(split);
    return started != FALSE;
}

bool SNetwork::Launch(const char* address) {
    SUrlLauncher launcher = urlLauncher.load();
    if (launcher != nullptr) {
        return launcher(address);
    }
    return disk.Run(address, "", false, false, 1);
}

bool SNetwork::OpenUrl(const char* url) {
    if (IsEmpty(url)) {
        return false;
    }
    return Launch(url);
}

namespace {

// xdg-email's arguments for a message; empty parts are left out.
std::vector<const char*> MailArguments(const char* program, const char* to, const char* subject,
                                       const char* body, const char* attachment) {
    std::vector<const char*> arguments = {program, "--utf8"};
    if (!IsEmpty(subject)) {
        arguments.insert(arguments.end(), {"--subject", subject});
    }
    if (!IsEmpty(body)) {
        arguments.insert(arguments.end(), {"--body", body});
    }
    if (!IsEmpty(attachment)) {
        arguments.insert(arguments.end(), {"--attach", attachment});
    }
    if (!IsEmpty(to)) {
        arguments.push_back(to);
    }
    return arguments;
}

// The end of an xdg-email started by SendMailAsync.
struct MailWatch {
    std::function<void(bool sent)> done;
};

void OnMailEnded(GPid pid, gint status, gpointer data) {
    auto* watch = static_cast<MailWatch*>(data);
    g_spawn_close_pid(pid);
    bool sent = g_spawn_check_wait_status(status, nullptr) != FALSE;
    if (watch->done) {
        watch->done(sent);
    }
}

void FreeMailWatch(gpointer data) {
    delete static_cast<MailWatch*>(data);
}

} // namespace

bool SNetwork::SendMail(const char* to, const char* subject, const char* body,
                        const char* attachment) {
    gchar* program = g_find_program_in_path("xdg-email");
    if (program == nullptr) {
        return false;
    }
    bool sent = RunAndWait(MailArguments(program, to, subject, body, attachment));
    g_free(program);
    return sent;
}

bool SNetwork::SendMailAsync(const char* to, const char* subject, const char* body,
                             const char* attachment, std::function<void(bool sent)> done) {
    gchar* program = g_find_program_in_path("xdg-email");
    if (program == nullptr) {
        return false;
    }
    std::vector<const char*> arguments = MailArguments(program, to, subject, body, attachment);
    std::vector<gchar*> argv;
    for (const char* argument : arguments) {
        argv.push_back(const_cast<gchar*>(argument));
    }
    argv.push_back(nullptr);
    GPid pid = 0;
    GError* error = nullptr;
    gboolean started = g_spawn_async(nullptr, argv.data(), nullptr, G_SPAWN_DO_NOT_REAP_CHILD,
                                     nullptr, nullptr, &pid, &error);
    g_free(program);
    if (error != nullptr) {
        g_error_free(error);
    }
    if (started == FALSE) {
        return false;
    }
    // Watched on the calling thread's context, which its message loop runs.
    GSource* source = g_child_watch_source_new(pid);
    g_source_set_callback(source,
                          reinterpret_cast<GSourceFunc>(reinterpret_cast<void (*)()>(OnMailEnded)),
                          new MailWatch{std::move(done)}, FreeMailWatch);
    GMainContext* context = g_main_context_get_thread_default();
    g_source_attach(source, context != nullptr ? context : g_main_context_default());
    g_source_unref(source);
    return true;
}

SString SNetwork::MakeMailto(const char* to, const char* subject, const char* body) {
    SString address("mailto:");
    if (!IsEmpty(to)) {
        address += to;
    }
    bool hasSubject = !IsEmpty(subject);
    bool hasBody = !IsEmpty(body);
    if (hasSubject || hasBody) {
        address += "?";
    }
    if (hasSubject) {
        address += "SUBJECT=";
        address += SString(subject).UrlEncode(false);
    }
    if (hasSubject && hasBody) {
        address += "&";
    }
    if (hasBody) {
        address += "BODY=";
        address += SString(body).UrlEncode(false);
    }
    return address;
}

bool SNetwork::SendMailto(const char* to, const char* subject, const char* body) {
    return Launch(MakeMailto(to, subject, body).c_str());
}

bool SNetwork::Shutdown() {
    const char* command = getenv(SHUTDOWN_VARIABLE);
    if (command != nullptr) {
        gchar** argv = nullptr;
        if (command[0] == 0 || !g_shell_parse_argv(command, nullptr, &argv, nullptr)) {
            return false;
        }
        std::vector<const char*> arguments(argv, argv + g_strv_length(argv));
        bool ran = RunAndWait(arguments);
        g_strfreev(argv);
        return ran;
    }
    GError* error = nullptr;
    GDBusConnection* bus = g_bus_get_sync(G_BUS_TYPE_SYSTEM, nullptr, &error);
    if (bus == nullptr) {
        g_clear_error(&error);
        return false;
    }
    // Not interactive: no password prompt; logind decides by its policy.
    GVariant* reply = g_dbus_connection_call_sync(
        bus, "org.freedesktop.login1", "/org/freedesktop/login1", "org.freedesktop.login1.Manager",
        "PowerOff", g_variant_new("(b)", FALSE), nullptr, G_DBUS_CALL_FLAGS_NONE,
        SHUTDOWN_CALL_TIMEOUT_MS, nullptr, &error);
    g_clear_error(&error);
    g_object_unref(bus);
    if (reply == nullptr) {
        return false;
    }
    g_variant_unref(reply);
    return true;
}

int SNetwork::OnDownloadBlock(unsigned /*total*/, unsigned /*offset*/, unsigned /*count*/,
                              const void* /*data*/, SFile* /*target*/, void* /*user*/) {
    return NET_BLOCK_WRITE;
}

void SNetwork::OnDownloadEnd(int /*status*/, void* /*user*/) {}
