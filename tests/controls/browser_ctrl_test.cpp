// The web view's host on the headless platform, over a scripted engine:
// the tag, the temporary files of NavigateHtml, the parent's cancel, the
// seven reports and the hosted widget's place.
#include "controls/browser_ctrl.h"

#include <cstdlib>
#include <filesystem>
#include <string>

#include "support/temp_dir.h"
#include "toolkit/notification.h"
#include "toolkit/toolkit_fixture.h"

namespace {

// Loads at once: asks before navigating, then reports progress, the title
// and the end, as a web engine does over time.
class ScriptedEngine : public SWebEngine {
public:
    explicit ScriptedEngine(Events* events) : events(events) { last = this; }
    ~ScriptedEngine() override {
        if (last == this) {
            last = nullptr;
        }
    }
    void* GetWidget() override { return &widget; }
    bool Load(const char* url, bool history) override {
        histories += history ? "1" : "0";
        return Follow(url);
    }
    // A navigation the page starts (a link).
    bool Follow(const char* url) {
        if (events->OnBeforeNavigate(url)) {
            return true; // cancelled: nothing loads
        }
        address = url;
        events->OnProgress(-1, 100); // not told
        events->OnProgress(40, 100);
        title = "Title of " + std::string(url);
        events->OnTitleChanged();
        events->OnDocumentDone(false);
        return true;
    }
    SString GetAddress() const override { return address.c_str(); }
    SString GetTitle() const override { return title.c_str(); }
    SString GetStatusText() const override { return status.c_str(); }
    void SetSilent(bool on) override { silent = on; }

    Events* events;
    int widget = 0;
    std::string address;
    std::string title;
    std::string status;
    std::string histories;
    bool silent = false;
    static ScriptedEngine* last;
};
ScriptedEngine* ScriptedEngine::last = nullptr;

std::unique_ptr<SWebEngine> MakeScripted(SWebEngine::Events* events) {
    return std::make_unique<ScriptedEngine>(events);
}

std::unique_ptr<SWebEngine> MakeNone(SWebEngine::Events*) {
    return nullptr;
}

// Cancels navigations to addresses holding "blocked".
class Parent : public RecordingWnd {
public:
    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override {
        SNotification note(message, wParam, lParam);
        if (message == SN_WEB_BEFORE_NAVIGATE) {
            asked.push_back(note.Text());
            RecordingWnd::OnMessage(message, wParam, lParam);
            return std::string(note.Text()).find("blocked") != std::string::npos ? 1 : 0;
        }
        if (message == SN_WEB_PROGRESS) {
            progress = note.Code();
        }
        if (message == SN_WEB_DOCUMENT_DONE) {
            done.push_back(static_cast<int>(note.Code()));
        }
        return RecordingWnd::OnMessage(message, wParam, lParam);
    }
    std::vector<std::string> asked;
    std::vector<int> done;
    int64_t progress = 0;
};

class BrowserCtrlTest : public ToolkitTest {
protected:
    void SetUp() override {
        ToolkitTest::SetUp();
        const char* old = std::getenv("TMPDIR");
        oldTemp = old != nullptr ? old : "";
        hadTemp = old != nullptr;
        setenv("TMPDIR", temp.Path().c_str(), 1);
        SetWebEngineFactory(MakeScripted);
        ASSERT_TRUE(Make(parent, "top", Rect(0, 0, 400, 300)));
    }
    void TearDown() override {
        parent.Destroy();
        SetWebEngineFactory(nullptr);
        if (hadTemp) {
            setenv("TMPDIR", oldTemp.c_str(), 1);
        } else {
            unsetenv("TMPDIR");
        }
        ToolkitTest::TearDown();
    }
    int TempFiles() {
        int count = 0;
        for (const auto& entry : std::filesystem::directory_iterator(temp.Path())) {
            count += entry.path().filename().string().rfind("melkora_browser_", 0) == 0 ? 1 : 0;
        }
        return count;
    }

