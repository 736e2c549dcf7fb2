// The strip docked at the bottom of the screen: made the first time the
// "Taskbar" preference is found on, docked and undocked by it at every
// reload, and kept showing what the now-playing panel shows.
#include "app/settings.h"
#include "app/trace.h"
#include "app/wnd_app_main.h"
#include "toolkit/platform/platform.h"

void PWndApp::ApplyStrip() {
    bool on = ReadSettingBool(SETTING_TASKBAR);
    uint32_t color = ReadSettingInt(SETTING_TASKBAR_COLOR);
    if (strip == nullptr) {
        if (!on) {
            return;
        }
        strip = std::make_unique<PWndTask>(this);
        if (!strip->Create()) {
            strip.reset();
            return;
        }
        PStripCommands commands;
        commands.previous = CMD_PREVIOUS;
        commands.next = CMD_NEXT;
        commands.pause = CMD_PAUSE;
        commands.stop = CMD_STOP;
        strip->SetCommandTarget(GetHandle(), commands);
    }
    bool wasRegistered = strip->IsRegistered();
    SDockState state = strip->ApplyPreference(on, color);
    if (strip->IsRegistered() == wasRegistered) {
        if (on && !wasRegistered) {
            Trace("strip", false, "refused"); // hidden; the preference stays on
        }
        return;
    }
    if (!strip->IsRegistered()) {
        Trace("strip", false, "off");
        return;
    }
    SString height = SString::FromInt(strip->GetStripHeight());
    Trace("strip", false,
          ((state == SDockState::RESERVED ? "reserved " : "above ") + height).c_str());
    // Registering cleared the strip: it takes up what plays now.
    int index = queue.GetIndex();
    if (index >= 0) {
        StripShowTrack(queue.GetEntries().GetAt(index)->c_str(), index + 1, queue.GetCount());
    }
    UpdateTransportButtons();
}

void PWndApp::RemoveStrip() {
    if (strip != nullptr) {
        strip->Remove();
    }
}

void PWndApp::StripShowTrack(const char* path, int position, int count) {
    if (strip != nullptr) {
        strip->SetPlayingTrack(path, position, count);
    }
}

void PWndApp::StripUpdateTime() {
    if (strip != nullptr) {
        strip->UpdatePlayingTime();
    }
}

void PWndApp::StripEnableButtons(bool playing, int count) {
    if (strip != nullptr) {
        strip->EnableTransport(playing);
        strip->EnableBrowse(playing && count > 1);
    }
}

void PWndApp::StripSetBuffering(bool buffering) {
    if (strip != nullptr) {
        strip->SetBuffering(buffering);
    }
}
