// The typed readers of notifications: each gives its payload only for its
// own kind, and every notification number has a kind.
#include <filesystem>
#include <fstream>
#include <regex>

#include "toolkit/notification.h"
#include "toolkit_fixture.h"

namespace {

class Other : public SWnd {};

using Notifications = ToolkitTest;

TEST_F(Notifications, EachReaderAnswersOnlyForItsKind) {
    SWnd control;
    ASSERT_TRUE(Make(control, "control", Rect(0, 0, 10, 10)));
    SMouseEvent mouse{MOUSE_CLICK | MOUSE_RIGHT, SPoint{3, 4}, SPoint{103, 204}};
    const char* text = "https://example.org/";
    struct Case {
        unsigned message;
        LPARAM lParam;
        SNotifyKind kind;
    };
    const Case cases[] = {
        {SN_BUTTON_CLICKED, 0, SNotifyKind::CONTROL},
        {SN_LIST_KEY, 13, SNotifyKind::CODE},
        {SN_WEB_PROGRESS, static_cast<LPARAM>(-2), SNotifyKind::CODE},
        {SN_MEDIA_MOUSE, reinterpret_cast<LPARAM>(&mouse), SNotifyKind::MOUSE},
        {SN_TREE_MOUSE, reinterpret_cast<LPARAM>(&mouse), SNotifyKind::MOUSE},
        {SN_MEDIA_LINK_CLICKED, reinterpret_cast<LPARAM>(text), SNotifyKind::TEXT},
        {SN_TREE_CHECK, 0x1234, SNotifyKind::ITEM},
        {WM_PAINT, reinterpret_cast<LPARAM>(&mouse), SNotifyKind::NONE},
        {SM_LEFT_CLICK, MakePointParam(1, 2), SNotifyKind::NONE},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.message);
        SNotification note(c.message, reinterpret_cast<WPARAM>(&control), c.lParam);
        bool notification = c.kind != SNotifyKind::NONE;
        EXPECT_EQ(note.Kind(), c.kind);
        EXPECT_EQ(note.Is(c.message), notification);
        EXPECT_EQ(note.Control(), notification ? &control : nullptr);
        EXPECT_EQ(note.From(&control), notification);
        EXPECT_EQ(note.ControlAs<SWnd>(), notification ? &control : nullptr);
        EXPECT_EQ(note.ControlAs<Other>(), nullptr) << "a control of another class";
        EXPECT_EQ(note.Code(), c.kind == SNotifyKind::CODE ? static_cast<int64_t>(c.lParam) : 0);
        bool isMouse = c.kind == SNotifyKind::MOUSE;
        EXPECT_EQ(note.Mouse(), isMouse ? &mouse : nullptr);
        EXPECT_EQ(note.MouseCode(), isMouse ? (MOUSE_CLICK | MOUSE_RIGHT) : 0u);
        EXPECT_EQ(note.Point(), isMouse ? (SPoint{3, 4}) : SPoint{});
        EXPECT_EQ(note.Text(), c.kind == SNotifyKind::TEXT ? text : nullptr);
        EXPECT_EQ(note.Item(), c.kind == SNotifyKind::ITEM ? 0x1234u : 0u);
    }
}

TEST(NotificationKinds, EveryNotificationNumberHasAKind) {
    static const std::regex definition(
        R"(^constexpr unsigned (SN_[A-Z0-9_]+) = (0x[0-9A-Fa-f]+|[0-9]+);.*)");
    std::ifstream in(std::filesystem::path(MELKORA_SOURCE_DIR) / "foundation/message_numbers.h");
    int count = 0;
    for (std::string line; std::getline(in, line);) {
        std::smatch match;
        if (std::regex_match(line, match, definition)) {
            ++count;
            unsigned value = static_cast<unsigned>(std::stoul(match[2], nullptr, 0));
            EXPECT_NE(NotificationKind(value), SNotifyKind::NONE) << match[1];
        }
    }
    EXPECT_GT(count, 30);
}

} // namespace
