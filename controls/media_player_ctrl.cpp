#include "controls/media_player_ctrl.h"

#include <algorithm>
#include <vector>

#include <cairo.h>

#include "controls/gst/gst_player.h"
#include "toolkit/platform/events.h"
#include "toolkit/platform/platform.h"
#include "toolkit/wnd_app.h"

namespace {

// Wakes the wait of an open now and then, so that Escape is seen even when
// nothing else arrives.
constexpr uintptr_t OPEN_POLL_TIMER_ID = 151;
constexpr unsigned OPEN_POLL_ELAPSE = 10; // milliseconds

} // namespace

SMediaPlayerCtrl::SMediaPlayerCtrl() = default;

SMediaPlayerCtrl::~SMediaPlayerCtrl() {
    ReleasePlayer();
}

bool SMediaPlayerCtrl::InitPlayer() {
    ReleasePlayer();
    auto engine = std::make_unique<SGstPlayer>();
    SGstPlayer::Messages messages;
    messages.ended = SM_PLAYER_PLAY_STATE;
    messages.endedValue = PLAY_STATE_MEDIA_ENDED;
    messages.error = SM_PLAYER_ERROR;
    messages.buffering = SM_PLAYER_BUFFERING;
    messages.wake = SM_PLAYER_WAKE;
    messages.frame = SM_PLAYER_FRAME;
    if (!engine->Create(GetHandle(), messages, fakeSinks)) {
        return false;
    }
    player = std::move(engine);
    player->SetVolume(100);
    return true;
}

void SMediaPlayerCtrl::ReleasePlayer() {
    if (player == nullptr) {
        return;
    }
    CloseMedia();
    player->Destroy();
    player.reset();
}

bool SMediaPlayerCtrl::IsCurrent(LPARAM serial) const {
    return player != nullptr && static_cast<uint32_t>(serial) == player->GetSerial();
}

bool SMediaPlayerCtrl::OpenMedia(const char* path, bool start) {
    if (player == nullptr) {
        return false;
    }
    CloseMedia();
    if (!player->Load(path, start)) {
        CloseMedia();
        return false;
    }
    HWND own = GetHandle();
    std::vector<SMessage> kept;
    bool quit = false;
    int quitCode = 0;
    SetTimer(own, OPEN_POLL_TIMER_ID, OPEN_POLL_ELAPSE);
    while (GetHandle() != 0 && player != nullptr &&
           player->GetOpenState() == SGstPlayer::OPEN_WAITING) {
        if (IsKeyHeld(VK_ESCAPE)) {
            break;
        }
        SMessage message;
        if (!GetMessage(&message)) {
            if (message.message == WM_QUIT) {
                quit = true;
                quitCode = static_cast<int>(message.wParam);
            }
            break;
        }
        if (message.hwnd == own && (message.message == SM_PLAYER_WAKE ||
                                    (message.message == WM_TIMER &&
                                     message.wParam == OPEN_POLL_TIMER_ID))) {
            continue;
        }
        if (SWnd::FromHandle(message.hwnd) == nullptr) {
            // Not a toolkit window: the workers' ports and the like run now.
            DispatchLoopMessage(&message);
            continue;
        }
        if (message.message == WM_TIMER) {
            continue;
        }
        if (static_cast<int>(kept.size()) < MEDIA_OPEN_KEPT_MESSAGES) {
            kept.push_back(message);
        }
    }
    if (GetHandle() != 0) {
        KillTimer(own, OPEN_POLL_TIMER_ID);
    }
    if (quit) {
        PostQuitMessage(quitCode);
    }
    int openState = player != nullptr ? player->GetOpenState() : SGstPlayer::OPEN_FAILED;
    if (openState == SGstPlayer::OPEN_FAILED || player == nullptr || GetHandle() == 0) {
        // A failed open drops what was kept.
        CloseMedia();
        return false;
    }
    if (!start && openState == SGstPlayer::OPEN_DONE) {
        player->Stop();
    }
    for (SMessage& message : kept) {
        DispatchLoopMessage(&message);
    }
    // The kept messages may have closed the window or opened another medium.
    if (player == nullptr || GetHandle() == 0 || openState != SGstPlayer::OPEN_DONE ||
        player->GetOpenState() != SGstPlayer::OPEN_DONE || mediaOpen) {
        if (!mediaOpen) {
            CloseMedia();
        }
        return false;
    }
    mediaOpen = true;
    mediaPath = SPath(path);
    hasPicture = player->HasVideo();
    if (start) {
        playing = true;
        paused = false;
        SetTimer(own, MEDIA_TIMER_ID, MEDIA_TIMER_ELAPSE);
    }
    Invalidate();
    return true;
}

