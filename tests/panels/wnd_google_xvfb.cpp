// The cover search window on GTK under a virtual X display, against a
// local server holding every source: a result page of the old form, the
// JSON replies of MusicBrainz, iTunes and Deezer, thumbnails and full
// pictures, and the bad ones (a stalled server, garbage, an error status,
// a 50 MB picture, a decompression bomb). The clicks are real X events.
// The window with six pictures is saved as cover-search.png in the build
// folder (checked in under docs/).
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "controls/media_layout.h"
#include "foundation/file.h"
#include "library/metadata.h"
#include "panels/wnd_google.h"
#include "support/cover_pictures.h"
#include "support/http_server.h"
#include "toolkit/platform/gtk/gtk_platform.h"
#include "toolkit/platform/gtk/gtk_pump.h"
#include "toolkit/selector.h"
#include "toolkit/wnd_app.h"

namespace {

constexpr const char* MB_ID = "1f3a5c2e-8b4d-4e6f-9a1b-2c3d4e5f6a7b";

// A cover as a collection holds them: a gradient from one colour to
// another with a dark disc in the middle; solid is the colour at its
// top-left corner, which the tests read back.
std::string CoverPng(int width, int height, uint32_t from, uint32_t to) {
    SImage image;
    image.Create(width, height, PIXEL_FORMAT_32ARGB);
    for (int y = 0; y < height; ++y) {
        uint32_t color = 0xFF000000u;
        for (int shift = 0; shift <= 16; shift += 8) {
            int a = (from >> shift) & 0xFF;
            int b = (to >> shift) & 0xFF;
            color |= static_cast<uint32_t>(a + (b - a) * y / std::max(height - 1, 1)) << shift;
        }
        SRect row{0, y, width, y + 1};
        image.Fill(color, &row);
    }
    int r = std::min(width, height) / 4;
    for (int y = -r; y <= r; ++y) {
        for (int x = -r; x <= r; ++x) {
            if (x * x + y * y <= r * r) {
                SRect dot{width / 2 + x, height / 2 + y, width / 2 + x + 1, height / 2 + y + 1};
                image.Fill(x * x + y * y < (r / 4) * (r / 4) ? 0xFFF0D040u : 0xFF1E1E24u, &dot);
            }
        }
    }
    SFileMem file;
    image.Save(&file, IMAGE_PNG);
    return std::string(file.GetData(), static_cast<size_t>(file.GetSize()));
}

class RecordingCoverHost : public PCoverHost {
public:
    bool SaveCover(const SImage& cover) override {
        ++saves;
        saved.CopyFrom(&cover);
        return saveResult;
    }
    void ShowMessage(const char* text, const char* caption, unsigned flags) override {
        messages.push_back(text);
        captions.push_back(caption);
        this->flags.push_back(flags);
    }
    std::vector<std::string> messages;
    std::vector<std::string> captions;
    std::vector<unsigned> flags;
    SImage saved;
    int saves = 0;
    bool saveResult = true;
};

class GtkCoverSearch : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        started = UseGtkPlatform() && ToolkitStart(nullptr, SW_SHOW, false, false, false);
        // Clicks on the same button follow each other quickly here; each is
        // one click, never a double click.
        GtkSetDoubleClick(1, 0);
    }
    static void TearDownTestSuite() {
        if (started) {
            ToolkitEnd();
        }
    }

    void SetUp() override {
        ASSERT_TRUE(started) << "no X display: run under xvfb-run";
        ASSERT_TRUE(server.Start());
        // The old result page names its thumbnails on hosts of its own: they
        // are reached through this server as the proxy, and nothing else is.
        setenv("http_proxy", server.Url("").c_str(), 1);
        setenv("no_proxy", "127.0.0.1", 1);
        settings.scraperUrl = "";
        settings.musicBrainzUrl = "";
        settings.coverArtUrl = server.Url("/caa").c_str();
        settings.itunesUrl = "";
        settings.deezerUrl = server.Url("/deezer").c_str();
        settings.connectMilliseconds = 1000;
        settings.stallSeconds = 1;
        settings.totalMilliseconds = 8000;
        settings.replyLimitBytes = 256 * 1024;
        for (int i = 0; i < 16; ++i) {
            uint32_t from = 0xFF000000u | Palette(i);
            server.Route("/img/t" + std::to_string(i) + ".png",
                         TestHttpServer::Ok(CoverPng(120, 120, from, 0xFFE8E0D0u)));
        }
        server.Route("/img/full.png", TestHttpServer::Ok(CoverPng(300, 200, 0xFF2A4F86u,
                                                                  0xFF9CC8E8u)));
        server.Route("/img/garbage.png", TestHttpServer::Ok("<html>not a picture</html>"));
        server.Route("/img/huge.png", TestHttpServer::Ok(std::string(50 * 1024 * 1024, 'x')));
        server.Route("/img/bomb.png", TestHttpServer::Ok(PngBomb(12000)));
    }

    void TearDown() override {
        window.reset();
        unsetenv("http_proxy");
        unsetenv("no_proxy");
    }

    // The top colour of thumbnail i, as 0xRRGGBB.
    static uint32_t Palette(int i) {
        static const uint32_t colors[] = {0xB03A2E, 0x2E86C1, 0x239B56, 0xB7950B, 0x7D3C98,
                                          0xCA6F1E, 0x17A589, 0x884EA0, 0x5D6D7E, 0xC0392B,
                                          0x1F618D, 0x196F3D, 0x9A7D0A, 0x6C3483, 0xA04000,
                                          0x117864};
        return colors[i % 16];
    }

    // A Deezer reply: per entry the thumbnail (cover_big) and full picture
    // (cover_xl) paths on this server.
    std::string Deezer(const std::vector<std::pair<std::string, std::string>>& entries) {
        std::string json = "{\"data\":[";
        for (size_t i = 0; i < entries.size(); ++i) {
            json += (i > 0 ? "," : "") + std::string("{\"title\":\"Album ") +
                    std::to_string(i) + "\",\"artist\":{\"name\":\"Elin Vass\"}";
            if (!entries[i].second.empty()) {
                json += ",\"cover_xl\":\"" + server.Url(entries[i].second) + "\"";
            }
            json += ",\"cover_big\":\"" + server.Url(entries[i].first) + "\"}";
        }
        return json + "]}";
    }
    std::string DeezerThumbs(int count, int first = 0) {
        std::vector<std::pair<std::string, std::string>> entries;
        for (int i = 0; i < count; ++i) {
            entries.push_back({"/img/t" + std::to_string((first + i) % 16) + ".png", ""});
        }
        return Deezer(entries);
    }

    // Opens the window (not modal, so that the test runs the loop) and
    // waits for its first search.
    void Open(const char* query = "Elin Vass Harbour Lights") {
        window = std::make_unique<PWndGoogle>(&host, settings);
        window->SetQuery(query);
        ASSERT_TRUE(window->Create(nullptr));
        ASSERT_TRUE(PumpUntil([&] { return !window->IsBusy(); }, 30));
    }
    bool Ended() const { return !window->IsVisible(); }
    void Click(SWnd& control) {
        SRect rect = control.GetRect();
        ASSERT_TRUE(GtkSimulateClick(window->GetHandle(), (rect.left + rect.right) / 2,
                                     (rect.top + rect.bottom) / 2));
    }
    std::string Url(int k) const { return window->GetResult(k).candidate.imageUrl.c_str(); }

    static bool started;
    TestHttpServer server;
    PCoverSearchSettings settings;
    RecordingCoverHost host;
    std::unique_ptr<PWndGoogle> window;
};

