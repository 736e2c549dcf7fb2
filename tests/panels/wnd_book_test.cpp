// The Book, help and progress windows on the headless platform, over a
// scripted web engine and a recording host: each kind of link reaches the
// host and is cancelled (Ctrl read when the link is followed), other
// addresses load, the placements are asked for and stored under their
// names, and the progress bar clamps and ends its modal run.
#include "panels/wnd_book.h"

#include <map>
#include <string>
#include <vector>

#include "panels/wnd_help.h"
#include "panels/wnd_progress.h"
#include "toolkit/toolkit_fixture.h"

namespace {

// Loads at once; Follow is a link the user clicks.
class LinkEngine : public SWebEngine {
public:
    explicit LinkEngine(Events* events) : events(events) { last = this; }
    ~LinkEngine() override {
        if (last == this) {
            last = nullptr;
        }
    }
    void* GetWidget() override { return &widget; }
    bool Load(const char* url, bool) override { return Follow(url); }
    bool Follow(const char* url) {
        if (events->OnBeforeNavigate(url)) {
            return false;
        }
        address = url;
        events->OnDocumentDone(false);
        return true;
    }
    void Hover(const char* text) {
        status = text;
        events->OnStatusTextChanged();
    }
    SString GetAddress() const override { return address.c_str(); }
    SString GetTitle() const override { return ""; }
    SString GetStatusText() const override { return status.c_str(); }
    void SetSilent(bool) override {}

    Events* events;
    int widget = 0;
    std::string address;
    std::string status;
    static LinkEngine* last;
};
LinkEngine* LinkEngine::last = nullptr;

std::unique_ptr<SWebEngine> MakeLinkEngine(SWebEngine::Events* events) {
    return std::make_unique<LinkEngine>(events);
}

class RecordingBookHost : public PBookHost {
public:
    SString GetBookRoot() const override { return SString("/music/"); }
    bool OpenBookFolder(const char* folder, const char* select) override {
        calls.push_back(std::string("open ") + folder + " " + select);
        return true;
    }
    bool PlayBookSong(const char* file) override {
        calls.push_back(std::string("play ") + file);
        return true;
    }
    bool QueueBookSong(const char* file) override {
        calls.push_back(std::string("queue ") + file);
        return true;
    }
    bool PlayBookAlbum(const char* folder) override {
        calls.push_back(std::string("album ") + folder);
        return true;
    }
    bool RestorePlacement(const char* name, SWnd* window) override {
        asked.push_back(name);
        auto found = stored.find(name);
        if (found == stored.end()) {
            return false;
        }
        window->MoveWindow(found->second);
        return true;
    }
    void StorePlacement(const char* name, SWnd* window) override {
        stored[name] = window->GetWindowRect();
    }

    std::vector<std::string> calls;
    std::vector<std::string> asked;
    std::map<std::string, SRect> stored;
};

class CompanionWindows : public ToolkitTest {
protected:
    void SetUp() override {
        ToolkitTest::SetUp();
        SetWebEngineFactory(MakeLinkEngine);
    }
    void TearDown() override {
        SetWebEngineFactory(nullptr);
        ToolkitTest::TearDown();
    }
    RecordingBookHost host;
};

TEST_F(CompanionWindows, EveryLinkOfTheBookReachesTheHostAndStaysOnThePage) {
    PWndBook book(host);
    ASSERT_TRUE(book.Open("/music/Book.htm"));
    EXPECT_EQ(book.GetText(), SString("Book - Melkora Browser"));
    EXPECT_EQ(book.GetClientSize().width, PWndBook::WIDTH);
    EXPECT_EQ(book.GetMinMaxInfo().minTrackSize.height, PWndBook::MIN_HEIGHT);
    LinkEngine* engine = LinkEngine::last;
    ASSERT_NE(engine, nullptr);
    EXPECT_EQ(engine->address, "file:///music/Book.htm");

    struct Case {
        const char* url;
        unsigned modifiers;
        const char* call; // null: an ordinary navigation
    } cases[] = {
        {"file:///music/Rock/Album/01%20One.mp3", 0, "play /music/Rock/Album/01 One.mp3"},
        {"file:///music/Rock/Album/02.ogg", SKeyboard::MODIFIER_CTRL,
         "queue /music/Rock/Album/02.ogg"},
        {"file:///music/Rock/Album/02.ogg", SKeyboard::MODIFIER_SHIFT,
         "play /music/Rock/Album/02.ogg"},
        {"file:///music/Rock/Album.album", SKeyboard::MODIFIER_CTRL, "album /music/Rock/Album/"},
        {"file:///music/Rock/Artist.link", 0, "open /music/Rock/ Artist"},
        {"https://example.org/", 0, nullptr},
        {"file:///music/Book.htm#top", 0, nullptr},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.url);
        host.calls.clear();
        std::string before = engine->address;
        platform->SetModifiers(c.modifiers);
        bool loaded = engine->Follow(c.url);
        platform->SetModifiers(0);
        if (c.call != nullptr) {
            EXPECT_FALSE(loaded);
            EXPECT_EQ(engine->address, before);
            EXPECT_EQ(host.calls, std::vector<std::string>{c.call});
        } else {
            EXPECT_TRUE(loaded);
            EXPECT_EQ(engine->address, c.url);
            EXPECT_TRUE(host.calls.empty());
        }
    }
    // The link under the pointer shows in the status bar.
    engine->Hover("file:///music/Rock/Album.album");
    EXPECT_EQ(book.GetStatusBar().GetText(0), SString("file:///music/Rock/Album.album"));
    book.ClosePage();
}

