// The control factory and SWndDialog on the headless platform: which types
// are made, what the keys do to the controls, tab records in reverse,
// anchors across resizes, damaged definitions, the embedded definitions,
// and the dialog's modal rules.
#include <fstream>
#include <functional>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "controls/browser_ctrl.h"
#include "controls/media_ctrl.h"
#include "dialogs/control_factory.h"
#include "dialogs/wnd_dialog.h"
#include "editors/code_edit_ctrl.h"
#include "every_key_definition.h"
#include "foundation/file.h"
#include "toolkit/bar_ctrls.h"
#include "toolkit/button_ctrls.h"
#include "toolkit/combo_ctrl.h"
#include "toolkit/edit_ctrl.h"
#include "toolkit/ex_list_ctrl.h"
#include "toolkit/list_ctrl.h"
#include "toolkit/pane_ctrls.h"
#include "toolkit/platform/events.h"
#include "toolkit/range_ctrls.h"
#include "toolkit/toolbar_ctrl.h"
#include "toolkit/toolkit_fixture.h"
#include "toolkit/tree_ctrl.h"

namespace {

using Record = SDialogDefinition::_SCtrl;

std::string Saved(const SDialogDefinition& definition) {
    SFileMem file;
    file.Reset(0);
    EXPECT_TRUE(definition.Save(&file));
    return std::string(file.GetData() != nullptr ? file.GetData() : "",
                       static_cast<size_t>(file.GetSize()));
}

SFileMem Memory(const std::string& bytes) {
    SFileMem file;
    file.Reset(0);
    file.Write(bytes.data(), static_cast<int>(bytes.size()));
    file.Rewind();
    return file;
}

std::string ReadSource(const char* path) {
    std::ifstream file(std::string(MELKORA_SOURCE_DIR) + "/" + path, std::ios::binary);
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

Record Control(int type, int id, const char* name, int x, int y, int width, int height,
               std::vector<std::pair<const char*, const char*>> keys = {},
               uint32_t style = 0x10000000u) {
    Record record;
    record.type = static_cast<int16_t>(type);
    record.id = static_cast<int16_t>(id);
    record.name = name;
    record.caption = name;
    record.x = static_cast<int16_t>(x);
    record.y = static_cast<int16_t>(y);
    record.width = static_cast<int16_t>(width);
    record.height = static_cast<int16_t>(height);
    record.style = style;
    for (const auto& [key, value] : keys) {
        record.SetProperty(key, value);
    }
    return record;
}

// A definition of a dialog width by height holding controls, as text.
std::string Definition(const std::vector<Record>& controls, int width = 400, int height = 300,
                       std::vector<std::pair<const char*, const char*>> keys = {}) {
    SDialogDefinition definition;
    Record dialog = Control(CTRL_DIALOG, 0, "DLG", 0, 0, width, height, keys, 0x00C80000u);
    dialog.caption = "Dialog";
    definition.SetDialog(dialog);
    for (const Record& record : controls) {
        definition.AddControl(record, true, true);
    }
    return Saved(definition);
}

// A web engine that loads nothing: the headless platform hosts no view.
class QuietEngine : public SWebEngine {
public:
    void* GetWidget() override { return &widget; }
    bool Load(const char* url, bool) override {
        address = url;
        return true;
    }
    SString GetAddress() const override { return address; }
    SString GetTitle() const override { return SString(); }
    SString GetStatusText() const override { return SString(); }
    void SetSilent(bool) override {}
    int widget = 0;
    SString address;
};

std::unique_ptr<SWebEngine> MakeQuiet(SWebEngine::Events*) {
    return std::make_unique<QuietEngine>();
}

class Factory : public ToolkitTest {
protected:
    void SetUp() override {
        ToolkitTest::SetUp();
        SetWebEngineFactory(MakeQuiet);
    }
    void TearDown() override {
        SetWebEngineFactory(nullptr);
        ToolkitTest::TearDown();
    }
    bool Build(SWndDialog& dialog, const std::string& text, SDialogBuildOptions options = {}) {
        SFileMem file = Memory(text);
        return dialog.CreateFromDefinition(&file, options);
    }
    // A provider of named files.
    SDialogResourceProvider Files() {
        return [this](const char* name, SFileMem* contents) {
            auto it = files.find(name);
            if (it == files.end()) {
                return false;
            }
            contents->Reset(0);
            contents->Write(it->second.data(), static_cast<int>(it->second.size()));
            contents->Rewind();
            return true;
        };
    }
    std::map<std::string, std::string> files;
};

TEST_F(Factory, EveryTypeWithAControlIsMadeAndTheRestAreNamedAndLeftOut) {
    // The types whose control the program does not have yet.
    const std::vector<int> missing = {CTRL_IMAGEEDITOR, CTRL_LCD,        CTRL_LEVEL,
                                      CTRL_PROPERTY,    CTRL_RICHEDIT,   CTRL_SPREAD,
                                      CTRL_TABDOC,      CTRL_WAVEEDITOR, CTRL_EXTERN};
    std::vector<Record> controls;
    for (int type = 1; type < CTRL_TYPE_COUNT; ++type) {
        controls.push_back(Control(type, type, GetControlType(type)->section, 5 * type, 5, 60, 40));
    }
    SWndDialog dialog;
    ASSERT_TRUE(Build(dialog, Definition(controls)));
    EXPECT_EQ(dialog.GetControlCount(), CTRL_TYPE_COUNT - 1 - static_cast<int>(missing.size()));
    for (int type = 1; type < CTRL_TYPE_COUNT; ++type) {
        bool isMissing = std::find(missing.begin(), missing.end(), type) != missing.end();
        EXPECT_EQ(IsControlTypeBuilt(type), !isMissing) << GetControlType(type)->section;
        SWnd* control = dialog.GetControl(static_cast<unsigned>(type));
        EXPECT_EQ(control == nullptr, isMissing) << GetControlType(type)->section;
        if (control != nullptr) {
            EXPECT_EQ(dialog.GetControlName(control), SString(GetControlType(type)->section));
            EXPECT_EQ(control->GetId(), static_cast<uintptr_t>(type));
            EXPECT_EQ(control->GetParent(), dialog.GetHandle());
            EXPECT_EQ(control->GetRect(), Rect(5 * type, 5, 5 * type + 60, 45));
        }
    }
    // Each made as its class.
    EXPECT_NE(dialog.GetControlAs<SButtonCtrl>("BUTTON"), nullptr);
    EXPECT_NE(dialog.GetControlAs<SCheckCtrl>("CHECK"), nullptr);
    EXPECT_NE(dialog.GetControlAs<SCodeEditCtrl>("CODEEDIT"), nullptr);
    EXPECT_NE(dialog.GetControlAs<SComboCtrl>("COMBO"), nullptr);
    EXPECT_NE(dialog.GetControlAs<SEditCtrl>("EDIT"), nullptr);
    EXPECT_NE(dialog.GetControlAs<SExListCtrl>("EXTENDEDLIST"), nullptr);
    EXPECT_NE(dialog.GetControlAs<SGroupCtrl>("GROUP"), nullptr);
    EXPECT_NE(dialog.GetControlAs<SGuiCtrl>("GUI"), nullptr);
    EXPECT_NE(dialog.GetControlAs<SLabelCtrl>("LABEL"), nullptr);
    EXPECT_NE(dialog.GetControlAs<SListCtrl>("LIST"), nullptr);
    EXPECT_NE(dialog.GetControlAs<SMediaCtrl>("MEDIA"), nullptr);
    EXPECT_NE(dialog.GetControlAs<SPanelCtrl>("PANEL"), nullptr);
    EXPECT_NE(dialog.GetControlAs<SProgressCtrl>("PROGRESS"), nullptr);
    EXPECT_NE(dialog.GetControlAs<SRadioCtrl>("RADIO"), nullptr);
    EXPECT_NE(dialog.GetControlAs<SScrollCtrl>("SCROLL"), nullptr);
    EXPECT_NE(dialog.GetControlAs<SSliderCtrl>("SLIDER"), nullptr);
    EXPECT_NE(dialog.GetControlAs<SSplitterCtrl>("SPLITTER"), nullptr);
    EXPECT_NE(dialog.GetControlAs<SStaticCtrl>("STATIC"), nullptr);
    EXPECT_NE(dialog.GetControlAs<STabCtrl>("TAB"), nullptr);
    EXPECT_NE(dialog.GetControlAs<SToolBarCtrl>("TOOLBAR"), nullptr);
    EXPECT_NE(dialog.GetControlAs<STreeCtrl>("TREE"), nullptr);
    EXPECT_NE(dialog.GetControlAs<_SWnd>("WINDOW"), nullptr);
}

TEST_F(Factory, EveryKeyOfEveryTypeBuildsWithoutHarm) {
    SDialogDefinition definition;
    every_key::Fill(definition);
    ASSERT_FALSE(HasFailure());
    SWndDialog dialog;
    SDialogBuildOptions options;
    options.provider = Files();
    files["a.txt"] = "x";
    ASSERT_TRUE(Build(dialog, Saved(definition), options));
    EXPECT_GT(dialog.GetControlCount(), 20);
    dialog.Destroy();
    EXPECT_EQ(dialog.GetControlCount(), 0) << "the window's end takes its controls";
}

TEST_F(Factory, KeysReachTheirControls) {
    files["names.lst"] = "Zeta\r\n\r\nAlpha\nMid\r\n";
    files["page.txt"] = "From the file";
    files["tree.txt"] = "TAVORA TREE 1.0.0.0\r\nRoot\r\n\tLeaf\r\n";
    files["code.txt"] = "line one\nline two";
    std::vector<Record> controls = {
        Control(CTRL_CHECK, 1, "CHK", 0, 0, 80, 20, {{"CHECK_CHECKED", "1"}}),
        Control(CTRL_RADIO, 2, "R1", 0, 20, 80, 20, {{"RADIO_GROUP", "1"}, {"RADIO_CHECKED", "1"}}),
        Control(CTRL_RADIO, 3, "R2", 0, 40, 80, 20, {{"RADIO_GROUP", "1"}}),
        Control(CTRL_RADIO, 4, "R3", 0, 60, 80, 20, {{"RADIO_GROUP", "2"}, {"RADIO_CHECKED", "1"}}),
        Control(CTRL_SLIDER, 5, "SLD", 0, 80, 80, 20,
                {{"SLIDER_MINVALUE", "10"}, {"SLIDER_MAXVALUE", "20"}, {"SLIDER_VALUE", "15"}}),
        Control(CTRL_PROGRESS, 6, "PRG", 0, 100, 80, 20,
                {{"PROGRESS_MAXVALUE", "50"}, {"PROGRESS_VALUE", "70"}}),
        Control(CTRL_COMBO, 7, "CMB", 100, 0, 80, 24, {{"COMBO_CONTENT", "b|a|c"}},
                0x10000000u | 3u | 0x100u),
        Control(CTRL_LIST, 8, "LST", 100, 30, 80, 60,
                {{"LIST_FILE", "names.lst"}, {"LIST_CONTENT", "ignored"}}, 0x10000800u),
        Control(CTRL_EDIT, 9, "EDT", 100, 100, 80, 24,
                {{"EDIT_TEXT", "page.txt"}, {"EDIT_MAXLENGTH", "4"}, {"EDIT_SELECTALL", "1"}}),
        Control(CTRL_TAB, 10, "TABS", 200, 0, 150, 100,
                {{"TAB_CONTENT", "One|Two"},
                 {"TAB_SELECTION", "1"},
                 {"TAB_CHILDREN_PRIVATE", "0 12 1 11 5 11 0 10 1 999"}}),
        Control(CTRL_BUTTON, 11, "ON_TWO", 210, 40, 60, 24),
        Control(CTRL_BUTTON, 12, "ON_ONE", 210, 70, 60, 24, {{"TOOLTIP", "Press me"}}),
        Control(CTRL_SPLITTER, 13, "SPL", 0, 130, 100, 60,
                {{"SPLITTER_COLCOUNT", "3"}, {"SPLITTER_ROWCOUNT", "2"}}),
        Control(CTRL_MEDIA, 14, "MED", 100, 130, 100, 30,
                {{"MEDIA_HALIGN", "_RIGHT"},
                 {"MEDIA_VALIGN", "_BOTTOM"},
                 {"MEDIA_WRAPPING", "1"},
                 {"MEDIA_TAGS", "1"},
                 {"MEDIA_BUTTON", "1"},
                 {"MEDIA_LINKCOLOR", "255"},
                 {"MEDIA_TEXT", "page.txt"}}),
        Control(CTRL_TOOLBAR, 15, "TBR", 200, 130, 150, 30,
                {{"TOOLBAR_CONTENT", "Open|Save"},
                 {"TOOLBAR_IMAGEWIDTH", "24"},
                 {"TOOLBAR_IMAGEHEIGHT", "20"}}),
        Control(CTRL_TREE, 16, "TRE", 0, 200, 100, 80, {{"TREE_FILE", "tree.txt"}},
                0x10000000u | 0x10u),
        Control(CTRL_CODEEDIT, 17, "COD", 100, 200, 100, 80,
                {{"CODEEDIT_FILE", "code.txt"},
                 {"CODEEDIT_TABSIZE", "8"},
                 {"CODEEDIT_BACKCOLOR", "255"}}),
        Control(CTRL_LABEL, 18, "LBL", 200, 200, 100, 20,
                {{"LABEL_HALIGN", "_CENTER"}, {"TOOLTIP", ""}}),
        Control(CTRL_GROUP, 19, "GRP", 200, 230, 100, 40, {}, 0x10000000u | 0x200u),
        Control(CTRL_STATIC, 20, "STC", 300, 230, 50, 40,
                {{"STATIC_EDGE", "_EDGESUNKEN"},
                 {"STATIC_TOPBORDER", "1"},
                 {"STATIC_LEFTBORDER", "1"}}),
        Control(CTRL_EXTENDEDLIST, 21, "EXL", 300, 0, 90, 60, {}, 0x10000000u | 1u | 4u),
    };
    SWndDialog dialog;
    SDialogBuildOptions options;
    options.provider = Files();
    ASSERT_TRUE(Build(dialog, Definition(controls), options));
    dialog.Show(SW_SHOW);

    EXPECT_TRUE(dialog.GetControlAs<SCheckCtrl>("CHK")->GetCheck());
    auto* r1 = dialog.GetControlAs<SRadioCtrl>("R1");
    auto* r3 = dialog.GetControlAs<SRadioCtrl>("R3");
    EXPECT_EQ(r1->GetGroup().size(), 2u) << "a new group number starts a new group";
    EXPECT_TRUE(r1->GetCheck());
    EXPECT_TRUE(r3->GetCheck()) << "each group keeps its own check";
    auto* slider = dialog.GetControlAs<SSliderCtrl>("SLD");
    EXPECT_EQ(slider->GetMinimum(), 10);
    EXPECT_EQ(slider->GetMaximum(), 20);
    EXPECT_EQ(slider->GetValue(), 15);
    EXPECT_EQ(dialog.GetControlAs<SProgressCtrl>("PRG")->GetValue(), 50) << "held in the range";
    auto* combo = dialog.GetControlAs<SComboCtrl>("CMB");
    ASSERT_EQ(combo->GetCount(), 3);
    EXPECT_EQ(combo->GetItemText(0), SString("a")) << "the sort style sorts";
    EXPECT_EQ(combo->GetForm(), COMBO_DROP_LIST);
    auto* list = dialog.GetControlAs<SListCtrl>("LST");
    ASSERT_EQ(list->GetRowCount(), 3) << "the file wins over the content; empty lines dropped";
    EXPECT_EQ(list->GetText(0), SString("Zeta"));
    EXPECT_EQ(list->GetSelectionMode(), LIST_SELECTION_EXTENDED);
    auto* edit = dialog.GetControlAs<SEditCtrl>("EDT");
    EXPECT_EQ(edit->Model().Text(), "From the file");
    EXPECT_EQ(edit->Model().GetMaxLength(), 4);
    EXPECT_EQ(edit->Model().SelectionEnd() - edit->Model().SelectionStart(),
              edit->Model().Text().size());
    auto* tabs = dialog.GetControlAs<STabCtrl>("TABS");
    ASSERT_EQ(tabs->GetPageCount(), 2);
    EXPECT_EQ(tabs->GetSelectedPage(), 1);
    ASSERT_EQ(tabs->GetPageWindows(0).size(), 1u) << "pairs out of range, the tab itself and "
                                                     "unknown IDs are passed over";
    EXPECT_EQ(tabs->GetPageWindows(0)[0], dialog.GetControl("ON_ONE"));
    EXPECT_TRUE(dialog.GetControl("ON_TWO")->IsVisible());
    EXPECT_FALSE(dialog.GetControl("ON_ONE")->IsVisible()) << "its page is not selected";
    EXPECT_EQ(dialog.GetControl("ON_ONE")->GetToolTipText(), SString("Press me"));
    EXPECT_TRUE(dialog.GetControl("ON_ONE")->IsToolTipEnabled());
    EXPECT_FALSE(dialog.GetControl("LBL")->IsToolTipEnabled()) << "an empty tip enables nothing";
    auto* splitter = dialog.GetControlAs<SSplitterCtrl>("SPL");
    EXPECT_EQ(splitter->GetColumnCount(), 3);
    EXPECT_EQ(splitter->GetRowCount(), 2);
    auto* media = dialog.GetControlAs<SMediaCtrl>("MED");
    EXPECT_EQ(media->GetAlign(), MEDIA_ALIGN_RIGHT | MEDIA_ALIGN_BOTTOM);
    EXPECT_TRUE(media->GetWrapping());
    EXPECT_TRUE(media->GetMarkup());
    EXPECT_TRUE(media->IsButton());
    EXPECT_EQ(media->GetLinkColor() & 0xFFFFFFu, 255u);
    EXPECT_EQ(media->GetText(), SString("From the file"));
    auto* toolbar = dialog.GetControlAs<SToolBarCtrl>("TBR");
    EXPECT_EQ(toolbar->GetButtonCount(), 2);
    EXPECT_EQ(toolbar->GetImageWidth(), 24);
    EXPECT_EQ(toolbar->GetImageHeight(), 20);
    auto* tree = dialog.GetControlAs<STreeCtrl>("TRE");
    EXPECT_EQ(tree->GetCount(), 2);
    EXPECT_FALSE(tree->GetDragDrop()) << "TVS_DISABLEDRAGDROP";
    auto* code = dialog.GetControlAs<SCodeEditCtrl>("COD");
    EXPECT_EQ(code->GetEditText(), SString("line one\nline two"));
    EXPECT_EQ(code->GetEditor().settings.tabSize, 8);
    EXPECT_EQ(code->GetColor(CODE_COLOR_BACK) & 0xFFFFFFu, 255u);
    EXPECT_EQ(dialog.GetControlAs<SLabelCtrl>("LBL")->GetAlign(), SAlign::CENTER);
    EXPECT_EQ(dialog.GetControlAs<SGroupCtrl>("GRP")->GetAlign(), SAlign::RIGHT);
    EXPECT_EQ(dialog.GetControlAs<SStaticCtrl>("STC")->GetEdges(),
              STATIC_EDGE_TOP | STATIC_EDGE_LEFT);
    auto* exList = dialog.GetControlAs<SExListCtrl>("EXL");
    EXPECT_EQ(exList->GetView(), EXLIST_REPORT);
    EXPECT_EQ(exList->GetSelectionMode(), LIST_SELECTION_SINGLE);
}

TEST_F(Factory, TabRecordsAreBuiltFromTheLastBackwards) {
    std::vector<Record> controls;
    for (int i = 0; i < 10; ++i) {
        int type = i == 2 || i == 5 || i == 9 ? CTRL_TAB : CTRL_BUTTON;
        SString name = SString("C") + SString::FromInt(i);
        controls.push_back(Control(type, i + 1, name.c_str(), 0, 20 * i, 50, 20));
    }
    SWndDialog dialog;
    ASSERT_TRUE(Build(dialog, Definition(controls)));
    ASSERT_EQ(dialog.GetControlCount(), 10);
    EXPECT_EQ(dialog.GetControlName(dialog.GetControlAt(2)), SString("C9"));
    EXPECT_EQ(dialog.GetControlName(dialog.GetControlAt(5)), SString("C5"));
    EXPECT_EQ(dialog.GetControlName(dialog.GetControlAt(9)), SString("C2"));
    EXPECT_EQ(dialog.GetControlName(dialog.GetControlAt(3)), SString("C3"));
}

TEST_F(Factory, AnchorsMoveControlsAsTheDefinitionSaysForEveryValue) {
    // Every HALIGN and VALIGN value, also those no word names.
    std::vector<Record> controls;
    for (int value = 0; value < 256; ++value) {
        SString h = SString::FromInt(value & 0x0F);
        SString v = SString::FromInt(value & 0xF0);
        SString name = SString("A") + SString::FromInt(value);
        controls.push_back(Control(CTRL_WINDOW, value + 1, name.c_str(), 40 + value % 16,
                                   30 + value / 16, 100, 50,
                                   {{"HALIGN", h.c_str()}, {"VALIGN", v.c_str()}}));
    }
    SWndDialog dialog;
    ASSERT_TRUE(Build(dialog, Definition(controls, 400, 300)));
    const std::pair<int, int> growths[] = {{37, 23}, {-13, -7}, {2, 161}};
    for (auto [dw, dh] : growths) {
        dialog.SetClientSize(400 + dw, 300 + dh);
        for (int value = 0; value < 256; ++value) {
            SAnchorBox box =
                ApplyAnchorValue(static_cast<uint32_t>(value),
                                 SAnchorBox{40 + value % 16, 30 + value / 16, 100, 50}, dw, dh);
            SRect expected{box.left, box.top, box.left + box.width, box.top + box.height};
            EXPECT_EQ(dialog.GetControlAt(value)->GetRect(), expected)
                << "value " << value << " grown by " << dw << ", " << dh;
        }
    }
}

TEST_F(Factory, ADamagedDefinitionGivesAWindowWithWhatCouldBeRead) {
    std::string good = Definition({Control(CTRL_BUTTON, 1, "FIRST", 0, 0, 50, 20),
                                   Control(CTRL_BUTTON, 2, "SECOND", 0, 30, 50, 20),
                                   Control(CTRL_BUTTON, 3, "THIRD", 0, 60, 50, 20)});
    auto replace = [&](const std::string& from, const std::string& to) {
        std::string text = good;
        size_t at = text.find(from);
        EXPECT_NE(at, std::string::npos) << from;
        return text.replace(at, from.size(), to);
    };
    struct Case {
        const char* what;
        std::string text;
        bool built;
        std::vector<const char*> present;
    };
    const Case cases[] = {
        {"unknown section",
         replace("[BUTTON]\r\nID=2", "[NOSUCH]\r\nID=2"),
         true,
         {"FIRST", "THIRD"}},
        {"a line without =",
         replace("NAME=SECOND\r\n", "NAME=SECOND\r\nbroken\r\n"),
         true,
         {"FIRST", "THIRD"}},
        {"cut in a block",
         good.substr(0, good.find("NAME=THIRD") + 7),
         true,
         {"FIRST", "SECOND", "TH"}},
        {"a position of garbage",
         replace("POSITION=0 30 50 20", "POSITION=x y"),
         true,
         {"FIRST", "SECOND", "THIRD"}},
        {"LF line ends",
         [&] {
             std::string text;
             for (char c : good) {
                 if (c != '\r') {
                     text += c;
                 }
             }
             return text;
         }(),
         false,
         {}},
        {"the dialog's own block", replace("[DIALOG]", "[DIALOGUE]"), false, {}},
        {"nothing", "", false, {}},
    };
    for (const Case& c : cases) {
        SWndDialog dialog;
        EXPECT_EQ(Build(dialog, c.text), c.built) << c.what;
        EXPECT_EQ(dialog.GetControlCount(), static_cast<int>(c.present.size())) << c.what;
        for (const char* name : c.present) {
            EXPECT_NE(dialog.GetControl(name), nullptr) << c.what << ": " << name;
        }
    }
}

TEST_F(Factory, RandomDamageNeverBreaksTheBuild) {
    // The preferences definition damaged in many ways: bytes changed, lines
    // dropped or doubled, the file cut. Each builds a window or is refused.
    const std::string original = ReadSource("app/resources/162_preferences.dlg");
    ASSERT_FALSE(original.empty());
    uint32_t seed = 17;
    auto next = [&seed](uint32_t bound) {
        seed = seed * 1664525u + 1013904223u;
        return (seed >> 8) % bound;
    };
    const char noise[] = "=\r\n[]# -0123456789ABCZ_\x01\xFF";
    int built = 0;
    for (int round = 0; round < 300; ++round) {
        std::string text = original;
        int damages = 1 + static_cast<int>(next(6));
        for (int d = 0; d < damages && !text.empty(); ++d) {
            size_t at = next(static_cast<uint32_t>(text.size()));
            switch (next(4)) {
            case 0:
                text[at] = noise[next(sizeof(noise) - 1)];
                break;
            case 1:
                text.erase(at, next(40));
                break;
            case 2:
                text.insert(at, text.substr(at, next(60)));
                break;
            default:
                text.resize(at);
                break;
            }
        }
        SWndDialog dialog;
        SFileMem file = Memory(text);
        if (dialog.CreateFromDefinition(&file)) {
            ++built;
            EXPECT_LE(dialog.GetControlCount(), 40) << round;
        } else {
            EXPECT_EQ(dialog.GetControlCount(), 0) << round;
        }
    }
    EXPECT_GT(built, 50) << "most damage leaves a window to build";
}

TEST_F(Factory, TheDialogRecordMakesTheWindow) {
    std::string text =
        Definition({Control(CTRL_EDIT, 7, "E", 10, 10, 100, 24,
                            {{"TABENABLED", "1"}, {"TABINDEX", "3"}, {"TABGROUP", "2"}}),
                    Control(CTRL_EDIT, 8, "F", 10, 40, 100, 24)},
                   320, 200,
                   {{"DIALOG_STATUSBARTEXT", " Left | Right "},
                    {"DIALOG_FOCUS", "7"},
                    {"DIALOG_NOMODALESCAPE", "1"},
                    {"DIALOG_MINSIZE", "1"}});
    SWndDialog dialog;
    ASSERT_TRUE(Build(dialog, text));
    EXPECT_EQ(dialog.GetText(), SString("Dialog"));
    EXPECT_EQ(dialog.GetParent(), 0);
    EXPECT_FALSE(dialog.IsVisible()) << "the record's style has no WS_VISIBLE";
    ASSERT_NE(dialog.GetStatusBar(), nullptr);
    EXPECT_EQ(dialog.GetStatusBar()->GetPartCount(), 2);
    EXPECT_EQ(dialog.GetStatusBar()->GetText(1), SString("Right")) << "parts are trimmed";
    EXPECT_EQ(dialog.GetClientWidth(), 320);
    EXPECT_EQ(dialog.GetClientHeight(), 200 + dialog.GetStatusBar()->GetHeight())
        << "the status bar adds its own room";
    EXPECT_EQ(GetFocus(), dialog.GetControl(7u)->GetHandle());
    dialog.Show(SW_SHOW);
    EXPECT_EQ(dialog.GetControl(7u)->GetNextFocus(false), dialog.GetControl(7u))
        << "the only control in the order";
    EXPECT_EQ(dialog.GetControl(8u)->GetNextFocus(false), dialog.GetControl(7u))
        << "an edit without TABENABLED is left out";
    EXPECT_EQ(dialog.GetControl(7u)->GetTabGroup(), 2);
    EXPECT_EQ(dialog.GetControl(7u)->GetTabOrder(), 3);
    EXPECT_TRUE(dialog.enterKey);
    EXPECT_FALSE(dialog.escapeKey);
    EXPECT_EQ(dialog.GetMinMaxInfo().minTrackSize.width, dialog.GetWidth());
    EXPECT_FALSE(dialog.CreateFromDefinition(nullptr)) << "no second window";
    EXPECT_EQ(dialog.GetControl(99u), nullptr);
    EXPECT_EQ(dialog.GetControl("e"), nullptr) << "names compare byte for byte";
    EXPECT_EQ(dialog.GetControlIndex(&dialog), -1);
    EXPECT_EQ(dialog.GetControlName(nullptr), SString());
}

TEST_F(Factory, APopupOverAParentIsOwnedAndAChildIsAChild) {
    RecordingWnd top;
    ASSERT_TRUE(Make(top, "top", Rect(100, 100, 700, 500)));
    std::string text = Definition({}, 200, 100);
    SWndDialog child, popup;
    SDialogBuildOptions options;
    options.parent = &top;
    ASSERT_TRUE(Build(child, text, options));
    EXPECT_EQ(child.GetParent(), top.GetHandle());
    options.forcePopup = true;
    ASSERT_TRUE(Build(popup, text, options));
    EXPECT_EQ(popup.GetParent(), 0);
    EXPECT_EQ(popup.GetOwner(), top.GetHandle());
    SRect over = top.GetWindowRect();
    SRect rect = popup.GetWindowRect();
    EXPECT_NEAR((rect.left + rect.right) / 2, (over.left + over.right) / 2, 2) << "centred on it";
}

// A dialog whose OK and CANCEL buttons are pressed from inside the run.
class Presser : public SWnd {
public:
    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override {
        if (message == WM_USER && action) {
            action();
            return 0;
        }
        return SWnd::OnMessage(message, wParam, lParam);
    }
    std::function<void()> action;
};

TEST_F(Factory, ModalRunsOfABuiltDialog) {
    std::string plain = Definition({Control(CTRL_BUTTON, 1, "OK", 0, 0, 50, 20),
                                    Control(CTRL_BUTTON, 2, "CANCEL", 60, 0, 50, 20),
                                    Control(CTRL_BUTTON, 3, "Ok", 120, 0, 50, 20),
                                    Control(CTRL_EDIT, 4, "E", 0, 30, 100, 24)});
    std::string noReturn = Definition({Control(CTRL_EDIT, 4, "E", 0, 30, 100, 24)}, 400, 300,
                                      {{"DIALOG_NOMODALRETURN", "1"}});
    struct Case {
        const char* what;
        const std::string* text;
        std::function<void(SWndDialog&)> act;
        int result;
    };
    const Case cases[] = {
        {"OK", &plain,
         [](SWndDialog& d) { static_cast<SButtonCtrl*>(d.GetControl("OK"))->Press(); }, 0},
        {"CANCEL", &plain,
         [](SWndDialog& d) { static_cast<SButtonCtrl*>(d.GetControl("CANCEL"))->Press(); }, -1},
        {"a button of another name does nothing", &plain,
         [](SWndDialog& d) {
             static_cast<SButtonCtrl*>(d.GetControl("Ok"))->Press();
             d.EndModal(4);
         },
         4},
        {"Enter ends the run without DIALOG_NOMODALRETURN", &plain,
         [](SWndDialog& d) { PlatformKey(d.GetHandle(), WM_KEYDOWN, VK_RETURN); }, 0},
        {"Enter goes to the control with it", &noReturn,
         [](SWndDialog& d) {
             PlatformKey(d.GetHandle(), WM_KEYDOWN, VK_RETURN);
             PostMessage(d.GetHandle(), WM_CLOSE, 0, 0);
         },
         -1},
    };
    Presser presser;
    ASSERT_TRUE(Make(presser, "presser", Rect(0, 0, 10, 10), 0, 0));
    for (const Case& c : cases) {
        SWndDialog dialog;
        ASSERT_TRUE(Build(dialog, *c.text)) << c.what;
        presser.action = [&] { c.act(dialog); };
        PostMessage(presser.GetHandle(), WM_USER, 0, 0);
        EXPECT_EQ(dialog.DoModal(), c.result) << c.what;
        EXPECT_NE(dialog.GetHandle(), 0) << c.what;
    }
}

TEST_F(Factory, BarsGiveTheirRoomAndGoWithTheWindow) {
    SWndDialog dialog;
    ASSERT_TRUE(Build(
        dialog, Definition({Control(CTRL_BUTTON, 1, "B", 10, 10, 50, 20),
                            Control(CTRL_BUTTON, 2, "FOOT", 10, 170, 50, 20, {{"VALIGN", "32"}}),
                            Control(CTRL_BUTTON, 3, "WIDE", 10, 140, 50, 20,
                                    {{"HALIGN", "6"}, {"VALIGN", "32"}})},
                           300, 200)));
    EXPECT_TRUE(dialog.AddStatusBar(0));
    EXPECT_FALSE(dialog.AddStatusBar(2)) << "one status bar";
    EXPECT_EQ(dialog.GetStatusBar()->GetPartCount(), 1) << "at least one part";
    int withStatus = dialog.GetClientHeight();
    EXPECT_GT(withStatus, 200);
    EXPECT_TRUE(dialog.AddToolBar(nullptr, nullptr, nullptr));
    int toolbarHeight = dialog.GetToolBar()->GetHeight();
    EXPECT_EQ(dialog.GetClientHeight(), withStatus + toolbarHeight);
    EXPECT_EQ(dialog.GetControl("B")->GetRect().top, 10 + toolbarHeight)
        << "the controls move down below the toolbar";
    EXPECT_EQ(dialog.GetControl("FOOT")->GetRect().top, 170 + toolbarHeight)
        << "a control anchored to the bottom keeps its place above the status bar";
    EXPECT_EQ(dialog.GetControl("WIDE")->GetRect().top, 140 + toolbarHeight);
    dialog.SetClientSize(300, dialog.GetClientHeight() + 10);
    EXPECT_EQ(dialog.GetControl("FOOT")->GetRect().top, 180 + toolbarHeight)
        << "and follows the bottom from there";
    EXPECT_EQ(dialog.GetControl("WIDE")->GetRect().top, 150 + toolbarHeight);
    dialog.SetStatusText(0, "ready");
    EXPECT_EQ(dialog.GetStatusBar()->GetText(0), SString("ready"));
    SRect status = dialog.GetStatusBar()->GetRect();
    EXPECT_EQ(status.bottom, dialog.GetClientHeight());
    dialog.SetClientSize(500, 400);
    EXPECT_EQ(dialog.GetStatusBar()->GetRect().bottom, 400) << "the status bar stays at the foot";
    EXPECT_EQ(dialog.GetStatusBar()->GetRect().Width(), 500);
    dialog.Destroy();
    EXPECT_EQ(dialog.GetStatusBar(), nullptr);
    EXPECT_EQ(dialog.GetToolBar(), nullptr);
}

// The three definitions the program embeds: each reads back to its own
// bytes, and builds with the controls the program looks up by name.
TEST_F(Factory, TheEmbeddedDefinitions) {
    struct Case {
        const char* path;
        const char* caption;
        int width, height;
        std::vector<const char*> names;
        bool enterKey;
    };
    const Case cases[] = {
        {"app/resources/162_preferences.dlg",
         "Preferences",
         525,
         380,
         {"GRP_GENERAL", "TXT_FOLDER", "EDIT_FOLDER", "BTN_FOLDER", "BTN_FOLDERDEF", "TXT_IMAGES",
          "EDIT_IMAGES", "TXT_OPTIONS", "CHECK_TOOLBAR", "CHECK_AUTOHIDE", "GRP_TASKBAR",
          "CHECK_TASKBAR", "TXT_TASKTEXT", "TASK_TEXT", "EDIT_EMAILS", "OK", "CANCEL"},
         false},
        {"app/resources/215_properties.dlg",
         "Properties",
         355,
         90,
         {"TXT_SITE", "EDIT_SITE", "OK", "CANCEL"},
         true},
        {"panels/resources/247_playlist_name.dlg",
         "Properties",
         175,
         105,
         {"TXT_NAME", "EDIT_NAME", "OK", "CANCEL"},
         true},
    };
    for (const Case& c : cases) {
        std::string bytes = ReadSource(c.path);
        ASSERT_FALSE(bytes.empty()) << c.path;
        SDialogDefinition definition;
        SFileMem file = Memory(bytes);
        ASSERT_TRUE(definition.Load(&file)) << c.path;
        EXPECT_EQ(Saved(definition), bytes) << c.path << " is written back to the same bytes";
        SWndDialog dialog;
        ASSERT_TRUE(Build(dialog, bytes)) << c.path;
        EXPECT_EQ(dialog.GetText(), SString(c.caption));
        EXPECT_EQ(dialog.GetClientWidth(), c.width);
        EXPECT_EQ(dialog.GetClientHeight(), c.height);
        EXPECT_EQ(dialog.GetControlCount(), definition.GetControlCount()) << c.path;
        for (const char* name : c.names) {
            EXPECT_NE(dialog.GetControl(name), nullptr) << c.path << ": " << name;
        }
        EXPECT_EQ(dialog.enterKey, c.enterKey) << c.path;
        // Every control lies inside the client area.
        for (int i = 0; i < dialog.GetControlCount(); ++i) {
            SRect rect = dialog.GetControlAt(i)->GetRect();
            EXPECT_GE(rect.left, 0) << c.path << " " << i;
            EXPECT_GE(rect.top, 0) << c.path << " " << i;
            EXPECT_LE(rect.right, c.width) << c.path << " " << i;
            EXPECT_LE(rect.bottom, c.height) << c.path << " " << i;
        }
    }
}

} // namespace