bool GtkCoverSearch::started = false;

TEST_F(GtkCoverSearch, EverySourcesPicturesShowInTurnWithTheirSizes) {
    settings.scraperUrl = server.Url("/scrape").c_str();
    settings.musicBrainzUrl = server.Url("/mb").c_str();
    settings.itunesUrl = server.Url("/itunes").c_str();
    server.Route("/scrape/images", TestHttpServer::Ok(CoverFixture("scraped_page.htm")));
    // The old page's thumbnails, asked of their own hosts through the proxy.
    server.Route("http://tbn0.google.com/images", TestHttpServer::Ok(CoverPng(
                                                      130, 130, 0xFFB03A2Eu, 0xFFE8E0D0u)));
    server.Route("http://tbn1.google.com/images", TestHttpServer::Ok(CoverPng(
                                                      90, 120, 0xFF2E86C1u, 0xFFE8E0D0u)));
    server.Route("/mb/ws/2/release/",
                 TestHttpServer::Ok(std::string("{\"releases\":[{\"id\":\"") + MB_ID +
                                    "\",\"title\":\"Harbour Lights\",\"artist-credit\":[{\"name\":"
                                    "\"Elin Vass\"}]}]}"));
    server.Route(std::string("/caa/release/") + MB_ID + "/front-250",
                 TestHttpServer::Ok(CoverPng(250, 250, 0xFF239B56u, 0xFFE8E0D0u)));
    server.Route(std::string("/caa/release/") + MB_ID + "/front", TestHttpServer::Redirect("/img/full.png"));
    server.Route("/itunes/search",
                 TestHttpServer::Ok("{\"results\":[{\"artistName\":\"Elin Vass\",\"collectionName\":"
                                    "\"Night Ferry\",\"artworkUrl100\":\"" +
                                    server.Url("/it/100x100bb.png") + "\"}]}"));
    server.Route("/it/100x100bb.png", TestHttpServer::Ok(CoverPng(100, 100, 0xFFB7950Bu, 0xFFE8E0D0u)));
    server.Route("/deezer/search/album",
                 TestHttpServer::Ok(Deezer({{"/img/t4.png", "/img/full.png"},
                                            {"/img/t5.png", "/img/full.png"},
                                            {"/img/t6.png", "/img/full.png"}})));
    Open();

    // Two results of the page (the third ends its scan), one release, one
    // album of iTunes, three of Deezer, in the order the sources are asked.
    ASSERT_EQ(window->GetResultCount(), 7);
    EXPECT_TRUE(host.messages.empty());
    struct {
        int source;
        const char* label;
        bool red;
        uint32_t top; // the thumbnail's top colour
    } expected[] = {
        {COVER_SOURCE_SCRAPER, "600 x 600", false, 0xB03A2E},
        {COVER_SOURCE_SCRAPER, "90 x 120", true, 0x2E86C1},
        {COVER_SOURCE_MUSICBRAINZ, "MusicBrainz", false, 0x239B56},
        {COVER_SOURCE_ITUNES, "600 x 600", false, 0xB7950B},
        {COVER_SOURCE_DEEZER, "1000 x 1000", false, 0x7D3C98},
        {COVER_SOURCE_DEEZER, "1000 x 1000", false, 0xCA6F1E},
    };
    SImage shot;
    PumpUntil([] { return false; }, 1);
    ASSERT_TRUE(GtkCaptureSurface(window->GetHandle(), &shot));
    for (int i = 0; i < COVER_PICTURES; ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(window->GetResult(i).candidate.source, expected[i].source);
        EXPECT_TRUE(window->GetPicture(i).IsVisible());
        EXPECT_EQ(window->GetLabel(i).GetText(), expected[i].label);
        EXPECT_EQ(window->GetLabel(i).GetTextColor() & 0xFFFFFF,
                  expected[i].red ? 0x0000FFu : 0x000000u);
        SRect picture = window->GetPicture(i).GetRect();
        uint32_t top = shot.GetPixel((picture.left + picture.right) / 2, picture.top + 3) & 0xFFFFFF;
        auto near = [](uint32_t a, uint32_t b) {
            for (int shift = 0; shift <= 16; shift += 8) {
                if (std::abs(int((a >> shift) & 0xFF) - int((b >> shift) & 0xFF)) > 40) {
                    return false;
                }
            }
            return true;
        };
        EXPECT_TRUE(near(top, expected[i].top)) << std::hex << top;
    }
    // Seven results: the scroll bar stays hidden, as with up to twelve.
    EXPECT_FALSE(window->GetScrollBar().IsVisible());
    EXPECT_EQ(window->GetStatus().GetText(), "7 pictures");
    EXPECT_EQ(window->GetText(), "Web...");
    EXPECT_EQ(window->GetClientWidth(), COVER_WINDOW_WIDTH);
    EXPECT_EQ(window->GetClientHeight(), COVER_WINDOW_HEIGHT);
    SFilePath png;
    std::string path = std::string(MELKORA_SCREENSHOT_DIR) + "/cover-search.png";
    ASSERT_TRUE(png.Open(path.c_str(), true, true, false, false));
    EXPECT_TRUE(shot.Save(&png, IMAGE_PNG));
    png.Close();
    // Every request went to this server, the thumbnails of the page too.
    std::vector<std::string> targets = server.Targets();
    auto asked = [&](const std::string& lead) {
        for (const std::string& target : targets) {
            if (target.rfind(lead, 0) == 0) {
                return true;
            }
        }
        return false;
    };
    EXPECT_TRUE(asked("/scrape/images?hl=en&safe=off&q=Elin%20Vass%20Harbour%20Lights&start=0"));
    EXPECT_TRUE(asked("http://tbn0.google.com/images?q=tbn:AAA111"));
    EXPECT_TRUE(asked("/mb/ws/2/release/?fmt=json&limit=25&query=Elin"));
    EXPECT_TRUE(asked("/itunes/search?"));
    EXPECT_TRUE(asked("/deezer/search/album?limit=25&q=Elin"));

    // The choice of sources: every source together, or each alone.
    SComboCtrl& choice = window->GetSourceChoice();
    ASSERT_EQ(choice.GetCount(), 5);
    EXPECT_EQ(choice.GetItemText(0), "All sources");
    EXPECT_EQ(choice.GetItemText(1), "Image search");
    EXPECT_EQ(window->GetChoiceSources()[3], COVER_SOURCE_ITUNES);
    ASSERT_TRUE(window->SearchSources(COVER_SOURCE_ITUNES));
    ASSERT_TRUE(PumpUntil([&] { return !window->IsBusy(); }, 30));
    ASSERT_EQ(window->GetResultCount(), 1);
    EXPECT_FALSE(window->GetPicture(1).IsVisible());
    ASSERT_TRUE(window->SearchSources(-1));
    ASSERT_TRUE(PumpUntil([&] { return !window->IsBusy(); }, 30));
    ASSERT_EQ(window->GetResultCount(), 7);

    // A click on the release's picture: its full picture (300 by 200,
    // behind a redirect) becomes the 150 by 150 cover the host saves.
    Click(window->GetPicture(2));
    ASSERT_TRUE(PumpUntil([&] { return Ended(); }, 20));
    EXPECT_EQ(window->modalResult, 0);
    EXPECT_EQ(host.saves, 1);
    EXPECT_EQ(host.saved.GetWidth(), COVER_SIDE);
    EXPECT_EQ(host.saved.GetHeight(), COVER_SIDE);
    EXPECT_EQ(host.saved.GetPixel(75, 75) & 0xFFFFFF, 0xF0D040u) << "the disc stays centred";
    EXPECT_TRUE(host.messages.empty());
}

