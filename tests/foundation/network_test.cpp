// Every transfer here goes to a server on 127.0.0.1 that the test starts;
// mail, shutdown and the updater go to recording scripts; nothing opens a
// browser.
#include "foundation/network.h"

#include <atomic>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <sstream>
#include <string>
#include <sys/stat.h>
#include <thread>
#include <tuple>
#include <vector>

#include "foundation/file.h"
#include "foundation/message.h"
#include "support/http_server.h"
#include "support/temp_dir.h"
#include "test_support.h"

namespace {

// Short limits, so that a stalled server costs a test about a second.
constexpr int TEST_CONNECT_MS = 1000;
constexpr int TEST_STALL_SECONDS = 1;
constexpr int TEST_TOTAL_MS = 2000;
constexpr int64_t TEST_SIZE_LIMIT = 64 * 1024;

struct BlockCall {
    unsigned total, offset, count;
};

// Records every notification and answers each block from a script.
class RecordingNetwork : public SNetwork {
public:
    RecordingNetwork() {
        SetLimits(TEST_CONNECT_MS, TEST_STALL_SECONDS, TEST_TOTAL_MS, TEST_SIZE_LIMIT);
    }

    int OnDownloadBlock(unsigned total, unsigned offset, unsigned count, const void* /*data*/,
                        SFile* /*target*/, void* user) override {
        blocks.push_back({total, offset, count});
        lastUser = user;
        return answer;
    }
    void OnDownloadEnd(int status, void* user) override {
        statuses.push_back(status);
        lastUser = user;
    }

    int answer = NET_BLOCK_WRITE;
    std::vector<BlockCall> blocks;
    std::vector<int> statuses;
    void* lastUser = nullptr;
};

std::string Contents(const SFileMem& file) {
    return file.GetSize() > 0 ? std::string(file.GetData(), static_cast<size_t>(file.GetSize()))
                              : std::string();
}

std::string Pattern(size_t size) {
    std::string text(size, 'a');
    for (size_t i = 0; i < size; ++i) {
        text[i] = static_cast<char>('a' + i % 26);
    }
    return text;
}

// A port on 127.0.0.1 where nothing listens.
std::string ClosedPortUrl() {
    TestHttpServer server;
    EXPECT_TRUE(server.Start());
    std::string url = server.Url("/nothing");
    server.Stop();
    return url;
}

// A shell script that writes its working folder and arguments, one a line,
// to record (through a temporary name, so a reader never sees half).
std::string WriteRecorder(const TempDir& dir, const std::string& name, const std::string& record) {
    std::string script = "#!/bin/sh\n{ pwd; printf '%s\\n' \"$@\"; } > '" + record +
                         ".part' && /bin/mv '" + record + ".part' '" + record + "'\n";
    std::string path = dir.Write(name, script);
    chmod(path.c_str(), 0755);
    return path;
}

// The recorded lines, waiting up to five seconds for a program started
// without waiting.
std::vector<std::string> ReadRecord(const std::string& record, bool wait) {
    auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    std::string text = TempDir::Read(record);
    while (wait && text.empty() && std::chrono::steady_clock::now() < deadline) {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        text = TempDir::Read(record);
    }
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        lines.push_back(line);
    }
    return lines;
}

class NetworkTest : public ::testing::Test {
protected:
    void SetUp() override {
        // A proxy set for the machine must not see the local server.
        for (const char* name :
             {"http_proxy", "HTTP_PROXY", "https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY"}) {
            proxies.emplace_back(new ScopedEnv(name, nullptr));
        }
        ASSERT_TRUE(server.Start());
    }
    void TearDown() override {
        server.Stop();
        proxies.clear();
    }

    TestHttpServer server;
    RecordingNetwork network;
    std::vector<std::unique_ptr<ScopedEnv>> proxies;
};

} // namespace

using NetworkGetPage = NetworkTest;

