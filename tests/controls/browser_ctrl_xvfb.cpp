// SBrowserCtrl on GTK with WebKitGTK under a virtual X display (run by
// xvfb-run): a generated description page shown in the view, a navigation
// the parent cancels, NavigateHtml's one temporary file, an MHTML archive,
// the view following its window when the top-level window grows, and which
// keys pressed in the page reach the window (as SM_KEY). Only
// local files are loaded. The screenshot goes to the build folder
// (browser_ctrl_window.png).
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "controls/browser_ctrl.h"
#include "foundation/file.h"
#include "pages/description_page.h"
#include "pages/resources.h"
#include "support/message_pump.h"
#include "support/pixels.h"
#include "support/temp_dir.h"
#include "toolkit/notification.h"
#include "toolkit/platform/gtk/gtk_platform.h"
#include "toolkit/platform/platform.h"
#include "toolkit/wnd_app.h"

// Last: Xlib's macros (None, Bool, Status) would break the headers above.
#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>

namespace {

constexpr uint32_t WINDOW = 0xFF00FF; // magenta: never on the page

class Parent : public SWnd {
public:
    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override {
        SNotification note(message, wParam, lParam);
        if (message == SN_WEB_BEFORE_NAVIGATE) {
            std::string url = note.Text();
            asked.push_back(url);
            return url.find("blocked") != std::string::npos ? 1 : 0;
        }
        if (message == SN_WEB_DOCUMENT_DONE) {
            (note.Code() == 0 ? complete : failed)++;
        }
        if (message == SM_KEY) {
            keys.push_back(static_cast<unsigned>(wParam));
        }
        return SWnd::OnMessage(message, wParam, lParam);
    }
    std::vector<std::string> asked;
    std::vector<unsigned> keys; // SM_KEY: what reached the window's key handling
    int complete = 0;
    int failed = 0;
};

// A real press and release of keysym, with Ctrl held when ctrl, through the
// X test extension on a connection of its own.
bool PressX(KeySym keysym, bool ctrl) {
    Display* x = XOpenDisplay(nullptr);
    if (x == nullptr) {
        return false;
    }
    KeyCode code = XKeysymToKeycode(x, keysym);
    KeyCode control = XKeysymToKeycode(x, XK_Control_L);
    if (code != 0) {
        if (ctrl) {
            XTestFakeKeyEvent(x, control, True, CurrentTime);
        }
        XTestFakeKeyEvent(x, code, True, CurrentTime);
        XTestFakeKeyEvent(x, code, False, CurrentTime);
        if (ctrl) {
            XTestFakeKeyEvent(x, control, False, CurrentTime);
        }
        XSync(x, False);
    }
    XCloseDisplay(x);
    return code != 0;
}

template <typename Done> bool Until(Done done) {
    return PumpUntil([&] {
        GtkSync();
        return done();
    });
}

uint32_t Rgb(const SImage& picture, int x, int y) {
    return picture.GetPixel(x, y) & 0xFFFFFF;
}

void SavePng(const SImage& picture, const char* name) {
    SFilePath file;
    std::string path = std::string(MELKORA_SCREENSHOT_DIR) + "/" + name;
    if (file.Open(path.c_str(), true, true, false, false)) {
        picture.Save(&file, IMAGE_PNG);
        file.Close();
    }
}

int TempFiles(const std::string& folder) {
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        count += entry.path().filename().string().rfind("melkora_browser_", 0) == 0 ? 1 : 0;
    }
    return count;
}

class BrowserOnGtk : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        // Xvfb has no GL: WebKit draws without its compositor there.
        setenv("WEBKIT_DISABLE_COMPOSITING_MODE", "1", 1);
        started = UseGtkPlatform() && ToolkitStart(nullptr, SW_SHOW, false, false, false);
    }
    static void TearDownTestSuite() {
        if (started) {
            ToolkitEnd();
        }
    }
    void SetUp() override {
        ASSERT_TRUE(started) << "no X display: run under xvfb-run";
        const char* old = std::getenv("TMPDIR");
        hadTemp = old != nullptr;
        oldTemp = old != nullptr ? old : "";
        setenv("TMPDIR", temp.Path().c_str(), 1);
        SRect bounds{30, 30, 630, 430};
        ASSERT_TRUE(top.Create("Melkora web view", WS_VISIBLE | WS_THICKFRAME, 0, &bounds, 0));
        top.SetBackColor(WINDOW);
        SRect place{20, 20, 580, 380};
        ASSERT_TRUE(browser.Create("", WS_VISIBLE, 0, &place, top.GetHandle()));
        browser.SetAnchor(ANCHOR_RIGHT | ANCHOR_BOTTOM);
    }
    void TearDown() override {
        browser.Destroy();
        top.Destroy();
        PumpFor(50);
        if (hadTemp) {
            setenv("TMPDIR", oldTemp.c_str(), 1);
        } else {
            unsetenv("TMPDIR");
        }
    }
    bool LoadAndWait(const std::string& url, const char* tag) {
        int before = parent().complete;
        return browser.NavigateUrl(url.c_str(), tag) &&
               Until([&] { return parent().complete > before; });
    }
    Parent& parent() { return top; }

    static bool started;
    bool hadTemp = false;
    std::string oldTemp;
    TempDir temp;
    Parent top;
    SBrowserCtrl browser;
};
bool BrowserOnGtk::started = false;

