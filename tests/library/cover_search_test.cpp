// The cover search without a window: the readers of each source's reply on
// hand-written fixtures, and the requests against a local server (what is
// asked, the User-Agent, garbage, a stalled server, bodies over the limits,
// pictures too large to decode).
#include "library/cover_search.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstring>
#include <thread>

#include "foundation/file.h"
#include "foundation/image.h"
#include "library/json_reader.h"
#include "support/cover_pictures.h"
#include "support/http_server.h"

namespace {

// A small picture in PNG form.
std::string PngBytes(int width, int height) {
    SImage image;
    image.Create(width, height, PIXEL_FORMAT_24RGB);
    SFileMem file;
    image.Save(&file, IMAGE_PNG);
    return std::string(file.GetData(), static_cast<size_t>(file.GetSize()));
}

// A 24-bit BMP of width by 1 pixels, every byte present.
std::string WideBmp(int width) {
    int row = (width * 3 + 3) / 4 * 4;
    std::string bytes(54 + row, '\0');
    auto put = [&](int at, uint32_t value, int count) {
        for (int i = 0; i < count; ++i) {
            bytes[at + i] = static_cast<char>((value >> (8 * i)) & 0xFF);
        }
    };
    bytes[0] = 'B';
    bytes[1] = 'M';
    put(2, static_cast<uint32_t>(bytes.size()), 4);
    put(10, 54, 4);
    put(14, 40, 4);
    put(18, static_cast<uint32_t>(width), 4);
    put(22, 1, 4);
    put(26, 1, 2);
    put(28, 24, 2);
    put(34, static_cast<uint32_t>(row), 4);
    return bytes;
}

struct Expected {
    const char* imageUrl;
    const char* thumbUrl;
    const char* label;
    int width;
    int height;
};

void ExpectCandidates(const std::vector<PCoverCandidate>& found, int source,
                      const std::vector<Expected>& expected) {
    ASSERT_EQ(found.size(), expected.size());
    for (size_t i = 0; i < expected.size(); ++i) {
        SCOPED_TRACE(i);
        EXPECT_STREQ(found[i].imageUrl.c_str(), expected[i].imageUrl);
        EXPECT_STREQ(found[i].thumbUrl.c_str(), expected[i].thumbUrl);
        EXPECT_STREQ(found[i].label.c_str(), expected[i].label);
        EXPECT_EQ(found[i].width, expected[i].width);
        EXPECT_EQ(found[i].height, expected[i].height);
        EXPECT_EQ(found[i].source, source);
    }
}

TEST(CoverReaders, EachSourcesReplyGivesItsCandidatesAndSkipsUnusableEntries) {
    std::vector<PCoverCandidate> found;
    std::string page = CoverFixture("scraped_page.htm");
    // The third result has an empty picture address: the scan ends there,
    // and the fourth is never reached.
    EXPECT_EQ(ReadScrapedPage(page.data(), page.size(), &found), 2);
    ExpectCandidates(
        found, COVER_SOURCE_SCRAPER,
        {{"http://covers.example.org/harbour.jpg",
          "http://tbn0.google.com/images?q=tbn:AAA111:covers.example.org/harbour.jpg", "600 x 600",
          600, 600},
         {"http://shop.example.net/img/hl_small.png",
          "http://tbn1.google.com/images?q=tbn:BBB222:shop.example.net/img/hl_small.png",
          "90 x 120", 90, 120}});

    found.clear();
    std::string mb = CoverFixture("musicbrainz_releases.json");
    EXPECT_EQ(ReadMusicBrainzReleases(mb.data(), mb.size(), "http://127.0.0.1:9/caa/", &found), 2);
    ExpectCandidates(
        found, COVER_SOURCE_MUSICBRAINZ,
        {{"http://127.0.0.1:9/caa/release/1f3a5c2e-8b4d-4e6f-9a1b-2c3d4e5f6a7b/front",
          "http://127.0.0.1:9/caa/release/1f3a5c2e-8b4d-4e6f-9a1b-2c3d4e5f6a7b/front-250",
          "Elin Vass & The Tidewater Band - Harbour Lights", 0, 0},
         {"http://127.0.0.1:9/caa/release/ABCDEF01-2345-4678-9ABC-DEF012345678/front",
          "http://127.0.0.1:9/caa/release/ABCDEF01-2345-4678-9ABC-DEF012345678/front-250",
          "Elin Vass - Harbour Lights (Live at the Pier \xE2\x80\x93 1999)", 0, 0}});

    found.clear();
    std::string itunes = CoverFixture("itunes_albums.json");
    EXPECT_EQ(ReadItunesAlbums(itunes.data(), itunes.size(), &found), 2);
    ExpectCandidates(
        found, COVER_SOURCE_ITUNES,
        {{"https://is1-ssl.mzstatic.com/image/thumb/Music/v4/aa/bb/cc/abc.jpg/600x600bb.jpg",
          "https://is1-ssl.mzstatic.com/image/thumb/Music/v4/aa/bb/cc/abc.jpg/100x100bb.jpg",
          "Elin Vass - Harbour Lights", 600, 600},
         {"http://is2.mzstatic.com/image/thumb/other/cover.png",
          "http://is2.mzstatic.com/image/thumb/other/cover.png", "Elin Vass - Night Ferry", 100,
          100}});

    found.clear();
    std::string deezer = CoverFixture("deezer_albums.json");
    EXPECT_EQ(ReadDeezerAlbums(deezer.data(), deezer.size(), &found), 2);
    ExpectCandidates(
        found, COVER_SOURCE_DEEZER,
        {{"https://e-cdns-images.dzcdn.net/images/cover/2e018122/1000x1000-000000-80-0-0.jpg",
          "https://e-cdns-images.dzcdn.net/images/cover/2e018122/250x250-000000-80-0-0.jpg",
          "Elin Vass - Harbour Lights", 1000, 1000},
         {"https://e-cdns-images.dzcdn.net/images/cover/77/56x56-000000-80-0-0.jpg",
          "https://e-cdns-images.dzcdn.net/images/cover/77/56x56-000000-80-0-0.jpg",
          "Elin Vass - Sm\xC3\xA5 Hav", 56, 56}});
}

TEST(CoverReaders, ForeignOrDamagedRepliesGiveNothing) {
    const char* replies[] = {
        "",
        "<html>Service Unavailable</html>",
        "{\"releases\": {\"id\": 1}, \"results\": 5, \"data\": \"none\"}",
        "{\"releases\": [1, \"x\", null, []], \"results\": [[]], \"data\": [true]}",
        "{\"releases\": [{\"id\": \"1f3a5c2e-8b4d-4e6f-9a1b-2c3d4e5f6a7b\"", // cut short
        "[{\"data\": []}]",
        "{\"data\": [{\"cover_xl\": \"javascript:alert(1)\", \"cover_big\": \"http://a b\"}]}",
        // the scraper's marks without the rest of a result
        "<a href=/imgres?imgurl=http://x/y.jpg&w=1",
        "<a href=/imgres?>",
        "<a href=/imgres?imgurl=http://x/y.jpg> .google.com/images?q=tbn:no-blank-after",
    };
    // Sides too large to be true are capped rather than wrapped.
    std::vector<PCoverCandidate> huge;
    const char* page = "<a href=/imgres?imgurl=http://x/y.jpg&w=99999999999999&h=7>"
                       " http://tbn0.google.com/images?q=tbn:A ";
    ASSERT_EQ(ReadScrapedPage(page, std::strlen(page), &huge), 1);
    EXPECT_EQ(huge[0].width, 1000000);
    EXPECT_EQ(huge[0].height, 7);
    for (const char* reply : replies) {
        SCOPED_TRACE(reply);
        std::vector<PCoverCandidate> found;
        size_t size = std::strlen(reply);
        EXPECT_EQ(ReadScrapedPage(reply, size, &found), 0);
        EXPECT_EQ(ReadMusicBrainzReleases(reply, size, "http://127.0.0.1", &found), 0);
        EXPECT_EQ(ReadItunesAlbums(reply, size, &found), 0);
        EXPECT_EQ(ReadDeezerAlbums(reply, size, &found), 0);
        EXPECT_TRUE(found.empty());
    }
    // An archive address that is no web address gives no candidate.
    std::vector<PCoverCandidate> found;
    std::string mb = CoverFixture("musicbrainz_releases.json");
    EXPECT_EQ(ReadMusicBrainzReleases(mb.data(), mb.size(), "", &found), 0);
}

TEST(CoverReaders, AReplyGivesAtMostTheResultLimit) {
    std::string json = "{\"data\":[";
    for (int i = 0; i < COVER_MAX_RESULTS + 10; ++i) {
        json += i > 0 ? "," : "";
        json += "{\"cover_big\":\"http://127.0.0.1/" + std::to_string(i) + ".jpg\"}";
    }
    json += "]}";
    std::vector<PCoverCandidate> found;
    EXPECT_EQ(ReadDeezerAlbums(json.data(), json.size(), &found), COVER_MAX_RESULTS);
}

TEST(CoverRequests, QueriesArePercentEncodedByteByByteUnderTheConfiguredBase) {
    const char* query = "Bj\xC3\xB6rk & Gu\xC3\xB0 / Homogenic";
    const char* encoded = "Bj%C3%B6rk%20%26%20Gu%C3%B0%20%2F%20Homogenic";
    EXPECT_STREQ(PercentEncode(query).c_str(), encoded);
    struct {
        SString request;
        std::string expected;
    } cases[] = {
        {MakeScraperRequest("http://h/", query, 12),
         std::string("http://h/images?hl=en&safe=off&q=") + encoded + "&start=12"},
        {MakeMusicBrainzRequest("http://h", query),
         std::string("http://h/ws/2/release/?fmt=json&limit=25&query=") + encoded},
        {MakeItunesRequest("http://h//", query),
         std::string("http://h/search?media=music&entity=album&limit=25&term=") + encoded},
        {MakeDeezerRequest("http://h", query),
         std::string("http://h/search/album?limit=25&q=") + encoded},
        // The next results of "More".
        {MakeMusicBrainzRequest("http://h", query, 25),
         std::string("http://h/ws/2/release/?fmt=json&limit=25&offset=25&query=") + encoded},
        {MakeDeezerRequest("http://h", query, 3),
         std::string("http://h/search/album?limit=25&index=3&q=") + encoded},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(std::string(c.request.c_str()), c.expected);
    }
}

SString StoredScraperAndDeezer(const char* name) {
    if (std::strcmp(name, COVER_SCRAPER_URL_VALUE) == 0) {
        return SString(" http://127.0.0.1:8080/img ");
    }
    if (std::strcmp(name, COVER_DEEZER_URL_VALUE) == 0) {
        return SString("http://127.0.0.1:8081");
    }
    return SString("");
}

SString NothingStored(const char*) {
    return SString("");
}

TEST(CoverSettings, StoredAddressesReplaceTheDefaultsAndTheScraperIsOffWithoutOne) {
    PCoverSearchSettings none = ReadCoverSearchSettings(NothingStored);
    EXPECT_TRUE(none.scraperUrl.IsEmpty());
    EXPECT_FALSE(PCoverSearch(none).IsEnabled(COVER_SOURCE_SCRAPER));
    EXPECT_STREQ(none.musicBrainzUrl.c_str(), DEFAULT_MUSICBRAINZ_URL);
    EXPECT_STREQ(none.coverArtUrl.c_str(), DEFAULT_COVER_ART_ARCHIVE_URL);
    EXPECT_STREQ(none.itunesUrl.c_str(), DEFAULT_ITUNES_URL);
    EXPECT_STREQ(none.deezerUrl.c_str(), DEFAULT_DEEZER_URL);
    PCoverSearchSettings some = ReadCoverSearchSettings(StoredScraperAndDeezer);
    EXPECT_STREQ(some.scraperUrl.c_str(), "http://127.0.0.1:8080/img");
    EXPECT_TRUE(PCoverSearch(some).IsEnabled(COVER_SOURCE_SCRAPER));
    EXPECT_STREQ(some.deezerUrl.c_str(), "http://127.0.0.1:8081");
    EXPECT_STREQ(some.itunesUrl.c_str(), DEFAULT_ITUNES_URL);
}

TEST(JsonReader, AcceptsValidTextAndRefusesTheRest) {
    struct {
        const char* text;
        bool valid;
    } cases[] = {
        {"{}", true},
        {" [1, -2.5e3, true, false, null, \"a\"] ", true},
        {"\xEF\xBB\xBF{\"a\":{\"b\":[]}}", true},
        {"\"\\ud83c\\udfb5 \\u00e5\"", true},
        {"", false},
        {"{", false},
        {"[1,]", false},
        {"{\"a\" 1}", false},
        {"{\"a\":1,}", false},
        {"[1] 2", false},
        {"\"tab\tinside\"", false},
        {"\"\\x\"", false},
        {"\"\\u12\"", false},
        {"tru", false},
        {"-", false},
        {"{1:2}", false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        PJsonValue value;
        EXPECT_EQ(ReadJson(c.text, std::strlen(c.text), &value), c.valid);
    }
    PJsonValue value;
    const char* text = "[\"\\ud83c\\udfb5\", \"\\udfb5x\", \"a\\/b\\n\"]";
    ASSERT_TRUE(ReadJson(text, std::strlen(text), &value));
    ASSERT_EQ(value.items.size(), 3u);
    EXPECT_EQ(value.items[0].text, "\xF0\x9F\x8E\xB5");
    EXPECT_EQ(value.items[1].text, "\xEF\xBF\xBDx"); // a lone low surrogate
    EXPECT_EQ(value.items[2].text, "a/b\n");
}

TEST(JsonReader, DeepNestingAndTooManyValuesFailWithoutExhaustingTheStack) {
    PJsonValue value;
    std::string deep(JSON_MAX_DEPTH + 1, '[');
    deep += std::string(JSON_MAX_DEPTH + 1, ']');
    EXPECT_TRUE(ReadJson(deep.data(), deep.size(), &value));
    std::string deeper(100000, '[');
    deeper += std::string(100000, ']');
    EXPECT_FALSE(ReadJson(deeper.data(), deeper.size(), &value));
    std::string many = "[";
    for (size_t i = 0; i < JSON_MAX_VALUES; ++i) {
        many += "0,";
    }
    many += "0]";
    EXPECT_FALSE(ReadJson(many.data(), many.size(), &value));
}

class CoverSearchServer : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(server.Start());
        settings.scraperUrl = server.Url("/scrape").c_str();
        settings.musicBrainzUrl = server.Url("/mb").c_str();
        settings.coverArtUrl = server.Url("/caa").c_str();
        settings.itunesUrl = server.Url("/itunes").c_str();
        settings.deezerUrl = server.Url("/deezer").c_str();
        settings.connectMilliseconds = 1000;
        settings.stallSeconds = 1;
        settings.totalMilliseconds = 3000;
        settings.replyLimitBytes = 64 * 1024;
        settings.imageLimitBytes = 256 * 1024;
    }