TEST_F(NetworkGetPage, ReadsBodiesWithAndWithoutLengthUpToTheLimitAndThroughRedirects) {
    std::string body = Pattern(3000);
    server.Route("/length", TestHttpServer::Ok(body, true));
    server.Route("/close", TestHttpServer::Ok(body, false));
    server.Route("/limit", TestHttpServer::Ok(Pattern(TEST_SIZE_LIMIT), false));
    server.Route("/a", TestHttpServer::Redirect("/b"));
    server.Route("/b", TestHttpServer::Redirect("/c"));
    server.Route("/c", TestHttpServer::Ok("arrived"));
    EXPECT_EQ(std::string(network.GetPage(server.Url("/length").c_str(), "").c_str()), body);
    EXPECT_EQ(std::string(network.GetPage(server.Url("/close").c_str(), nullptr).c_str()), body);
    EXPECT_EQ(network.GetPage(server.Url("/limit").c_str(), "").GetLength(), TEST_SIZE_LIMIT);
    EXPECT_STREQ(network.GetPage(server.Url("/a").c_str(), "").c_str(), "arrived");
}

TEST_F(NetworkGetPage, AnAgentOfItsOwnUntilClearedAndACancelFlagRefuses) {
    server.Route("/page", TestHttpServer::Ok("text"));
    network.SetUserAgent("Example/2.0 (+https://example.org)");
    EXPECT_STREQ(network.GetPage(server.Url("/page").c_str(), "").c_str(), "text");
    EXPECT_NE(server.LastHeaders().find("User-Agent: Example/2.0 (+https://example.org)\r\n"),
              std::string::npos);
    network.SetUserAgent("");
    EXPECT_STREQ(network.GetPage(server.Url("/page").c_str(), "").c_str(), "text");
    EXPECT_NE(server.LastHeaders().find("User-Agent: TAVORA\r\n"), std::string::npos);
    std::atomic<bool> cancelled{true};
    network.SetCancelFlag(&cancelled);
    EXPECT_STREQ(network.GetPage(server.Url("/page").c_str(), "").c_str(), "");
    cancelled = false;
    EXPECT_STREQ(network.GetPage(server.Url("/page").c_str(), "").c_str(), "text");
    network.SetCancelFlag(nullptr);
}

TEST_F(NetworkGetPage, AppendsTheQueryAndSendsTheAgent) {
    server.Route("/search", TestHttpServer::Ok("found"));
    EXPECT_STREQ(network.GetPage(server.Url("/search").c_str(), "q=abba&n=1").c_str(), "found");
    EXPECT_STREQ(network.GetPage(server.Url("/search").c_str(), "").c_str(), "found");
    EXPECT_EQ(server.Targets(), (std::vector<std::string>{"/search?q=abba&n=1", "/search"}));
    EXPECT_NE(server.LastHeaders().find("User-Agent: TAVORA\r\n"), std::string::npos);
    // A zero byte ends the text of its block of 512 only.
    std::string body =
        std::string(100, 'a') + '\0' + std::string(411, 'b') + std::string(512, 'c') + "tail";
    server.Route("/zero", TestHttpServer::Ok(body));
    std::string page = network.GetPage(server.Url("/zero").c_str(), "").c_str();
    EXPECT_EQ(page, std::string(100, 'a') + std::string(512, 'c') + "tail");
}

TEST_F(NetworkGetPage, FailuresGiveTheEmptyStringAndARedirectLoopStops) {
    server.Route("/empty", TestHttpServer::Ok(""));
    server.Route("/loop", TestHttpServer::Redirect("/loop"));
    server.Route("/big", TestHttpServer::Ok(Pattern(TEST_SIZE_LIMIT + 1), true));
    server.Route("/bigclose", TestHttpServer::Ok(Pattern(TEST_SIZE_LIMIT + 1), false));
    server.Route("/error", TestHttpServer::Status(500, "Internal Server Error"));
    // clang-format off
    const std::string cases[] = {
        server.Url("/missing"), server.Url("/empty"), server.Url("/big"), server.Url("/bigclose"),
        server.Url("/error"), ClosedPortUrl(), "/etc/hostname", "", "file:///etc/hostname",
        "ftp://127.0.0.1/x", "not an address"};
    // clang-format on
    for (const std::string& url : cases) {
        EXPECT_STREQ(network.GetPage(url.c_str(), "").c_str(), "") << url;
    }
    EXPECT_STREQ(network.GetPage(nullptr, nullptr).c_str(), "");
    size_t before = server.Targets().size();
    EXPECT_STREQ(network.GetPage(server.Url("/loop").c_str(), "").c_str(), "");
    // The first request and at most five redirects.
    EXPECT_LE(server.Targets().size() - before, 1u + SNetwork::MAX_REDIRECTS);
}