TEST_F(GtkCoverSearch, AFailedMoreKeepsThePicturesAndSaysWhy) {
    server.Route("/deezer/search/album", TestHttpServer::Ok(DeezerThumbs(3)));
    Open();
    ASSERT_EQ(window->GetResultCount(), 3);
    std::string first = Url(0);
    struct {
        const char* name;
        TestHttpServer::Response reply;
        const char* message;
    } cases[] = {
        {"garbage", TestHttpServer::Ok("\x89PNG\r\n\x1a\n{{[[garbage"), COVER_NOTHING_FOUND},
        {"an error status", TestHttpServer::Status(503, "Service Unavailable"), COVER_NO_CONNECTION},
        {"a stalled server", TestHttpServer::Stalled("{\"data\":[", 5000), COVER_NO_CONNECTION},
        {"a reply over the size limit", TestHttpServer::Ok(std::string(300 * 1024, '[')),
         COVER_NO_CONNECTION},
        {"no results", TestHttpServer::Ok("{\"data\":[],\"total\":0}"), COVER_NOTHING_FOUND},
        {"a 50 MB thumbnail", TestHttpServer::Ok(Deezer({{"/img/huge.png", ""}})),
         COVER_NOTHING_FOUND},
        {"a decompression bomb", TestHttpServer::Ok(Deezer({{"/img/bomb.png", ""}})),
         COVER_NOTHING_FOUND},
    };
    for (auto& c : cases) {
        SCOPED_TRACE(c.name);
        server.Route("/deezer/search/album", c.reply);
        size_t told = host.messages.size();
        Click(window->GetMoreButton());
        if (c.reply.stall) {
            // The server holds the reply a second: the window says it waits.
            ASSERT_TRUE(PumpUntil([&] { return window->IsBusy(); }, 5));
            EXPECT_FALSE(window->GetMoreButton().IsEnabled());
            EXPECT_EQ(window->GetStatus().GetText(), "Asking Deezer...");
        }
        ASSERT_TRUE(PumpUntil([&] { return host.messages.size() > told; }, 30)) << "hung";
        EXPECT_FALSE(window->IsBusy());
        ASSERT_EQ(host.messages.size(), told + 1);
        EXPECT_EQ(host.messages.back(), c.message);
        EXPECT_EQ(host.captions.back(), COVER_CAPTION);
        EXPECT_FALSE(Ended());
        ASSERT_EQ(window->GetResultCount(), 3);
        EXPECT_EQ(Url(0), first);
        EXPECT_TRUE(window->GetPicture(2).IsVisible());
        EXPECT_FALSE(window->GetPicture(3).IsVisible());
        EXPECT_TRUE(window->GetMoreButton().IsEnabled());
    }
    // A good page after them replaces the pictures, asked from the results
    // after the first three.
    server.Route("/deezer/search/album", TestHttpServer::Ok(DeezerThumbs(2, 7)));
    Click(window->GetMoreButton());
    ASSERT_TRUE(PumpUntil([&] { return window->GetResultCount() == 2 && !window->IsBusy(); }, 30));
    EXPECT_NE(Url(0), first);
    std::string search;
    for (const std::string& target : server.Targets()) {
        search = target.rfind("/deezer/", 0) == 0 ? target : search;
    }
    EXPECT_NE(search.find("&index=3&"), std::string::npos) << search;
}