    TestHttpServer server;
    PCoverSearchSettings settings;
};

TEST_F(CoverSearchServer, EachSourceIsAskedAtItsAddressWithTheProgramsAgent) {
    server.Route("/scrape/images", TestHttpServer::Ok(CoverFixture("scraped_page.htm")));
    server.Route("/mb/ws/2/release/",
                 TestHttpServer::Ok(CoverFixture("musicbrainz_releases.json")));
    server.Route("/itunes/search", TestHttpServer::Ok(CoverFixture("itunes_albums.json"), false));
    server.Route("/deezer/search/album", TestHttpServer::Ok(CoverFixture("deezer_albums.json")));
    PCoverSearch search(settings);
    std::vector<PCoverCandidate> found;
    EXPECT_EQ(search.Search(COVER_SOURCE_SCRAPER, "elin vass", 0, &found), 2);
    EXPECT_EQ(search.Search(COVER_SOURCE_MUSICBRAINZ, "elin vass", 0, &found), 2);
    EXPECT_EQ(search.Search(COVER_SOURCE_ITUNES, "elin vass", 0, &found), 2);
    EXPECT_EQ(search.Search(COVER_SOURCE_DEEZER, "elin vass", 0, &found), 2);
    ASSERT_EQ(found.size(), 8u);
    EXPECT_EQ(std::string(found[2].imageUrl.c_str()),
              server.Url("/caa/release/1f3a5c2e-8b4d-4e6f-9a1b-2c3d4e5f6a7b/front"));
    EXPECT_EQ(server.Targets(),
              (std::vector<std::string>{
                  "/scrape/images?hl=en&safe=off&q=elin%20vass&start=0",
                  "/mb/ws/2/release/?fmt=json&limit=25&query=elin%20vass",
                  "/itunes/search?media=music&entity=album&limit=25&term=elin%20vass",
                  "/deezer/search/album?limit=25&q=elin%20vass"}));
    std::string agent =
        std::string("User-Agent: ") + CoverSearchUserAgent(nullptr).c_str() + "\r\n";
    EXPECT_EQ(agent.rfind("User-Agent: Melkora Browser/", 0), 0u);
    EXPECT_NE(agent.find(" (+https://"), std::string::npos);
    EXPECT_NE(server.LastHeaders().find(agent), std::string::npos);
}