TEST_F(NetworkGetPage, StalledServerIsGivenUpWithinTheTimeout) {
    server.Route("/stall", TestHttpServer::Stalled("partial", 1000));
    auto start = std::chrono::steady_clock::now();
    EXPECT_STREQ(network.GetPage(server.Url("/stall").c_str(), "").c_str(), "");
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(6));
}

using NetworkDownload = NetworkTest;

TEST_F(NetworkDownload, BlocksCarryTotalOffsetAndCount) {
    std::string body = Pattern(1000);
    server.Route("/length", TestHttpServer::Ok(body, true));
    server.Route("/close", TestHttpServer::Ok(body, false));
    for (auto [path, total] : {std::pair<const char*, unsigned>{"/length", 1000}, {"/close", 0}}) {
        RecordingNetwork recorder;
        SFileMem target;
        int user = 0;
        EXPECT_TRUE(recorder.Download(&target, server.Url(path).c_str(), &user, 300)) << path;
        EXPECT_EQ(recorder.statuses, std::vector<int>{NET_OK});
        EXPECT_EQ(recorder.lastUser, &user);
        EXPECT_EQ(Contents(target), body);
        unsigned expectedOffset = 0;
        for (const BlockCall& block : recorder.blocks) {
            EXPECT_EQ(block.total, total) << path;
            EXPECT_EQ(block.offset, expectedOffset);
            EXPECT_GE(block.count, 1u);
            EXPECT_LE(block.count, 300u);
            expectedOffset += block.count;
        }
        EXPECT_EQ(expectedOffset, 1000u);
    }
}

TEST_F(NetworkDownload, EmptyBodyHasNoBlocksAndBlockSizeBelowOneCountsAsOne) {
    server.Route("/empty", TestHttpServer::Ok("", true));
    server.Route("/emptyclose", TestHttpServer::Ok("", false));
    for (const char* path : {"/empty", "/emptyclose"}) {
        RecordingNetwork recorder;
        SFileMem target;
        EXPECT_TRUE(recorder.Download(&target, server.Url(path).c_str(), nullptr, 100)) << path;
        EXPECT_EQ(recorder.statuses, std::vector<int>{NET_OK});
        EXPECT_TRUE(recorder.blocks.empty());
        EXPECT_EQ(target.GetSize(), 0);
    }
    server.Route("/tiny", TestHttpServer::Ok("abc"));
    SFileMem target;
    EXPECT_TRUE(network.Download(&target, server.Url("/tiny").c_str(), nullptr, 0));
    ASSERT_EQ(network.blocks.size(), 3u);
    EXPECT_EQ(network.blocks[2].offset, 2u);
    EXPECT_EQ(Contents(target), "abc");
}

TEST_F(NetworkDownload, SkippedBlocksAreNotWrittenAndAbortFailsTheTransfer) {
    server.Route("/file", TestHttpServer::Ok(Pattern(5000)));
    // clang-format off
    const std::tuple<int, bool, int> cases[] = {
        {NET_BLOCK_SKIP, true, NET_OK}, {NET_BLOCK_ABORT, false, NET_TRANSFER_FAILED}};
    // clang-format on
    for (auto [answer, succeeds, status] : cases) {
        RecordingNetwork recorder;
        recorder.answer = answer;
        SFileMem target;
        EXPECT_EQ(recorder.Download(&target, server.Url("/file").c_str(), nullptr, 100), succeeds);
        EXPECT_EQ(recorder.statuses, std::vector<int>{status});
        EXPECT_EQ(recorder.blocks.size() == 1, answer == NET_BLOCK_ABORT); // abort stops at once
        EXPECT_EQ(target.GetSize(), 0);
    }
}

TEST_F(NetworkDownload, AddressesThatDoNotOpenReportNoSource) {
    TempDir dir;
    server.Route("/loop", TestHttpServer::Redirect("/loop"));
    server.Route("/gone", TestHttpServer::Status(410, "Gone"));
    const std::string cases[] = {server.Url("/missing"),
                                 server.Url("/loop"),
                                 server.Url("/gone"),
                                 ClosedPortUrl(),
                                 "/no/such/file",
                                 "",
                                 dir.Write("empty.bin", ""),
                                 dir.MakeFolder("folder")};
    for (const std::string& url : cases) {
        RecordingNetwork recorder;
        SFileMem target;
        EXPECT_FALSE(recorder.Download(&target, url.c_str(), nullptr, 100)) << url;
        EXPECT_EQ(recorder.statuses, std::vector<int>{NET_NO_SOURCE}) << url;
        EXPECT_EQ(target.GetSize(), 0);
    }
}

