// PWndThumbs on GTK under a virtual X display (run by xvfb-run): a folder
// of albums with drawn covers, made by the folder view as the main window
// makes it, shown with the pointer over a card that plays. The frame the X
// server shows is checked and written to the build folder as
// thumbnails.png.
#include <gtest/gtest.h>

#include <cairo.h>
#include <array>
#include <cmath>
#include <string>

#include "foundation/file.h"
#include "library/folder_view.h"
#include "panels/thumbs_host.h"
#include "pages/resources.h"
#include "panels/resources.h"
#include "panels/thumbs_wnd.h"
#include "support/message_pump.h"
#include "support/pixels.h"
#include "support/temp_dir.h"
#include "toolkit/platform/events.h"
#include "toolkit/platform/gtk/gtk_platform.h"
#include "toolkit/wnd_app.h"

namespace {

// A cover: a two-colour gradient with a ring and a bar, as record sleeves
// often are, written as a JPEG larger than the card.
void WriteCover(const std::string& path, double hue) {
    const int side = 600;
    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, side, side);
    cairo_t* cr = cairo_create(surface);
    auto colour = [](double h, double light) {
        double r = 0.5 + 0.5 * std::cos(h), g = 0.5 + 0.5 * std::cos(h - 2.1),
               b = 0.5 + 0.5 * std::cos(h + 2.1);
        return std::array<double, 3>{r * light, g * light, b * light};
    };
    cairo_pattern_t* pattern = cairo_pattern_create_linear(0, 0, side, side);
    auto a = colour(hue, 0.95), b = colour(hue + 1.2, 0.45);
    cairo_pattern_add_color_stop_rgb(pattern, 0, a[0], a[1], a[2]);
    cairo_pattern_add_color_stop_rgb(pattern, 1, b[0], b[1], b[2]);
    cairo_set_source(cr, pattern);
    cairo_paint(cr);
    cairo_pattern_destroy(pattern);
    cairo_set_source_rgba(cr, 1, 1, 1, 0.8);
    cairo_set_line_width(cr, 36);
    cairo_arc(cr, side * 0.62, side * 0.42, side * 0.22, 0, 2 * M_PI);
    cairo_stroke(cr);
    cairo_set_source_rgba(cr, 0, 0, 0, 0.55);
    cairo_rectangle(cr, 0, side * 0.78, side, side * 0.1);
    cairo_fill(cr);
    cairo_destroy(cr);
    cairo_surface_flush(surface);
    SImage image;
    image.LoadSurface(surface, 0, 0);
    cairo_surface_destroy(surface);
    SFilePath file;
    ASSERT_TRUE(file.Open(path.c_str(), true, true, false, false));
    ASSERT_TRUE(image.Save(&file, IMAGE_JPEG));
}

uint32_t Rgb(const SImage& picture, int x, int y) {
    return picture.GetPixel(x, y) & 0xFFFFFF;
}

template <typename Done> bool Until(Done done) {
    return PumpUntil([&] {
        GtkSync();
        return done();
    });
}

TEST(ThumbsOnGtk, AFolderOfCardsWithThePointerOverOneThatPlays) {
    ASSERT_TRUE(UseGtkPlatform()) << "no X display: run under xvfb-run";
    ASSERT_TRUE(ToolkitStart(nullptr, SW_SHOW, false, false, false));
    TempDir dir;
    const char* albums[] = {"Blue Train",
                            "Kind of Blue",
                            "A Love Supreme",
                            "Mingus Ah Um",
                            "Time Out",
                            "Somethin' Else",
                            "The Shape of Jazz to Come and Other Long Titles That Wrap",
                            "Moanin'",
                            "Saxophone Colossus",
                            "Études pour piano",
                            "Out to Lunch!",
                            "Maiden Voyage"};
    int index = 0;
    for (const char* album : albums) {
        dir.Write(std::string("Jazz/") + album + "/01 Track.mp3", "");
        // Two folders hold more folders: those open instead of playing.
        if (index % 5 == 2) {
            dir.Write(std::string("Jazz/") + album + "/Disc 1/01 Track.mp3", "");
        }
        if (index != 4) { // one album without a cover shows the default one
            WriteCover(dir / (std::string("Jazz/") + album + ".jpg"), index * 0.55);
        }
        ++index;
    }
    PFolderView view;
    view.SetRoot((dir.Path() + "/").c_str());
    EnsurePanelsResources();
    SImage defaultCover;
    ASSERT_TRUE(defaultCover.LoadResource("BINARY", RESOURCE_DEFAULT_COVER));
    view.GetCovers().SetDefaultCover(&defaultCover);
    ASSERT_TRUE(view.NavigateFolder("Jazz", "", true));

    ThumbsHost host;
    {
        SWnd top;
        SRect bounds{20, 20, 20 + 900, 20 + 640};
        ASSERT_TRUE(top.Create("Melkora thumbnails", WS_VISIBLE, 0, &bounds, 0));
        PWndThumbs thumbs(&host);
        ASSERT_TRUE(thumbs.Create(&top, SRect{0, 0, 900, 640}));
        thumbs.SetThumbs(view.GetThumbnails());
        ASSERT_EQ(thumbs.GetThumbCount(), 12);
        ASSERT_EQ(thumbs.GetColumns(), 5);

        // The pointer over the second card of the first row, an album.
        int hovered = 1;
        ASSERT_TRUE(thumbs.IsThumbMedia(hovered));
        SRect card = thumbs.GetCardRect(hovered);
        PlatformMouse(top.GetHandle(), WM_MOUSEMOVE, card.left + 100, card.top + 100, 0);
        SImage shot;
        ASSERT_TRUE(Until([&] {
            return GtkCaptureSurface(top.GetHandle(), &shot) && shot.GetWidth() == 900 &&
                   thumbs.GetHoverIndex() == hovered && Rgb(shot, 10, 600) == 0x42779C &&
                   Rgb(shot, card.left + 86 + 32, card.top + 86 + 32) == 0xFFFFFF;
        })) << "the hovered frame was not drawn";
        // The play overlay's white triangle, on the hovered card only.
        SRect other = thumbs.GetCardRect(3);
        EXPECT_NE(Rgb(shot, other.left + 86 + 32, other.top + 86 + 32), 0xFFFFFFu);
        // Each label is dark ink inside its box.
        for (int i : {0, 6}) {
            SRect box = thumbs.GetCardRect(i);
            SRect label{box.left + 12, box.top + 160, box.left + 146, box.top + 185};
            EXPECT_GT(CountNear(shot, label, 0x000000, 150), 20) << "label " << i;
        }

        SFilePath file;
        std::string path = std::string(MELKORA_SCREENSHOT_DIR) + "/thumbnails.png";
        ASSERT_TRUE(file.Open(path.c_str(), true, true, false, false));
        EXPECT_TRUE(shot.Save(&file, IMAGE_PNG));
        file.Close();
        thumbs.Destroy();
        top.Destroy();
    }
    ToolkitEnd();
}

} // namespace