TEST_F(BrowserOnGtk, ShowsADescriptionPageAndFollowsItsWindow) {
    EnsurePagesResources();
    std::filesystem::create_directories(temp / "Rock");
    {
        std::ofstream out(temp / "Rock/Artist.txt", std::ios::binary);
        out << "The Artist\r\nFormed in 1970, the band played "
               "loud.\r\nAlbums:\r\nFirst\r\nSecond\r\n";
    }
    ASSERT_TRUE(BuildDescriptionPage((temp.Path() + "/").c_str(), "Rock/Artist", nullptr));
    std::string page = temp / "Rock/Artist.htm";
    ASSERT_TRUE(std::filesystem::exists(page));
    ASSERT_TRUE(LoadAndWait("file://" + page, page.c_str()));
    EXPECT_EQ(browser.GetTag(), SString(page.c_str()));
    EXPECT_EQ(browser.GetAddress(), SString(("file://" + page).c_str()));
    EXPECT_EQ(top.failed, 0);

    SImage shot;
    auto pageShown = [&](int width, int height) {
        if (!GtkCaptureSurface(top.GetHandle(), &shot) || shot.GetWidth() != width ||
            shot.GetHeight() != height) {
            return false;
        }
        // The page covers the control's place, its far corner included (the
        // page's white background, not a view still at its old size); the
        // window shows round it; the description's text is drawn.
        SRect view{20, 20, width - 20, height - 20};
        SRect corner{width - 60, height - 60, width - 20, height - 20};
        SRect text{20, 20, 300, 100};
        return Rgb(shot, 10, 10) == WINDOW && Rgb(shot, width - 10, height - 10) == WINDOW &&
               CountNear(shot, view, WINDOW, 10) == 0 &&
               CountNear(shot, corner, 0xFFFFFF, 4) == corner.Width() * corner.Height() &&
               CountNear(shot, text, 0x000000, 120) > 50;
    };
    ASSERT_TRUE(Until([&] { return pageShown(600, 400); })) << "the page was not drawn";

    // The top-level window grows: the anchored control and the view with it.
    ASSERT_TRUE(GtkResizeSurface(top.GetHandle(), 760, 520));
    ASSERT_TRUE(Until([&] { return pageShown(760, 520); })) << "the view did not follow its window";
    EXPECT_EQ(browser.GetHosted().GetRect().Width(), 720);
    EXPECT_EQ(browser.GetHosted().GetRect().Height(), 480);
    SavePng(shot, "browser_ctrl_window.png");
}

TEST_F(BrowserOnGtk, ACancelledNavigationLeavesTheTagAndThePage) {
    std::string first = temp / "first.htm";
    std::string blocked = temp / "blocked.htm";
    for (const std::string& path : {first, blocked}) {
        std::ofstream out(path);
        out << "<html><head><title>" << std::filesystem::path(path).stem().string()
            << "</title></head><body>text</body></html>";
    }
    ASSERT_TRUE(LoadAndWait("file://" + first, "first"));
    ASSERT_TRUE(Until([&] { return browser.GetTitle() == SString("first"); }));
    size_t asked = top.asked.size();
    ASSERT_TRUE(browser.NavigateUrl(("file://" + blocked).c_str(), "blocked-tag"));
    ASSERT_TRUE(Until([&] { return top.asked.size() > asked; }));
    EXPECT_EQ(top.asked.back(), "file://" + blocked);
    PumpFor(300);
    EXPECT_EQ(browser.GetTag(), SString("blocked-tag"));
    EXPECT_EQ(browser.GetAddress(), SString(("file://" + first).c_str()));
    EXPECT_EQ(browser.GetTitle(), SString("first"));
}

