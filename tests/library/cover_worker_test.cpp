// The cover search worker against a local server: each source's report
// reaches the owner's thread in order with its thumbnails made, a
// cancelled job reports nothing more, and a worker stuck on a stalled
// server ends when its owner goes. Also the square the window keeps.
#include "library/cover_worker.h"

#include <gtest/gtest.h>

#include <chrono>

#include "foundation/file.h"
#include "library/metadata.h"
#include "support/http_server.h"
#include "support/message_pump.h"

namespace {

std::string Png(int width, int height, uint32_t argb) {
    SImage image;
    image.Create(width, height, PIXEL_FORMAT_32ARGB);
    image.Fill(argb);
    SFileMem file;
    image.Save(&file, IMAGE_PNG);
    return std::string(file.GetData(), static_cast<size_t>(file.GetSize()));
}

TEST(CoverSquare, PicturesAreCroppedAboutTheCentreAndMadeOpaque) {
    // A tall picture: red band on top, blue in the middle, green below.
    SImage tall;
    tall.Create(30, 90, PIXEL_FORMAT_32ARGB);
    tall.Fill(0xFFFF0000u);
    SRect middle{0, 30, 30, 60};
    tall.Fill(0xFF0000FFu, &middle);
    SRect bottom{0, 60, 30, 90};
    tall.Fill(0xFF00FF00u, &bottom);
    SImage square;
    ASSERT_TRUE(MakeSquarePicture(tall, COVER_THUMB_SIDE, &square));
    EXPECT_EQ(square.GetWidth(), COVER_THUMB_SIDE);
    EXPECT_EQ(square.GetHeight(), COVER_THUMB_SIDE);
    EXPECT_EQ(square.GetPixel(37, 37) & 0xFFFFFF, 0x0000FFu) << "only the middle third is kept";
    EXPECT_EQ(square.GetPixel(37, 2) & 0xFFFFFF, 0x0000FFu);
    // Half-transparent pixels become white; a picture of the size already
    // asked is kept as it is.
    SImage clear;
    clear.Create(COVER_SIDE, COVER_SIDE, PIXEL_FORMAT_32ARGB);
    clear.Fill(0x80123456u);
    ASSERT_TRUE(MakeSquarePicture(clear, COVER_SIDE, &square));
    EXPECT_EQ(square.GetPixel(10, 10), 0xFFFFFFFFu);
    SImage empty;
    EXPECT_FALSE(MakeSquarePicture(empty, COVER_SIDE, &square));
}

class CoverWorkerTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_GE(RegisterThread(), 0);
        ASSERT_TRUE(server.Start());
        settings.musicBrainzUrl = "";
        settings.scraperUrl = "";
        settings.itunesUrl = server.Url("/itunes").c_str();
        settings.deezerUrl = server.Url("/deezer").c_str();
        settings.connectMilliseconds = 1000;
        settings.stallSeconds = 30;
        settings.totalMilliseconds = 60000;
        server.Route("/img/red.png", TestHttpServer::Ok(Png(40, 20, 0xFFFF0000u)));
        server.Route("/img/big.png", TestHttpServer::Ok(Png(300, 200, 0xFF00FF00u)));
    }
    void TearDown() override { ResetThreadTable(); }

    std::string Deezer(const std::vector<std::string>& pictures) {
        std::string json = "{\"data\":[";
        for (size_t i = 0; i < pictures.size(); ++i) {
            json += (i > 0 ? "," : "") + std::string("{\"title\":\"A") + std::to_string(i) +
                    "\",\"cover_big\":\"" + server.Url(pictures[i]) + "\"}";
        }
        return json + "]}";
    }

    TestHttpServer server;
    PCoverSearchSettings settings;
};

