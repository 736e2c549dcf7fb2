// PWndTask: the strip, a thin bar across the bottom of the desktop that
// repeats the now-playing panel in one line, with transport buttons, so
// that the main window can stay hidden. It is a desktop bar of its own
// (SWnd::DockToBottomEdge): docked while the "Taskbar" preference is on,
// hidden otherwise. From the left: artist, album, the playing file's kind,
// song (the three names lead to the folder when clicked), the elapsed and
// total times, the track number and the queue's count (a click opens the
// queue's menu), the seek bar, previous, next, pause and stop, and the
// button that shows the main window. The buttons post the main window's
// own toolbar commands to it.
#pragma once

#include <cstdint>

#include "controls/media_ctrl.h"
#include "foundation/image.h"
#include "panels/progress_ctrl.h"
#include "panels/wnd_play.h"
#include "toolkit/menu.h"
#include "toolkit/wnd.h"

class PPanelHost;

// The strip's controls, by place from the left (PWndTask::GetControl).
enum STRIP_CONTROL {
    STRIP_REMAINDER, // the free part at the left end
    STRIP_ARTIST,
    STRIP_ALBUM,
    STRIP_TYPE, // the playing file's kind
    STRIP_SONG,
    STRIP_ELAPSED,
    STRIP_LENGTH,
    STRIP_NUMBER, // "3/12"
    STRIP_PREVIOUS,
    STRIP_NEXT,
    STRIP_PAUSE,
    STRIP_STOP,
    STRIP_SHOW,
    STRIP_CONTROL_COUNT
};

// The commands the buttons post to the main window as WM_COMMAND: the ids
// of its toolbar's previous, next, pause and stop.
struct PStripCommands {
    int previous = 0;
    int next = 0;
    int pause = 0;
    int stop = 0;
};

// The strip's height for a line of text of textHeight pixels: two more,
// and never below 20.
int StripHeight(int textHeight);
// The width of each of the three names on a strip width pixels wide: a
// third of what the fixed controls leave, less the free part at the left
// end; never negative.
int StripNameWidth(int width);

class PWndTask : public SWnd {
public:
    explicit PWndTask(PPanelHost* host);
    ~PWndTask() override;

    // Makes the strip, hidden, as a top-level window of its own at the
    // bottom of the work area; its height comes from the interface font.
    bool Create();
    // Where the buttons send their commands.
    void SetCommandTarget(HWND target, const PStripCommands& commands);

    // Docking by the preference: off and registered undocks and hides the
    // strip; on and not registered docks it at the bottom of the work area
    // as it is now and registers it (a desktop that takes no bar leaves it
    // hidden and unregistered, the preference untouched). Then the text
    // colour (0x00BBGGRR) is applied. Gives how the strip stands.
    SDockState ApplyPreference(bool on, uint32_t textColor);
    // Hides the strip and gives its space back (at the program's end).
    void Remove();
    SDockState GetDockState() const { return dockState; }

    // Registration: stored, then both button groups are disabled until a
    // track starts. The groups are enabled (their art swapped for the full
    // or the faded picture) only while registered: browse is previous and
    // next, transport is pause and stop.
    void SetRegistered(bool registered);
    bool IsRegistered() const { return registered; }
    void EnableBrowse(bool enable);
    void EnableTransport(bool enable);

    // The colour of every text of the strip.
    void SetTextColor(uint32_t color);
    uint32_t GetTextColor() const { return textColor; }
    // The player is filling its buffer: the total reads "buffering...".
    void SetBuffering(bool buffering);

    // What plays: the file (null or empty to clear), its place in the
    // queue (from 1) and the queue's count. Nothing happens while the
    // strip is not registered.
    void SetPlayingTrack(const char* path, int number, int total);
    // Replaces the number before the "/".
    void SetCurrentNumber(int number);
    // Reads the player's position and length and shows them.
    void UpdatePlayingTime();

    // The rectangle of each control, and of the seek bar, for a client
    // width and height.
    static SRect LayoutRect(STRIP_CONTROL which, int width, int height);
    static SRect SeekBarRect(int width, int height);

    // For the main window and the tests.
    SMediaCtrl& GetControl(STRIP_CONTROL which) { return controls[which]; }
    PProgressCtrl& GetSeekBar() { return seekBar; }
    SMenu& GetQueueMenu() { return queueMenu; }
    const SString& GetPlayingPath() const { return playingPath; }
    int GetStripHeight() const { return height; }
    // Opens the queue menu at a screen point; false when the queue is
    // empty.
    bool OpenQueueMenu(SPoint screen);

protected:
    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override;

private:
    void Layout();
    void Clicked(STRIP_CONTROL which, SPoint screen);
    void EnableButton(STRIP_CONTROL which, bool enable);

    PPanelHost* host;
    HWND commandTarget = 0;
    PStripCommands commands;
    PProgressCtrl seekBar;
    SMenu queueMenu;
    SMediaCtrl controls[STRIP_CONTROL_COUNT];
    SImage tile;
    SImage typeIcon;
    SImage buttonArt[STRIP_CONTROL_COUNT]; // the buttons' pictures
    SImage fadedArt[STRIP_CONTROL_COUNT];  // the same at half alpha: disabled
    bool registered = false;
    SDockState dockState{};
    int width = 0; // the work area's width at creation
    int height = 20;
    uint32_t textColor = 0;
    bool buffering = false;
    SString playingPath;
    PTrackNames names;
    int number = 0;
    int total = 0;
    int queueMenuCount = 0;
};