TEST_F(CompanionWindows, TheBookKeepsItsPlaceAndOpensAgainAfterClosing) {
    host.stored["WindowBook"] = SRect{30, 40, 730, 640};
    PWndBook book(host);
    ASSERT_TRUE(book.Open("/music/Book.htm"));
    EXPECT_EQ(host.asked, std::vector<std::string>{"WindowBook"});
    EXPECT_EQ(book.GetWindowRect().left, 30);
    EXPECT_EQ(book.GetWindowRect().top, 40);
    // A second open raises the window that is there, loading the page again.
    ASSERT_TRUE(book.Open("/music/Book.htm"));
    EXPECT_EQ(host.asked.size(), 1u);
    book.MoveWindow(SRect{50, 60, 750, 700});
    book.ClosePage();
    EXPECT_FALSE(book.IsOpen());
    EXPECT_EQ(host.stored["WindowBook"].left, 50);
    EXPECT_EQ(host.stored["WindowBook"].bottom, 700);
    book.ClosePage(); // closed already: nothing
    ASSERT_TRUE(book.Open("/music/Book.htm"));
    EXPECT_TRUE(book.IsOpen());
    EXPECT_EQ(book.GetWindowRect().left, 50);
    book.ClosePage();
}

TEST_F(CompanionWindows, HelpShowsItsPageAndItsPathAndKeepsItsPlace) {
    PWndHelp help(host);
    ASSERT_TRUE(help.Open("/usr/share/melkora/help.htm"));
    EXPECT_EQ(help.GetText(), SString("Documentation - Melkora Browser"));
    EXPECT_EQ(help.GetClientSize().width, PWndHelp::WIDTH);
    EXPECT_EQ(help.GetStatusBar().GetText(0), SString("/usr/share/melkora/help.htm"));
    ASSERT_NE(LinkEngine::last, nullptr);
    EXPECT_EQ(LinkEngine::last->address, "file:///usr/share/melkora/help.htm");
    // Its links are its own: nothing reaches the host.
    EXPECT_TRUE(LinkEngine::last->Follow("file:///music/Rock/a.mp3"));
    EXPECT_TRUE(host.calls.empty());
    help.ClosePage();
    EXPECT_EQ(host.asked, std::vector<std::string>{"WindowHelp"});
    EXPECT_EQ(host.stored.count("WindowHelp"), 1u);
}

TEST_F(CompanionWindows, ProgressClampsAndEndsItsRunWhenTheWorkSaysSo) {
    platform->SetWorkArea(SRect{0, 0, 1000, 700});
    PWndProgress progress;
    ASSERT_TRUE(progress.Open("Making the Book"));
    SRect rect = progress.GetWindowRect();
    EXPECT_EQ(rect.Width(), PWndProgress::WIDTH);
    EXPECT_EQ(rect.Height(), PWndProgress::HEIGHT);
    EXPECT_EQ(rect.left, (1000 - PWndProgress::WIDTH) / 2);
    EXPECT_NE(progress.GetExStyle() & WS_EX_TOPMOST, 0u);
    const std::pair<int, int> values[] = {
        {-5, 0}, {400, 400}, {1000, 1000}, {1500, 1000}, {999, 999}};
    for (const auto& [given, shown] : values) {
        progress.SetProgress(given);
        EXPECT_EQ(progress.GetProgress(), shown) << given;
    }
    // Closing does not cut the work short; the run ends when it is done.
    int polls = 0;
    EXPECT_TRUE(progress.RunUntil([&] {
        if (polls == 1) {
            progress.Close();
        }
        return ++polls >= 4;
    }));
    EXPECT_TRUE(progress.GetHandle() != 0);
    EXPECT_GE(polls, 4);
    // Work already over: no run at all.
    polls = 0;
    EXPECT_TRUE(progress.RunUntil([&] { return ++polls > 0; }));
    EXPECT_EQ(polls, 1);
    EXPECT_FALSE(progress.RunUntil(nullptr));
    progress.Destroy();
    EXPECT_FALSE(progress.RunUntil([] { return true; }));
}

} // namespace
