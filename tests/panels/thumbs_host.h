// A PPanelHost that records what the thumbnails ask of it, one line a call
// ("navigate ..|", "play Name"), and answers as its fields say.
#pragma once

#include <string>
#include <vector>

#include "panels/panel_host.h"

class ThumbsHost : public PPanelHost {
public:
    std::vector<std::string> calls;
    bool navigateResult = true;
    bool playResult = true;
    bool autoHide = false;
    SStringArray queue;

    SString GetRootFolder() const override { return SString("/music/"); }
    SString GetCurrentFolder() const override { return SString("/music/Rock/"); }
    bool NavigateFolder(const char* relative, const char* selectName, bool focusThumbs) override {
        calls.push_back(std::string("navigate ") + relative + "|" + selectName +
                        (focusThumbs ? "|thumbs" : "|list"));
        return navigateResult;
    }
    bool OpenFolder(const char* path, const char* selectName, bool focusThumbs) override {
        calls.push_back(std::string("open ") + path + "|" + selectName +
                        (focusThumbs ? "|thumbs" : "|list"));
        return navigateResult;
    }
    void ShowMainWindow() override { calls.push_back("show"); }
    void HideMainWindow() override { calls.push_back("hide"); }
    bool PlayFileInFolder(const char* name) override {
        calls.push_back(std::string("play ") + name);
        return playResult;
    }
    bool SetPlayQueue(const SStringArray&) override { return false; }
    const SStringArray& GetPlayQueue() const override { return queue; }
    int GetPlayIndex() const override { return -1; }
    bool PlayQueueIndex(int) override { return false; }
    int GetPlayPosition() const override { return 0; }
    int GetPlayLength() const override { return 0; }
    bool IsMediaLoaded() const override { return false; }
    void SeekSeconds(int) override {}
    void LoadFolderCover(SImage*, const char*) override {}
    bool GetAutoHideAfterPlay() const override { return autoHide; }
    bool AskPlaylistName(SString*) override { return false; }
    bool AskYesNo(const char*, const char*) override { return false; }
};