void SMediaPlayerCtrl::CloseMedia() {
    if (player != nullptr) {
        player->Close();
    }
    if (GetHandle() != 0) {
        KillTimer(GetHandle(), MEDIA_TIMER_ID);
    }
    mediaOpen = false;
    mediaPath = SPath();
    hasPicture = false;
    playing = false;
    paused = false;
    frame = SImage();
    if (GetHandle() != 0) {
        Invalidate();
    }
}

bool SMediaPlayerCtrl::Play() {
    if (player == nullptr || !mediaOpen) {
        return false;
    }
    player->Seek(0);
    if (!player->Play()) {
        return false;
    }
    playing = true;
    paused = false;
    SetTimer(GetHandle(), MEDIA_TIMER_ID, MEDIA_TIMER_ELAPSE);
    return true;
}

bool SMediaPlayerCtrl::Stop() {
    if (player == nullptr) {
        return false;
    }
    bool stopped = mediaOpen && player->Stop();
    KillTimer(GetHandle(), MEDIA_TIMER_ID);
    playing = false;
    paused = false;
    return stopped;
}

bool SMediaPlayerCtrl::TogglePause() {
    if (player == nullptr) {
        return false;
    }
    if (paused) {
        if (!player->Play()) {
            return false;
        }
        paused = false;
        playing = true;
        return true;
    }
    if (playing) {
        if (!player->Pause()) {
            return false;
        }
        paused = true;
        playing = false;
        return true;
    }
    return false;
}

bool SMediaPlayerCtrl::Seek(unsigned milliseconds) {
    if (player == nullptr || !mediaOpen) {
        return false;
    }
    unsigned duration = GetDuration();
    return player->Seek(std::min(milliseconds, duration));
}

unsigned SMediaPlayerCtrl::GetPosition() const {
    if (player == nullptr || !mediaOpen) {
        return 0;
    }
    return static_cast<unsigned>(std::min<uint64_t>(player->GetPosition(), 0xFFFFFFFFu));
}

unsigned SMediaPlayerCtrl::GetDuration() const {
    if (player == nullptr || !mediaOpen) {
        return 0;
    }
    return static_cast<unsigned>(std::min<uint64_t>(player->GetDuration(), 0xFFFFFFFFu));
}

int SMediaPlayerCtrl::GetVolume() const {
    return player != nullptr ? player->GetVolume() : 0;
}

void SMediaPlayerCtrl::SetVolume(int volume) {
    if (player != nullptr) {
        player->SetVolume(std::clamp(volume, 0, 100));
    }
}

void SMediaPlayerCtrl::SetFullScreen(bool on) {
    if (GetHandle() == 0 || (on && !hasPicture) || on == fullScreen) {
        return;
    }
    SWnd* top = SWnd::FromHandle(GetTopWindow());
    HWND surface = top != nullptr ? top->GetHandle() : GetHandle();
    if (on) {
        SRect screen;
        if (!GetPlatform()->GetScreenRect(&screen)) {
            return;
        }
        normalRect = GetRect();
        if (top != nullptr && top != this) {
            normalTopRect = top->GetRect();
            top->MoveWindow(screen);
            MoveWindow(SRect{0, 0, top->GetClientWidth(), top->GetClientHeight()});
        } else {
            MoveWindow(screen);
        }
        GetPlatform()->SetSurfaceFullScreen(surface, true);
        fullScreen = true;
    } else {
        GetPlatform()->SetSurfaceFullScreen(surface, false);
        if (top != nullptr && top != this) {
            top->MoveWindow(normalTopRect);
        }
        MoveWindow(normalRect);
        fullScreen = false;
    }
    Invalidate();
}

SSize SMediaPlayerCtrl::GetNativeSize() const {
    SSize size{0, 0};
    if (player == nullptr || !hasPicture) {
        return size;
    }
    int width = 0;
    int height = 0;
    if (player->GetVideoSize(&width, &height)) {
        size = SSize{width, height};
    }
    return size;
}