TEST_F(GtkCoverSearch, APictureThatCannotBeHadLeavesTheWindowAsItWas) {
    server.Route("/deezer/search/album",
                 TestHttpServer::Ok(Deezer({{"/img/t0.png", "/img/garbage.png"},
                                            {"/img/t1.png", "/img/huge.png"},
                                            {"/img/t2.png", "/img/bomb.png"},
                                            {"/img/t3.png", "/img/missing.png"},
                                            {"/img/t4.png", "/img/full.png"}})));
    Open();
    ASSERT_EQ(window->GetResultCount(), 5);
    for (int i = 0; i < 4; ++i) {
        SCOPED_TRACE(i);
        Click(window->GetPicture(i));
        ASSERT_TRUE(PumpUntil([&] { return host.messages.size() > static_cast<size_t>(i); }, 30))
            << "hung";
        EXPECT_FALSE(window->IsBusy());
        ASSERT_EQ(host.messages.size(), static_cast<size_t>(i + 1));
        EXPECT_EQ(host.messages.back(), COVER_CANNOT_DOWNLOAD);
        EXPECT_EQ(host.flags.back(), MB_ICONWARNING);
        EXPECT_FALSE(Ended());
        EXPECT_EQ(window->GetResultCount(), 5);
    }
    EXPECT_EQ(host.saves, 0);
    // A save the host could not make ends the window all the same, with
    // no cover.
    host.saveResult = false;
    Click(window->GetPicture(4));
    ASSERT_TRUE(PumpUntil([&] { return Ended(); }, 20));
    EXPECT_EQ(host.saves, 1);
    EXPECT_EQ(window->modalResult, -1);
}