TEST_F(BrowserOnGtk, NavigateHtmlTwiceLeavesOneTemporaryFileAndArchivesOpen) {
    ASSERT_TRUE(browser.NavigateHtml("<html><head><title>one</title></head><body>1</body></html>",
                                     "a", "htm"));
    ASSERT_TRUE(browser.NavigateHtml("<html><head><title>two é</title></head><body>2</body></html>",
                                     "b", "htm"));
    EXPECT_EQ(TempFiles(temp.Path()), 1);
    // No charset given: read as UTF-8.
    ASSERT_TRUE(Until([&] { return browser.GetTitle() == SString("two é"); }));

    const char* archive =
        "From: <Saved by Melkora>\r\n"
        "Subject: Archived\r\n"
        "MIME-Version: 1.0\r\n"
        "Content-Type: multipart/related; type=\"text/html\"; boundary=\"BOUNDARY\"\r\n"
        "\r\n"
        "--BOUNDARY\r\n"
        "Content-Type: text/html; charset=\"utf-8\"\r\n"
        "Content-Transfer-Encoding: quoted-printable\r\n"
        "Content-Location: http://127.0.0.1/page.htm\r\n"
        "\r\n"
        "<html><head><title>Archived</title></head><body>kept</body></html>\r\n"
        "--BOUNDARY--\r\n";
    ASSERT_TRUE(browser.NavigateHtml(archive, "mht", "mht"));
    EXPECT_EQ(TempFiles(temp.Path()), 1);
    ASSERT_TRUE(Until([&] { return browser.GetTitle() == SString("Archived"); }))
        << "title " << browser.GetTitle().c_str();
}

TEST_F(BrowserOnGtk, TheKeyboardFocusGoesInAndOut) {
    std::string page = temp / "input.htm";
    {
        std::ofstream out(page);
        out << "<html><head><title>empty</title></head><body>"
               "<input id=i style='width:300px' oninput='document.title=this.value'>"
               "<script>document.getElementById('i').focus()</script></body></html>";
    }
    ASSERT_TRUE(LoadAndWait("file://" + page, "input"));
    // The toolkit's focus on the control gives the view the keyboard, and
    // typed keys reach the page, not the toolkit.
    SetFocus(browser.GetHandle());
    ASSERT_TRUE(Until([&] { return GtkHostedChildHasFocus(browser.GetHandle()); }));
    ASSERT_TRUE(GetPlatform()->PressKey('K'));
    ASSERT_TRUE(Until([&] { return browser.GetTitle() == SString("k"); }))
        << browser.GetTitle().c_str();
    // Focus elsewhere takes it back to the drawing area.
    SetFocus(top.GetHandle());
    ASSERT_TRUE(Until([&] { return !GtkHostedChildHasFocus(browser.GetHandle()); }));
    // A click into the view makes the control the toolkit's focus window.
    ASSERT_TRUE(GtkSimulateClick(top.GetHandle(), 200, 200));
    ASSERT_TRUE(Until([&] { return GetFocus() == browser.GetHandle(); }));
}