TEST_F(CoverWorkerTest, EachSourceReportsInTurnWithItsThumbnailsThenTheEnd) {
    server.Route("/deezer/search/album",
                 TestHttpServer::Ok(Deezer({"/img/red.png", "/img/missing.png", "/img/red.png"})));
    server.Route("/itunes/search", TestHttpServer::Status(500, "Server Error"));
    std::vector<PCoverReport> reports;
    PCoverWorker worker(settings, [&](PCoverReport&& report) { reports.push_back(std::move(report)); });
    int job = worker.Search("x", {COVER_SOURCE_DEEZER, COVER_SOURCE_ITUNES}, {0, 0});
    ASSERT_GT(job, 0);
    EXPECT_TRUE(worker.IsBusy());
    ASSERT_TRUE(PumpUntil([&] { return !worker.IsBusy(); }));
    ASSERT_EQ(reports.size(), 3u);
    EXPECT_EQ(reports[0].source, COVER_SOURCE_DEEZER);
    EXPECT_EQ(reports[0].status, 3);
    // The picture that cannot be had is left out, without a gap.
    ASSERT_EQ(reports[0].found.size(), 2u);
    EXPECT_STREQ(reports[0].found[1].candidate.label.c_str(), "A2");
    EXPECT_EQ(reports[0].found[0].thumb.GetWidth(), COVER_THUMB_SIDE);
    EXPECT_EQ(reports[0].found[0].thumb.GetPixel(5, 5) & 0xFFFFFF, 0xFF0000u);
    EXPECT_EQ(reports[1].source, COVER_SOURCE_ITUNES);
    EXPECT_EQ(reports[1].status, COVER_FETCH_FAILED);
    EXPECT_EQ(reports[2].kind, COVER_REPORT_END);
    for (const PCoverReport& report : reports) {
        EXPECT_EQ(report.job, job);
    }

    // A full picture comes back as the cover's square; one that cannot be
    // had as an empty picture.
    reports.clear();
    worker.FetchCover(server.Url("/img/big.png").c_str());
    worker.FetchCover(server.Url("/img/missing.png").c_str());
    ASSERT_TRUE(PumpUntil([&] { return reports.size() == 2; }));
    EXPECT_EQ(reports[0].kind, COVER_REPORT_IMAGE);
    EXPECT_EQ(reports[0].image.GetWidth(), COVER_SIDE);
    EXPECT_EQ(reports[0].image.GetPixel(75, 75) & 0xFFFFFF, 0x00FF00u);
    EXPECT_FALSE(reports[1].image.IsValid());
}

TEST_F(CoverWorkerTest, ACancelledJobReportsNothingAndTheNextRuns) {
    server.Route("/deezer/search/album", TestHttpServer::Stalled("{\"data\":[", 5000));
    server.Route("/itunes/search", TestHttpServer::Ok("{\"results\":[]}"));
    std::vector<PCoverReport> reports;
    PCoverWorker worker(settings, [&](PCoverReport&& report) { reports.push_back(std::move(report)); });
    ASSERT_GT(worker.Search("x", {COVER_SOURCE_DEEZER, COVER_SOURCE_ITUNES}, {0, 0}), 0);
    PumpFor(200);
    worker.CancelJob();
    EXPECT_FALSE(worker.IsBusy()) << "at once, without waiting for the worker";
    int next = worker.Search("y", {COVER_SOURCE_ITUNES}, {0});
    ASSERT_TRUE(PumpUntil([&] { return !worker.IsBusy(); }));
    ASSERT_EQ(reports.size(), 2u);
    EXPECT_EQ(reports[0].job, next);
    EXPECT_EQ(reports[0].status, 0);
    EXPECT_EQ(reports[1].kind, COVER_REPORT_END);
}

TEST_F(CoverWorkerTest, AWorkerOnAStalledServerEndsWithItsOwner) {
    server.Route("/deezer/search/album", TestHttpServer::Stalled("{\"data\":[", 5000));
    bool reported = false;
    auto worker = std::make_unique<PCoverWorker>(settings, [&](PCoverReport&&) { reported = true; });
    ASSERT_GT(worker->Search("x", {COVER_SOURCE_DEEZER}, {0}), 0);
    PumpFor(200);
    auto start = std::chrono::steady_clock::now();
    worker.reset();
    // Well before the 30 seconds the transfer's own limit allows.
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
    PumpFor(50);
    EXPECT_FALSE(reported);
}

} // namespace
