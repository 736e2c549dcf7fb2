// A main window for the panel tests: it answers from fields the test sets
// and writes down every call the panels make, one line each.
#pragma once

#include <string>
#include <vector>

#include "panels/panel_host.h"

class RecordingHost : public PPanelHost {
public:
    SString GetRootFolder() const override { return root.c_str(); }
    SString GetCurrentFolder() const override { return root.c_str(); }
    bool NavigateFolder(const char* relative, const char* selectName, bool focusThumbs) override {
        return Note("NavigateFolder " + std::string(relative) + "|" + selectName + "|" +
                    (focusThumbs ? "1" : "0"));
    }
    bool OpenFolder(const char* path, const char* selectName, bool focusThumbs) override {
        return Note("OpenFolder " + std::string(path) + "|" + selectName + "|" +
                    (focusThumbs ? "1" : "0"));
    }
    void ShowMainWindow() override { Note("ShowMainWindow"); }
    void HideMainWindow() override { Note("HideMainWindow"); }
    bool PlayFileInFolder(const char* name) override {
        return Note("PlayFileInFolder " + std::string(name));
    }
    bool SetPlayQueue(const SStringArray& paths) override {
        std::string line = "SetPlayQueue";
        for (int i = 0; i < paths.GetCount(); ++i) {
            line += " " + std::string(paths.GetText(i).c_str());
        }
        lastQueue.clear();
        for (int i = 0; i < paths.GetCount(); ++i) {
            lastQueue.push_back(paths.GetText(i).c_str());
        }
        return Note(line);
    }
    const SStringArray& GetPlayQueue() const override { return queue; }
    int GetPlayIndex() const override { return playIndex; }
    bool PlayQueueIndex(int index) override {
        return Note("PlayQueueIndex " + std::to_string(index));
    }
    int GetPlayPosition() const override { return positionMs; }
    int GetPlayLength() const override { return lengthMs; }
    bool IsMediaLoaded() const override { return loaded; }
    void SeekSeconds(int seconds) override { Note("SeekSeconds " + std::to_string(seconds)); }
    void LoadFolderCover(SImage* image, const char* folder) override {
        Note("LoadFolderCover " + std::string(folder));
        if (coverPicture.IsValid()) {
            image->CopyFrom(&coverPicture);
            return;
        }
        image->Create(150, 150, PIXEL_FORMAT_32ARGB);
        image->Fill(coverColor);
    }
    bool GetAutoHideAfterPlay() const override { return false; }
    bool AskPlaylistName(SString* name) override {
        Note("AskPlaylistName " + std::string(name->c_str()));
        if (!answerName) {
            return false;
        }
        *name = newName.c_str();
        return true;
    }
    bool AskYesNo(const char* text, const char* caption) override {
        Note("AskYesNo " + std::string(text) + "|" + caption);
        return answerYes;
    }

    // The calls whose line starts with prefix.
    std::vector<std::string> Calls(const std::string& prefix = "") const {
        std::vector<std::string> result;
        for (const std::string& line : calls) {
            if (line.compare(0, prefix.size(), prefix) == 0) {
                result.push_back(line);
            }
        }
        return result;
    }

    std::string root = "/";
    SStringArray queue;
    int playIndex = -1;
    int positionMs = 0;
    int lengthMs = 0;
    bool loaded = false;
    uint32_t coverColor = 0xFF3070C0u; // of the covers, unless coverPicture is set
    SImage coverPicture;
    bool answerName = true;
    std::string newName;
    bool answerYes = true;
    std::vector<std::string> lastQueue;
    std::vector<std::string> calls;

private:
    bool Note(const std::string& line) {
        calls.push_back(line);
        return true;
    }
};