TEST_F(NetworkDownload, OversizeOrStalledTransfersFailWithinTheTimeout) {
    server.Route("/big", TestHttpServer::Ok(Pattern(TEST_SIZE_LIMIT + 1), true));
    server.Route("/bigclose", TestHttpServer::Ok(Pattern(TEST_SIZE_LIMIT + 1), false));
    server.Route("/stall", TestHttpServer::Stalled("partial", 1000));
    for (const char* path : {"/big", "/bigclose", "/stall"}) {
        RecordingNetwork recorder;
        SFileMem target;
        auto start = std::chrono::steady_clock::now();
        EXPECT_FALSE(recorder.Download(&target, server.Url(path).c_str(), nullptr, 4096)) << path;
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(6));
        EXPECT_EQ(recorder.statuses, std::vector<int>{NET_TRANSFER_FAILED}) << path;
        EXPECT_LE(target.GetSize(), TEST_SIZE_LIMIT);
    }
}

TEST_F(NetworkDownload, LocalPathIsCopiedAndANullTargetReportsNoTarget) {
    int user = 0;
    EXPECT_FALSE(network.Download(nullptr, server.Url("/x").c_str(), &user, 10));
    EXPECT_EQ(network.statuses, std::vector<int>{NET_NO_TARGET});
    EXPECT_EQ(network.lastUser, &user);
    EXPECT_TRUE(server.Targets().empty());
    network.statuses.clear();
    TempDir dir;
    std::string bytes = Pattern(2500) + std::string(1, '\0') + "end";
    std::string path = dir.Write("cover.png", bytes);
    SFileMem target;
    EXPECT_TRUE(network.Download(&target, path.c_str(), nullptr, 100));
    EXPECT_EQ(network.statuses, std::vector<int>{NET_OK});
    EXPECT_EQ(Contents(target), bytes);
    EXPECT_TRUE(network.blocks.empty()); // a copy does not go through the blocks
}

using NetworkUpdateCheck = NetworkTest;

namespace {

struct BoxCall {
    std::string text, caption;
    unsigned flags;
};
std::vector<BoxCall> boxCalls;
int boxAnswer = 0;

int RecordBox(void* /*window*/, const char* text, const char* caption, unsigned flags) {
    boxCalls.push_back({text, caption, flags});
    return boxAnswer;
}

class BoxHook {
public:
    explicit BoxHook(int answer) {
        boxCalls.clear();
        boxAnswer = answer;
        SetMessageBoxHook(RecordBox);
    }
    ~BoxHook() { SetMessageBoxHook(nullptr); }
};

const char* const CONNECTION_FAILED = "Connection failed.";
const char* const UP_TO_DATE = "You have the latest updates installed.";
const char* const ASK = "Would you like to download and install the latest updates?";

} // namespace