TEST_F(GtkCoverSearch, CancelEndsTheWindowAtOnceWhileAServerStalls) {
    settings.stallSeconds = 30;
    settings.totalMilliseconds = 60000;
    server.Route("/deezer/search/album", TestHttpServer::Stalled("{\"data\":[", 5000));
    window = std::make_unique<PWndGoogle>(&host, settings);
    window->SetQuery("stalled");
    ASSERT_TRUE(window->Create(nullptr));
    ASSERT_TRUE(PumpUntil([&] { return !server.Targets().empty(); }, 5));
    EXPECT_TRUE(window->IsBusy());
    EXPECT_EQ(window->GetStatus().GetText(), "Asking Deezer...");
    auto start = std::chrono::steady_clock::now();
    Click(window->GetCancelButton());
    ASSERT_TRUE(PumpUntil([&] { return Ended(); }, 5));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
    EXPECT_EQ(window->modalResult, -1);
    EXPECT_FALSE(window->IsBusy());
    // The worker, still in its transfer, ends with the window.
    start = std::chrono::steady_clock::now();
    window.reset();
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
    EXPECT_TRUE(host.messages.empty());
}

TEST_F(GtkCoverSearch, AFirstSearchThatFindsNothingEndsTheWindowWithTheMessage) {
    struct {
        const char* name;
        TestHttpServer::Response reply;
        const char* message;
    } cases[] = {
        {"unreachable", TestHttpServer::Status(404, "Not Found"), COVER_NO_CONNECTION},
        {"empty", TestHttpServer::Ok("{\"data\":[]}"), COVER_NOTHING_FOUND},
    };
    for (auto& c : cases) {
        SCOPED_TRACE(c.name);
        host.messages.clear();
        server.Route("/deezer/search/album", c.reply);
        Open();
        ASSERT_TRUE(PumpUntil([&] { return Ended(); }, 5));
        EXPECT_EQ(window->modalResult, -1);
        EXPECT_EQ(host.messages, std::vector<std::string>{c.message});
    }
}