TEST_F(CoverSearchServer, TheScraperIsOffWithoutAnAddress) {
    settings.scraperUrl = "";
    PCoverSearch search(settings);
    std::vector<PCoverCandidate> found;
    EXPECT_FALSE(search.IsEnabled(COVER_SOURCE_SCRAPER));
    EXPECT_TRUE(search.IsEnabled(COVER_SOURCE_DEEZER));
    EXPECT_EQ(search.Search(COVER_SOURCE_SCRAPER, "x", 0, &found), COVER_FETCH_FAILED);
    EXPECT_TRUE(server.Targets().empty());
}

TEST_F(CoverSearchServer, FailuresAreTellableFromRepliesWithoutResults) {
    server.Route("/mb/ws/2/release/", TestHttpServer::Ok("\x89PNG\r\n\x1a\ngarbage{{{["));
    server.Route("/itunes/search", TestHttpServer::Status(503, "Service Unavailable"));
    server.Route("/deezer/search/album", TestHttpServer::Ok(std::string(100 * 1024, '[')));
    server.Route("/scrape/images", TestHttpServer::Stalled("<html><a href=/imgres?", 5000));
    PCoverSearch search(settings);
    std::vector<PCoverCandidate> found;
    // Garbage is a reply without results; an error status, a body over the
    // limit and a server that stops sending are failures.
    EXPECT_EQ(search.Search(COVER_SOURCE_MUSICBRAINZ, "x", 0, &found), 0);
    EXPECT_EQ(search.Search(COVER_SOURCE_ITUNES, "x", 0, &found), COVER_FETCH_FAILED);
    EXPECT_EQ(search.Search(COVER_SOURCE_DEEZER, "x", 0, &found), COVER_FETCH_FAILED);
    auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(search.Search(COVER_SOURCE_SCRAPER, "x", 0, &found), COVER_FETCH_FAILED);
    // Bounded by the stall limit of one second, well before the server ends.
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
    EXPECT_TRUE(found.empty());
}