TEST_F(NetworkUpdateCheck, ReplyAndVersionDecideTheOffer) {
    // reply, offered, box shown when not quiet (null for none); the program is 1.0.3.0
    // clang-format off
    const std::tuple<const char*, bool, const char*> cases[] = {
        {"OK\r\n1.0.4.0\r\n-s\r\nsetup.zip\r\n", true, nullptr},
        {"OK\n1.0.4.0\n-s\nsetup.zip\n", true, nullptr},
        {"OK\r\n1.0.3.0\r\n-s\r\nsetup.zip\r\n", false, UP_TO_DATE},
        {"OK\r\n2.0.0.0\r\n-s\r\nsetup.zip\r\n", false, UP_TO_DATE},
        // Any other version of the same series is offered, even an older one.
        {"OK\r\n1.0.2.0\r\n-s\r\nsetup.zip\r\n", true, nullptr}, {"OK\r\n1.0.3\r\n", true, nullptr},
        {"OK\r\n", false, UP_TO_DATE}, {"OK", false, UP_TO_DATE},
        {"ok\r\n1.0.4.0\r\n", false, CONNECTION_FAILED},
        {"ERROR\r\n1.0.4.0\r\n", false, CONNECTION_FAILED},
        {" OK\r\n1.0.4.0\r\n", false, CONNECTION_FAILED}, {"", false, CONNECTION_FAILED},
        {"<html>502</html>", false, CONNECTION_FAILED},
        {nullptr, false, CONNECTION_FAILED}}; // nothing listens
    // clang-format on
    for (auto [reply, offered, box] : cases) {
        server.Route("/check.php", TestHttpServer::Ok(reply != nullptr ? reply : ""));
        std::string url = reply != nullptr ? server.Url("/check.php?id=melkora") : ClosedPortUrl();
        BoxHook hook(NET_ANSWER_YES);
        EXPECT_EQ(network.CheckForUpdates(nullptr, url.c_str(), "1.0.3.0", true, false), offered)
            << reply;
        EXPECT_TRUE(boxCalls.empty()) << "quiet shows nothing: " << reply;
        EXPECT_EQ(network.CheckForUpdates(nullptr, url.c_str(), "1.0.3.0", false, false), offered);
        if (box == nullptr) {
            EXPECT_TRUE(boxCalls.empty()) << reply;
            continue;
        }
        ASSERT_EQ(boxCalls.size(), 1u) << reply;
        EXPECT_EQ(boxCalls[0].text, box);
        EXPECT_EQ(boxCalls[0].caption, "Check for Updates");
        EXPECT_EQ(boxCalls[0].flags, NET_BOX_INFORMATION);
    }
    EXPECT_EQ(server.Targets().back(), "/check.php?id=melkora");
}

TEST_F(NetworkUpdateCheck, OnlyYesStartsTheUpdaterAndOnlyWhenItIsInTheProgramFolder) {
    TempDir dir;
    std::string record = dir / "record.txt";
    network.SetProgramPath((dir / "melkora").c_str());
    server.Route("/check.php", TestHttpServer::Ok(
                                   "OK\r\n1.0.4.0\r\n-s --mode 'two words'\r\nsetup file.zip\r\n"));
    std::string url = server.Url("/check.php");
    {
        BoxHook hook(NET_ANSWER_YES);
        EXPECT_FALSE(network.CheckForUpdates(nullptr, url.c_str(), "1.0.3.0", true, true));
    }
    WriteRecorder(dir, SNetwork::UPDATER_NAME, record);
    {
        BoxHook hook(7);
        EXPECT_FALSE(network.CheckForUpdates(nullptr, url.c_str(), "1.0.3.0", true, true));
        ASSERT_EQ(boxCalls.size(), 1u);
        EXPECT_EQ(boxCalls[0].text, ASK);
        EXPECT_EQ(boxCalls[0].flags, NET_BOX_YES_NO);
        EXPECT_TRUE(TempDir::Read(record).empty());
    }
    BoxHook hook(NET_ANSWER_YES);
    EXPECT_TRUE(network.CheckForUpdates(nullptr, url.c_str(), "1.0.3.0", true, true));
    std::vector<std::string> expected = {dir.Path(),       "-s",       "--mode", "two words",
                                         "setup file.zip", dir.Path(), "melkora"};
    EXPECT_EQ(ReadRecord(record, true), expected);
}

TEST(NetworkMail, SendMailPassesEachPartAsOneArgumentAndLeavesOutEmptyOnes) {
    TempDir dir;
    std::string record = dir / "record.txt";
    SNetwork network;
    {
        ScopedEnv pathVariable("PATH", dir.Path().c_str());
        EXPECT_FALSE(network.SendMail("a@b.c", "s", "b", nullptr)); // no xdg-email
    }
    WriteRecorder(dir, "bin/xdg-email", record);
    std::string path = dir.Path() + "/bin:" + (getenv("PATH") != nullptr ? getenv("PATH") : "");
    ScopedEnv pathVariable("PATH", path.c_str());
    EXPECT_TRUE(network.SendMail("fan@example.org", "Song; rm -rf ~", "line one\nline two",
                                 "/music/a b.mp3"));
    std::vector<std::string> expected = {
        dir.Path(), "--utf8",   "--subject", "Song; rm -rf ~", "--body",
        "line one", "line two", "--attach",  "/music/a b.mp3", "fan@example.org"};
    std::vector<std::string> lines = ReadRecord(record, false);
    ASSERT_FALSE(lines.empty());
    lines[0] = dir.Path(); // the working folder is the test's own, whatever it is
    EXPECT_EQ(lines, expected);
    EXPECT_TRUE(network.SendMail(nullptr, "Melkora Browser BOOK", "", "/tmp/book.zip"));
    lines = ReadRecord(record, false);
    ASSERT_EQ(lines.size(), 6u);
    EXPECT_EQ(std::vector<std::string>(lines.begin() + 1, lines.end()),
              (std::vector<std::string>{"--utf8", "--subject", "Melkora Browser BOOK", "--attach",
                                        "/tmp/book.zip"}));
}