TEST_F(GtkCoverSearch, TheScrollBarShowsOnlyPastTwelveResults) {
    struct {
        int count;
        int shown;
        bool bar;
    } cases[] = {{5, 5, false}, {7, 6, false}, {12, 6, false}, {13, 6, true}};
    for (auto& c : cases) {
        SCOPED_TRACE(c.count);
        server.Route("/deezer/search/album", TestHttpServer::Ok(DeezerThumbs(c.count)));
        Open();
        ASSERT_EQ(window->GetResultCount(), c.count);
        for (int i = 0; i < COVER_PICTURES; ++i) {
            EXPECT_EQ(window->GetPicture(i).IsVisible(), i < c.shown);
            EXPECT_EQ(window->GetLabel(i).IsVisible(), i < c.shown);
        }
        EXPECT_EQ(window->GetScrollBar().IsVisible(), c.bar);
    }
    // Thirteen: the range reaches the seventh result at the left; a click
    // on the bar's right arrow moves every picture along by one.
    SScrollCtrl& bar = window->GetScrollBar();
    EXPECT_EQ(bar.GetMaximum(), 7);
    const SImage* second = &window->GetResult(1).thumb;
    SRect rect = bar.GetRect();
    ASSERT_TRUE(GtkSimulateClick(window->GetHandle(), rect.right - 5, (rect.top + rect.bottom) / 2));
    ASSERT_TRUE(PumpUntil([&] { return bar.GetValue() == 1; }, 5));
    EXPECT_EQ(window->GetPicture(0).GetImage(), second);
}

} // namespace