    TempDir temp;
    std::string oldTemp;
    bool hadTemp = false;
    Parent parent;
};

TEST_F(BrowserCtrlTest, ACancelledNavigationLeavesTheTag) {
    SBrowserCtrl browser;
    ASSERT_TRUE(Make(browser, "", Rect(10, 10, 210, 110), parent.GetHandle()));
    ASSERT_TRUE(browser.NavigateUrl("file:///music/a.htm", "/music/a.htm"));
    EXPECT_EQ(browser.GetTag(), SString("/music/a.htm"));
    EXPECT_EQ(browser.GetAddress(), SString("file:///music/a.htm"));
    // The parent refuses: the tag is as the call set it, the page stays.
    ASSERT_TRUE(browser.NavigateUrl("file:///blocked/b.htm", "/blocked/b.htm"));
    EXPECT_EQ(browser.GetTag(), SString("/blocked/b.htm"));
    EXPECT_EQ(browser.GetAddress(), SString("file:///music/a.htm"));
    // A link the parent refuses changes neither.
    browser.SetTag("/music/a.htm");
    ScriptedEngine::last->Follow("http://127.0.0.1/blocked");
    EXPECT_EQ(browser.GetTag(), SString("/music/a.htm"));
    EXPECT_EQ(browser.GetAddress(), SString("file:///music/a.htm"));
    ASSERT_EQ(parent.asked.size(), 3u);
    EXPECT_EQ(parent.asked[1], "file:///blocked/b.htm");
    EXPECT_EQ(parent.done, std::vector<int>{0}); // only the page that loaded
    // A local path loads as its file URL, escaped.
    ASSERT_TRUE(browser.NavigateUrl("/music/A #1 100%.htm", "path"));
    EXPECT_EQ(browser.GetAddress(), SString("file:///music/A%20%231%20100%25.htm"));
    // A link allowed loads; the tag is the owner's to set.
    ScriptedEngine::last->Follow("file:///music/c.htm");
    EXPECT_EQ(browser.GetAddress(), SString("file:///music/c.htm"));
    EXPECT_EQ(browser.GetTag(), SString("path"));
}

TEST_F(BrowserCtrlTest, NavigateHtmlKeepsOneTemporaryFile) {
    {
        SBrowserCtrl browser;
        ASSERT_TRUE(Make(browser, "", Rect(0, 0, 100, 100), parent.GetHandle()));
        ASSERT_TRUE(browser.NavigateHtml("<p>one</p>", "first", "htm"));
        SString first = browser.GetTempFile();
        EXPECT_TRUE(std::filesystem::exists(first.c_str()));
        EXPECT_EQ(std::string(first.c_str()).substr(first.GetLength() - 4), ".htm");
        ASSERT_TRUE(browser.NavigateHtml("<p>two</p>", "second", ".mht"));
        EXPECT_EQ(TempFiles(), 1);
        EXPECT_FALSE(std::filesystem::exists(first.c_str()));
        EXPECT_EQ(browser.GetTag(), SString("second"));
        EXPECT_EQ(browser.GetAddress(), SString("file://") + browser.GetTempFile());
        // No extension at all.
        ASSERT_TRUE(browser.NavigateHtml("x", "third", ""));
        EXPECT_EQ(TempFiles(), 1);
        EXPECT_EQ(std::filesystem::path(browser.GetTempFile().c_str()).extension(), "");
    }
    EXPECT_EQ(TempFiles(), 0); // the last goes with the control
}

TEST_F(BrowserCtrlTest, TheReportsReachTheParent) {
    SBrowserCtrl browser;
    ASSERT_TRUE(Make(browser, "", Rect(0, 0, 100, 100), parent.GetHandle()));
    browser.SetHistory(false);
    browser.SetSilent(true);
    EXPECT_TRUE(ScriptedEngine::last->silent);
    browser.NavigateUrl("file:///x.htm", "x");
    EXPECT_EQ(ScriptedEngine::last->histories, "0");
    EXPECT_EQ(parent.progress, (int64_t{100} << 32) | 40);
    EXPECT_EQ(parent.Count(SN_WEB_PROGRESS), 1); // -1 is not told
    EXPECT_EQ(parent.Count(SN_WEB_TITLE), 1);
    EXPECT_EQ(browser.GetTitle(), SString("Title of file:///x.htm"));
    ScriptedEngine::last->status = "http://127.0.0.1/";
    ScriptedEngine::last->events->OnStatusTextChanged();
    EXPECT_EQ(parent.Count(SN_WEB_STATUS_TEXT), 1);
    EXPECT_EQ(browser.GetStatusText(), SString("http://127.0.0.1/"));
    ScriptedEngine::last->events->OnDocumentDone(true);
    EXPECT_EQ(parent.done.back(), 1);
    ScriptedEngine::last->events->OnQuit();
    EXPECT_EQ(parent.Count(SN_WEB_QUIT), 1);
    // Each with the control as its sender.
    for (const RecordingWnd::Entry& entry : parent.ownLog) {
        if (SNotification(entry.message, entry.wParam, entry.lParam).IsNotification()) {
            EXPECT_EQ(SNotification(entry.message, entry.wParam, entry.lParam).Control(), &browser);
        }
    }
}

TEST_F(BrowserCtrlTest, WithoutAWindowOrEngine) {
    SBrowserCtrl loose;
    EXPECT_FALSE(loose.NavigateUrl("file:///a", "a"));
    EXPECT_FALSE(loose.NavigateHtml("<p>", "a", "htm"));
    EXPECT_EQ(TempFiles(), 0);
    EXPECT_EQ(loose.GetTag(), SString());
    SetWebEngineFactory(MakeNone);
    SBrowserCtrl none;
    EXPECT_FALSE(Make(none, "", Rect(0, 0, 10, 10), parent.GetHandle())); // creation refused
    EXPECT_FALSE(none.HasEngine());
}

TEST_F(BrowserCtrlTest, TheWidgetFollowsTheControl) {
    SBrowserCtrl browser;
    ASSERT_TRUE(Make(browser, "", Rect(10, 10, 210, 110), parent.GetHandle()));
    browser.SetAnchor(ANCHOR_RIGHT | ANCHOR_BOTTOM);
    SHeadlessPlatform::HostedChild child;
    ASSERT_TRUE(platform->GetHostedChild(browser.GetHandle(), &child));
    EXPECT_EQ(child.widget, &ScriptedEngine::last->widget);
    EXPECT_EQ(child.rect.Width(), 200);
    EXPECT_TRUE(child.visible);
    platform->Resize(parent.GetHandle(), 500, 400);
    platform->PresentFrame(parent.GetHandle());
    ASSERT_TRUE(platform->GetHostedChild(browser.GetHandle(), &child));
    EXPECT_EQ(child.rect.Width(), 300);
    EXPECT_EQ(child.rect.Height(), 200);
    SetFocus(browser.GetHandle());
    SHeadlessPlatform::DispatchPending();
    ASSERT_TRUE(platform->GetHostedChild(browser.GetHandle(), &child));
    EXPECT_TRUE(child.focused);
    browser.Show(SW_HIDE);
    SHeadlessPlatform::DispatchPending();
    ASSERT_TRUE(platform->GetHostedChild(browser.GetHandle(), &child));
    EXPECT_FALSE(child.visible);
    HWND handle = browser.GetHandle();
    browser.Destroy();
    EXPECT_FALSE(platform->GetHostedChild(handle, &child));
}

} // namespace