void SMediaPlayerCtrl::PaintFilmStrip(cairo_t* cr, int width, int height) {
    cairo_save(cr);
    cairo_rectangle(cr, 0, 0, width, height);
    cairo_set_source_rgb(cr, 0, 0, 0);
    cairo_fill(cr);
    int side = static_cast<int>(height * 0.1);
    if (side > 0) {
        cairo_set_source_rgb(cr, 0xC0 / 255.0, 0xC0 / 255.0, 0xC0 / 255.0);
        int top = side / 2;
        int bottom = height - side / 2 - side;
        for (int x = 0; x < width; x += 2 * side) {
            cairo_rectangle(cr, x, top, side, side);
            cairo_rectangle(cr, x, bottom, side, side);
        }
        cairo_fill(cr);
    }
    cairo_restore(cr);
}

void SMediaPlayerCtrl::PaintVideo(cairo_t* cr) {
    SRect client = GetClientRect();
    if (!hasPicture || frame.GetBits() == nullptr) {
        PaintFilmStrip(cr, client.Width(), client.Height());
        return;
    }
    cairo_save(cr);
    cairo_rectangle(cr, 0, 0, client.Width(), client.Height());
    cairo_set_source_rgb(cr, 0, 0, 0);
    cairo_fill(cr);
    cairo_restore(cr);
    // Stretched to the window, its proportions kept.
    frame.drawMode = DRAW_FIT_ENLARGE;
    frame.Draw(cr, &client);
}

void SMediaPlayerCtrl::PrintTo(cairo_t* cr, unsigned /*flags*/) {
    SRect client = GetClientRect();
    PaintFilmStrip(cr, client.Width(), client.Height());
}

void SMediaPlayerCtrl::NotifyParent(unsigned message, LPARAM lParam) {
    HWND parent = GetParent();
    if (parent != 0) {
        SendMessage(parent, message, reinterpret_cast<WPARAM>(this), lParam);
    }
}

void SMediaPlayerCtrl::NotifyMouse(unsigned code, LPARAM lParam) {
    SetFocus(GetHandle());
    SMouseEvent mouse;
    mouse.code = code;
    mouse.client = SPoint{PointParamX(lParam), PointParamY(lParam)};
    mouse.screen = mouse.client;
    ClientToScreen(&mouse.screen);
    NotifyParent(SN_PLAYER_MOUSE, reinterpret_cast<LPARAM>(&mouse));
}

LRESULT SMediaPlayerCtrl::OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case SM_CREATE:
        if (!InitPlayer()) {
            return -1;
        }
        break;
    case WM_DESTROY:
        ReleasePlayer();
        break;
    case SM_PLAYER_PLAY_STATE:
        if (!IsCurrent(lParam) || !mediaOpen || wParam != PLAY_STATE_MEDIA_ENDED) {
            return 0;
        }
        Stop();
        if (!loop) {
            OnMediaEnded();
            NotifyParent(SN_PLAYER_ENDED, 0);
        } else {
            Play();
            OnMediaLooped();
            NotifyParent(SN_PLAYER_LOOPED, 0);
        }
        return 0;
    case SM_PLAYER_BUFFERING:
        if (!IsCurrent(lParam)) {
            return 0;
        }
        // A stream waits for its buffer to fill before it plays on.
        if (playing) {
            if (wParam == 0) {
                player->Pause();
            } else {
                player->Play();
            }
        }
        OnBuffering(wParam != 0);
        NotifyParent(SN_PLAYER_BUFFERING, static_cast<LPARAM>(wParam));
        return 0;
    case SM_PLAYER_ERROR:
        if (IsCurrent(lParam) && mediaOpen) {
            Stop();
            OnMediaFailed();
        }
        return 0;
    case SM_PLAYER_WAKE:
        return 0;
    case SM_PLAYER_FRAME:
        if (player != nullptr && player->TakeFrame(&frame)) {
            Invalidate();
        }
        return 0;
    case WM_TIMER:
        if (wParam == MEDIA_TIMER_ID) {
            if (playing) {
                OnMediaTimer();
            }
            return 0;
        }
        break;
    case WM_KEYDOWN:
        if (fullScreen && wParam == VK_ESCAPE) {
            SetFullScreen(false);
        } else if (!fullScreen) {
            SetFullScreen(true);
        }
        return 0;
    case WM_PAINT:
        if (wParam != 0) {
            PaintVideo(reinterpret_cast<cairo_t*>(wParam));
        }
        return 0;
    default:
        if (unsigned code = MouseEventCode(message); code != 0) {
            NotifyMouse(code, lParam);
        }
        break;
    }
    return SWnd::OnMessage(message, wParam, lParam);
}