TEST_F(CoverSearchServer, CancelEndsATransferTheServerStalls) {
    settings.stallSeconds = 30;
    settings.totalMilliseconds = 60000;
    server.Route("/deezer/search/album", TestHttpServer::Stalled("{\"data\":[", 5000));
    PCoverSearch search(settings);
    std::thread canceller([&search] {
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        search.Cancel();
    });
    std::vector<PCoverCandidate> found;
    auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(search.Search(COVER_SOURCE_DEEZER, "x", 0, &found), COVER_FETCH_FAILED);
    canceller.join();
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
    // Refused until reset.
    server.Route("/itunes/search", TestHttpServer::Ok(CoverFixture("itunes_albums.json")));
    EXPECT_EQ(search.Search(COVER_SOURCE_ITUNES, "x", 0, &found), COVER_FETCH_FAILED);
    search.Reset();
    EXPECT_EQ(search.Search(COVER_SOURCE_ITUNES, "x", 0, &found), 2);
}

TEST_F(CoverSearchServer, PicturesAreDecodedWithinTheByteAndPixelLimits) {
    server.Route("/img/cover.png", TestHttpServer::Ok(PngBytes(300, 200)));
    server.Route("/img/edge.bmp", TestHttpServer::Ok(WideBmp(IMAGE_MAX_SIDE)));
    server.Route("/img/wide.bmp", TestHttpServer::Ok(WideBmp(IMAGE_MAX_SIDE + 1)));
    server.Route("/img/huge.png", TestHttpServer::Ok(std::string(300 * 1024, 'x'), false));
    server.Route("/img/text.png", TestHttpServer::Ok("not a picture"));
    server.Route("/img/small-bomb.png", TestHttpServer::Ok(PngBomb(1000)));
    server.Route("/img/bomb.png", TestHttpServer::Ok(PngBomb(12000)));
    PCoverSearch search(settings);
    struct {
        const char* path;
        bool loads;
        int width;
    } cases[] = {
        {"/img/cover.png", true, 300},       {"/img/edge.bmp", true, IMAGE_MAX_SIDE},
        {"/img/wide.bmp", false, 0},         {"/img/huge.png", false, 0},
        {"/img/text.png", false, 0},         {"/img/missing.png", false, 0},
        {"/img/small-bomb.png", true, 1000}, {"/img/bomb.png", false, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.path);
        SImage image;
        EXPECT_EQ(search.FetchImage(server.Url(c.path).c_str(), &image), c.loads);
        EXPECT_EQ(image.GetWidth(), c.width);
    }
    SImage image;
    EXPECT_FALSE(search.FetchImage("file:///etc/hostname", &image));
}

} // namespace