// Keys pressed in a page: the program's keys (function keys, Escape) reach
// the window and never the page; the keys that move through the page stay
// with it; the rest reach the window only when the page did not use them,
// so typing into a form, Backspace in it and Ctrl+A stay with the page while
// Backspace or a letter on the page's background reach the window. The
// page lists the keys it saw and how far it scrolled in its title.
TEST_F(BrowserOnGtk, KeysThePageDoesNotUseReachTheWindow) {
    std::string back = temp / "back.htm";
    std::string page = temp / "keys.htm";
    {
        std::ofstream out(back);
        out << "<html><head><title>back</title></head><body>the page before</body></html>";
    }
    {
        std::ofstream out(page);
        out << "<html><head><title>-</title></head><body style='height:5000px'>"
               "<input id=i style='width:300px'><p>Text to select.</p>"
               "<script>var seen=[];function show(){document.title=seen.join(',')+'|'+"
               "(scrollY>0?'scrolled':'top')+'|'+document.getElementById('i').value}"
               "addEventListener('keydown',function(e){seen.push(e.key==' '?'Space':e.key);"
               "show()});addEventListener('scroll',show);addEventListener('input',show);"
               "</script></body></html>";
    }
    ASSERT_TRUE(LoadAndWait("file://" + back, "back"));
    ASSERT_TRUE(LoadAndWait("file://" + page, "keys"));
    // A click on the page's background, below the field, gives the view the
    // keyboard and makes the control the toolkit's focus window.
    ASSERT_TRUE(GtkSimulateClick(top.GetHandle(), 300, 300));
    ASSERT_TRUE(Until([&] {
        return GetFocus() == browser.GetHandle() && GtkHostedChildHasFocus(browser.GetHandle());
    }));
    auto title = [&] { return std::string(browser.GetTitle().c_str()); };
    // The keys the page saw, in order.
    auto seen = [&] {
        std::vector<std::string> names;
        std::string list = title().substr(0, title().find('|'));
        for (size_t at = 0; !list.empty() && at <= list.size();) {
            size_t end = std::min(list.find(',', at), list.size());
            names.push_back(list.substr(at, end - at));
            at = end + 1;
        }
        return names;
    };
    size_t earlier = 0; // the keys the page saw before the press
    auto pageSaw = [&](const std::string& name) {
        std::vector<std::string> names = seen();
        return std::find(names.begin() + static_cast<long>(std::min(earlier, names.size())),
                         names.end(), name) != names.end();
    };
    auto windowGot = [&](unsigned key) {
        return std::find(top.keys.begin(), top.keys.end(), key) != top.keys.end();
    };
    struct Case {
        const char* what;
        KeySym keysym;
        bool ctrl;
        unsigned key;     // its virtual key code
        const char* name; // as the page names it
        bool toWindow;
        bool toPage;
    };
    const Case onBackground[] = {
        {"F1", XK_F1, false, VK_F1, "F1", true, false},
        {"F8", XK_F8, false, VK_F8, "F8", true, false},
        {"Escape", XK_Escape, false, VK_ESCAPE, "Escape", true, false},
        {"Ctrl+F5", XK_F5, true, VK_F5, "F5", true, false},
        {"Space", XK_space, false, VK_SPACE, "Space", false, true},
        {"Page Down", XK_Page_Down, false, VK_NEXT, "PageDown", false, true},
        {"Home", XK_Home, false, VK_HOME, "Home", false, true},
        {"Backspace", XK_BackSpace, false, VK_BACK, "Backspace", true, true},
        {"a letter", XK_q, false, 'Q', "q", true, true},
        {"Ctrl+A", XK_a, true, 'A', "a", false, true},
    };
    const Case inField[] = {
        {"a letter", XK_k, false, 'K', "k", false, true},
        {"Backspace", XK_BackSpace, false, VK_BACK, "Backspace", false, true},
        {"a letter again", XK_m, false, 'M', "m", false, true},
        {"F5", XK_F5, false, VK_F5, "F5", true, false},
    };
    auto press = [&](const Case& c) {
        SCOPED_TRACE(c.what);
        top.keys.clear();
        earlier = seen().size();
        ASSERT_TRUE(PressX(c.keysym, c.ctrl));
        // Whichever side gets it first; then time for the other to get it
        // too, as a key the page did not use comes back from its process.
        ASSERT_TRUE(Until([&] { return windowGot(c.key) || pageSaw(c.name); }))
            << "the key went nowhere; title " << title();
        PumpFor(400);
        EXPECT_EQ(windowGot(c.key), c.toWindow) << "title " << title();
        EXPECT_EQ(pageSaw(c.name), c.toPage) << "title " << title();
    };
    for (const Case& c : onBackground) {
        press(c);
        if (c.key == VK_SPACE) {
            EXPECT_NE(title().find("|scrolled|"), std::string::npos) << title();
        }
    }
    // Backspace on the page went to the window, not back in the history.
    EXPECT_EQ(browser.GetAddress(), SString(("file://" + page).c_str()));

    // Into the field: typing and its Backspace are the page's.
    ASSERT_TRUE(GtkSimulateClick(top.GetHandle(), 60, 30));
    PumpFor(200);
    for (const Case& c : inField) {
        press(c);
    }
    EXPECT_EQ(title().substr(title().rfind('|') + 1), "m");
}

// Tab goes through the page's links and, past the last, to the next window
// of the tab order, which then has the keyboard.
TEST_F(BrowserOnGtk, TabGoesThroughTheLinksThenOnToTheNextWindow) {
    std::string page = temp / "tab.htm";
    {
        std::ofstream out(page);
        out << "<html><head><title>t</title></head><body>"
               "<a href=#a>one</a> <a href=#b>two</a></body></html>";
    }
    SRect place{600, 20, 620, 40};
    Parent next;
    ASSERT_TRUE(next.Create("", WS_VISIBLE | WS_TABSTOP, 0, &place, top.GetHandle()));
    ASSERT_TRUE(LoadAndWait("file://" + page, "tab"));
    ASSERT_TRUE(GtkSimulateClick(top.GetHandle(), 300, 300));
    ASSERT_TRUE(Until([&] {
        return GetFocus() == browser.GetHandle() && GtkHostedChildHasFocus(browser.GetHandle());
    }));
    for (int link = 0; link < 2; ++link) {
        ASSERT_TRUE(PressX(XK_Tab, false));
        PumpFor(400);
        EXPECT_EQ(GetFocus(), browser.GetHandle()) << "link " << link;
        EXPECT_TRUE(GtkHostedChildHasFocus(browser.GetHandle())) << "link " << link;
    }
    ASSERT_TRUE(PressX(XK_Tab, false));
    ASSERT_TRUE(Until([&] { return GetFocus() == next.GetHandle(); }));
    EXPECT_FALSE(GtkHostedChildHasFocus(browser.GetHandle()));
    // Keys now reach that window, not the page.
    ASSERT_TRUE(PressX(XK_Return, false));
    ASSERT_TRUE(Until(
        [&] { return std::find(top.keys.begin(), top.keys.end(), VK_RETURN) != top.keys.end(); }));
    next.Destroy();
}

} // namespace