// Without waiting: the call returns before the mail client's command has
// ended, and its result arrives later through the thread's message loop,
// true for a clean exit and false for a failing one; nothing is called
// when xdg-email is missing.
TEST(NetworkMail, SendMailAsyncReportsTheEndThroughTheMessageLoop) {
    ASSERT_GE(RegisterThread(), 0);
    TempDir dir;
    std::string record = dir / "record.txt";
    SNetwork network;
    {
        ScopedEnv pathVariable("PATH", dir.Path().c_str());
        EXPECT_FALSE(network.SendMailAsync(nullptr, "s", "", "/tmp/a.zip", [](bool) { FAIL(); }));
    }
    std::string path = dir.Path() + "/bin:" + (getenv("PATH") != nullptr ? getenv("PATH") : "");
    ScopedEnv pathVariable("PATH", path.c_str());
    struct Case {
        const char* script;
        bool sent;
    } cases[] = {
        {"sleep 0.2; printf '%s\\n' \"$@\" > '%RECORD%'; exit 0\n", true},
        {"printf '%s\\n' \"$@\" > '%RECORD%'; exit 3\n", false},
    };
    for (const Case& c : cases) {
        std::string script = std::string("#!/bin/sh\n") + c.script;
        script.replace(script.find("%RECORD%"), 8, record);
        std::string program = dir.Write("bin/xdg-email", script);
        chmod(program.c_str(), 0755);
        std::remove(record.c_str());
        int calls = 0;
        bool sent = !c.sent;
        ASSERT_TRUE(network.SendMailAsync(nullptr, "Melkora Browser BOOK", "",
                                          "/tmp/book 1-2-2026.zip", [&](bool result) {
                                              ++calls;
                                              sent = result;
                                          }));
        EXPECT_EQ(calls, 0); // only ever from the loop
        auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        SMessage message;
        while (calls == 0 && std::chrono::steady_clock::now() < deadline) {
            if (PeekMessage(&message, true)) {
                DispatchMessage(&message);
            } else {
                std::this_thread::sleep_for(std::chrono::milliseconds(5));
            }
        }
        EXPECT_EQ(calls, 1);
        EXPECT_EQ(sent, c.sent);
        EXPECT_EQ(ReadRecord(record, false),
                  (std::vector<std::string>{"--utf8", "--subject", "Melkora Browser BOOK",
                                            "--attach", "/tmp/book 1-2-2026.zip"}));
    }
    ResetThreadTable();
}

TEST(NetworkMail, MailtoAddressEncodesItsParts) {
    // clang-format off
    const std::tuple<const char*, const char*, const char*, const char*> cases[] = {
        {"a@b.c", nullptr, "x y", "mailto:a@b.c?BODY=x%20y"}, {"a@b.c", "", "", "mailto:a@b.c"},
        {"a@b.c", nullptr, nullptr, "mailto:a@b.c"},
        {"a@b.c", "Hi there", nullptr, "mailto:a@b.c?SUBJECT=Hi%20there"},
        {"a@b.c", "S&T", "1+1=2", "mailto:a@b.c?SUBJECT=S%26T&BODY=1%2B1%3D2"},
        {"", "s", "", "mailto:?SUBJECT=s"}, {nullptr, nullptr, nullptr, "mailto:"}};
    // clang-format on
    for (auto [to, subject, body, expected] : cases) {
        EXPECT_STREQ(SNetwork::MakeMailto(to, subject, body).c_str(), expected);
    }
}

namespace {

std::vector<std::string> launched;
bool RecordLaunch(const char* address) {
    launched.push_back(address);
    return true;
}

class LauncherHook {
public:
    LauncherHook() {
        launched.clear();
        SetUrlLauncher(RecordLaunch);
    }
    ~LauncherHook() { SetUrlLauncher(nullptr); }
};

} // namespace

