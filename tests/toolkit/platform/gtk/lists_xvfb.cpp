// The list controls on GTK under a virtual X display: a list, a report
// list view and a combo box with its drop-down open in a popup surface,
// read back from the X server. The picture of all three goes to the build
// folder (lists.png); docs/lists.png is a copy of it.
#include <gtest/gtest.h>

#include <cairo.h>

#include <string>

#include "foundation/file.h"
#include "toolkit/combo_ctrl.h"
#include "toolkit/ex_list_ctrl.h"
#include "toolkit/list_ctrl.h"
#include "toolkit/platform/gtk/gtk_platform.h"
#include "toolkit/platform/gtk/gtk_pump.h"
#include "toolkit/sys_colors.h"
#include "toolkit/wnd.h"
#include "toolkit/wnd_app.h"

namespace {

uint32_t Rgb(const SImage& picture, int x, int y) {
    return picture.GetPixel(x, y) & 0xFFFFFF;
}

uint32_t ToRgb(uint32_t color) {
    return ((color & 0xFF) << 16) | (color & 0xFF00) | ((color >> 16) & 0xFF);
}

// The window's picture with the popup's laid over it where it shows.
bool Compose(const SImage& window, const SRect& windowRect, const SImage& popup,
             const SRect& popupRect, SImage* result) {
    int width = std::max(window.GetWidth(), popupRect.right - windowRect.left);
    int height = std::max(window.GetHeight(), popupRect.bottom - windowRect.top);
    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height);
    cairo_t* cr = cairo_create(surface);
    cairo_set_source_rgb(cr, 1, 1, 1);
    cairo_paint(cr);
    window.DrawAt(cr, 0, 0);
    popup.DrawAt(cr, popupRect.left - windowRect.left, popupRect.top - windowRect.top);
    cairo_destroy(cr);
    cairo_surface_flush(surface);
    bool loaded = result->LoadSurface(surface, 0, 0);
    cairo_surface_destroy(surface);
    return loaded;
}

TEST(GtkLists, AListAReportAndAnOpenComboBoxDrawWithTheThemeColours) {
    ASSERT_TRUE(UseGtkPlatform()) << "no X display: run under xvfb-run";
    ASSERT_TRUE(ToolkitStart(nullptr, SW_SHOW, false, false, false));
    {
        SWnd top;
        SRect bounds{40, 40, 640, 320};
        ASSERT_TRUE(top.Create("Melkora lists", WS_VISIBLE, 0, &bounds, 0));
        top.SetBackColor(GetSysColor(SYS_COLOR_BTNFACE));

        SListCtrl list;
        ASSERT_TRUE(list.Create(&top, SRect{10, 10, 190, 270}, 1, LIST_SELECTION_EXTENDED));
        list.SetCheckBoxes(true);
        std::vector<std::string> rows;
        for (int i = 0; i < 100000; ++i) {
            rows.push_back("Track " + std::to_string(i + 1));
        }
        list.AddRows(rows);
        list.SetCheck(1, true);
        list.SelectRange(2, 4);
        SetFocus(list.GetHandle());
        list.SetCurrentRow(4);

        SExListCtrl report;
        ASSERT_TRUE(report.Create(&top, SRect{200, 10, 590, 150}, 2, LIST_SELECTION_SINGLE));
        report.InsertColumn(0, "Title", 170);
        report.InsertColumn(1, "Artist", 130);
        report.InsertColumn(2, "Time", 60, 2);
        const char* songs[][3] = {{"Blue in Green", "Miles Davis", "5:37"},
                                  {"So What", "Miles Davis", "9:22"},
                                  {"Naima", "John Coltrane", "4:21"},
                                  {"Goodbye Pork Pie Hat", "Charles Mingus", "5:45"}};
        for (const auto& song : songs) {
            int row = report.AddRow(song[0]);
            report.SetItemText(row, 1, song[1]);
            report.SetItemText(row, 2, song[2]);
        }
        report.SetCurrentRow(1);

        SComboCtrl combo;
        ASSERT_TRUE(combo.Create(&top, SRect{200, 165, 400, 191}, 3));
        for (const char* genre : {"Rock", "Jazz", "Blues", "Folk", "Classical"}) {
            combo.AddText(genre);
        }
        combo.SetSelectedIndex(1);
        SetFocus(combo.GetHandle());
        combo.OpenList();
        ASSERT_TRUE(combo.IsListOpen());
        SListCtrl* popupList = combo.GetPopupList();
        ASSERT_NE(popupList, nullptr);
        popupList->SetCurrentRow(2);

        SImage shot, popupShot;
        uint32_t highlight = ToRgb(GetSysColor(SYS_COLOR_HIGHLIGHT));
        HWND popup = combo.GetPopup()->GetHandle();
        // A selected row of the list, the header of the report, the current
        // item of the popup.
        int listRow = 10 + 2 * list.GetRowHeight() + 3;
        int popupRow = 1 + 2 * popupList->GetRowHeight() + 3;
        EXPECT_TRUE(PumpUntil([&] {
            return GtkCaptureSurface(top.GetHandle(), &shot) && shot.GetWidth() >= 600 &&
                   Rgb(shot, 150, listRow) == highlight && GtkCaptureSurface(popup, &popupShot) &&
                   popupShot.GetWidth() > 100 && Rgb(popupShot, 150, popupRow) == highlight;
        })) << "the lists were not drawn: "
            << std::hex << Rgb(shot, 150, listRow) << " "
            << (popupShot.IsValid() ? Rgb(popupShot, 150, popupRow) : 0) << " " << highlight;
        ASSERT_TRUE(shot.IsValid() && popupShot.IsValid());
        EXPECT_EQ(Rgb(shot, 150, 10 + list.GetRowHeight() / 2),
                  ToRgb(GetSysColor(SYS_COLOR_WINDOW)))
            << "an unselected row";
        EXPECT_EQ(Rgb(shot, 200 + 100, 10 + 2), ToRgb(GetSysColor(SYS_COLOR_BTNFACE)))
            << "the report's header";
        int reportRow = 10 + report.GetHeaderRect().Height() + report.GetRowHeight() + 3;
        EXPECT_EQ(Rgb(shot, 200 + 360, reportRow), highlight) << "the report's chosen row";
        EXPECT_EQ(Rgb(shot, 186, 200), ToRgb(GetSysColor(SYS_COLOR_BTNFACE)))
            << "the track of the list's scroll bar";
        EXPECT_EQ(Rgb(shot, 186, 12), ToRgb(GetSysColor(SYS_COLOR_BTNSHADOW)))
            << "its thumb, at the top";

        SImage composed;
        ASSERT_TRUE(Compose(shot, top.GetWindowRect(), popupShot, combo.GetPopup()->GetWindowRect(),
                            &composed));
        SFilePath png;
        if (png.Open(MELKORA_LISTS_SCREENSHOT, true, true, false, false)) {
            composed.Save(&png, IMAGE_PNG);
            png.Close();
        }
        combo.CloseList(false);
        EXPECT_FALSE(combo.IsListOpen());
    }
    ToolkitEnd();
}

} // namespace