TEST(NetworkDesktop, OpenUrlAndMailtoGoThroughTheLauncher) {
    SNetwork network;
    EXPECT_FALSE(network.OpenUrl("no scheme and no such file")); // fails before any launcher
    LauncherHook hook;
    EXPECT_TRUE(network.OpenUrl("https://example.org/page"));
    EXPECT_TRUE(network.SendMailto("a@b.c", "", "x y"));
    EXPECT_FALSE(network.OpenUrl(""));
    EXPECT_FALSE(network.OpenUrl(nullptr));
    EXPECT_EQ(launched,
              (std::vector<std::string>{"https://example.org/page", "mailto:a@b.c?BODY=x%20y"}));
}

TEST(NetworkDesktop, ShutdownRunsTheConfiguredCommandAndNothingWhenItIsBroken) {
    TempDir dir;
    std::string record = dir / "record.txt";
    std::string script = WriteRecorder(dir, "power off", record);
    SNetwork network;
    for (const char* command : {"", "'unclosed", "/no/such/program"}) {
        ScopedEnv variable("MELKORA_SHUTDOWN_COMMAND", command);
        EXPECT_FALSE(network.Shutdown()) << command;
    }
    std::string command = "'" + script + "' --now 'a b'";
    ScopedEnv variable("MELKORA_SHUTDOWN_COMMAND", command.c_str());
    EXPECT_TRUE(network.Shutdown());
    std::vector<std::string> lines = ReadRecord(record, false);
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(lines[1], "--now");
    EXPECT_EQ(lines[2], "a b");
}

namespace {

bool FakeWorkArea(SRect* area) {
    *area = SRect{10, 20, 1910, 1040};
    return true;
}

bool NoScreen(SRect* /*area*/) {
    return false;
}

} // namespace

TEST(NetworkDesktop, WorkAreaComesFromTheInstalledHook) {
    SRect area{1, 2, 3, 4};
    for (auto hook : {static_cast<SWorkAreaHook>(nullptr), NoScreen}) {
        SetWorkAreaHook(hook);
        area = SRect{1, 2, 3, 4};
        EXPECT_FALSE(GetWorkArea(&area));
        EXPECT_EQ(area, SRect());
        EXPECT_EQ(GetWorkAreaWidth(), 0);
        EXPECT_FALSE(GetWorkArea(nullptr));
    }
    SetWorkAreaHook(FakeWorkArea);
    EXPECT_TRUE(GetWorkArea(&area));
    EXPECT_EQ(area, (SRect{10, 20, 1910, 1040}));
    EXPECT_EQ(GetWorkAreaLeft(), 10);
    EXPECT_EQ(GetWorkAreaRight(), 1910);
    EXPECT_EQ(GetWorkAreaBottom(), 1040);
    EXPECT_EQ(GetWorkAreaWidth(), 1900);
    SetWorkAreaHook(nullptr);
}

TEST(NetworkSystem, OsKindFollowsTheVersionTable) {
    // clang-format off
    const std::tuple<int, int, int, int> cases[] = {
        {1, 4, 0, 1}, {1, 4, 10, 3}, {1, 4, 90, 4}, {2, 4, 0, 2}, {2, 5, 0, 5}, {2, 5, 1, 6},
        {2, 5, 2, 6}, {2, 6, 0, 7}, {2, 7, 0, 8}, {2, 5, 3, 255}, {1, 4, 1, 255}, {2, 6, 1, 255},
        {OS_PLATFORM_LINUX, 6, 1, 255}, {0, 0, 0, 255}};
    // clang-format on
    for (auto [platform, major, minor, kind] : cases) {
        EXPECT_EQ(GetOsKindOf(platform, major, minor), kind)
            << platform << " " << major << "." << minor;
    }
}

TEST(NetworkSystem, OsVersionIsTheKernelReleaseAndNamesNoWindowsKind) {
    int platform = -1;
    int major = -1;
    int minor = -1;
    ASSERT_TRUE(GetOsVersion(&platform, &major, &minor));
    EXPECT_EQ(platform, OS_PLATFORM_LINUX);
    EXPECT_GE(major, 2);
    EXPECT_GE(minor, 0);
    EXPECT_EQ(GetOsKind(), 255);
    EXPECT_TRUE(GetOsVersion(nullptr, nullptr, nullptr));
}
