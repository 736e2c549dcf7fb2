#include "library/play_queue.h"

#include "foundation/path.h"
#include "library/media.h"

PPlayerHost::~PPlayerHost() = default;

void PPlayQueue::GetQueueTitles(SStringArray& dest) const {
    for (const SString* entry : queue) {
        dest.Add(SPath(entry->c_str()).GetTitle());
    }
}

bool PPlayQueue::PlayFolderAt(int start, const char* folder) {
    if (folder == nullptr || folder[0] == 0) {
        return false;
    }
    SStringArray list;
    if (CollectMedia(list, folder, false, true, true, true, false, true) == 0) {
        return false;
    }
    StopPlaying();
    ++generation;
    queue.Assign(list);
    // The row is used as it is, although the track list counts radio files
    // that the queue leaves out.
    return PlayFrom(start == -1 ? 0 : start, false);
}

bool PPlayQueue::PlayFolders(const char* selectedFolder, const char* currentFolder, bool tree,
                             bool random) {
    StopPlaying();
    ++generation;
    if (selectedFolder != nullptr) {
        CollectMedia(queue, selectedFolder, tree, true, !tree, !tree, false, true);
    } else {
        if (!tree || currentFolder == nullptr) {
            return false;
        }
        CollectMedia(queue, currentFolder, true, true, true, true, false, true);
    }
    if (queue.GetCount() == 0) {
        return false;
    }
    if (random) {
        queue.Shuffle();
    } else {
        queue.Sort();
    }
    return PlayFrom(0, false);
}

bool PPlayQueue::PlaySelectedTracks(const SStringArray& paths) {
    if (paths.GetCount() == 0) {
        return false;
    }
    return ReplaceAndPlay(paths);
}

bool PPlayQueue::SetPlayQueue(const SStringArray* list) {
    if (list == nullptr) {
        return false;
    }
    return ReplaceAndPlay(*list);
}

bool PPlayQueue::ReplaceAndPlay(const SStringArray& list) {
    if (list.GetCount() == 0) {
        StopPlaying();
        return false;
    }
    // What plays goes on until the new queue's first entry opens in its
    // place, so a video window stays up, at full screen, between tracks.
    ++generation;
    queue.Assign(list);
    index = -1;
    return PlayFrom(0, false);
}

bool PPlayQueue::AfterAdding(bool wasEmpty) {
    if (wasEmpty) {
        return PlayFrom(0, true);
    }
    host.OnQueueGrown(queue.GetCount());
    return true;
}

bool PPlayQueue::AddFiles(const SStringArray& paths) {
    if (paths.GetCount() == 0) {
        return false;
    }
    bool wasEmpty = queue.GetCount() == 0;
    for (const SString* path : paths) {
        queue.Add(*path);
    }
    return AfterAdding(wasEmpty);
}

bool PPlayQueue::AddFolder(const char* folder) {
    if (folder == nullptr || folder[0] == 0) {
        return false;
    }
    bool wasEmpty = queue.GetCount() == 0;
    int before = queue.GetCount();
    CollectMedia(queue, folder, false, true, true, true, false, true);
    if (queue.GetCount() == before) {
        CollectMedia(queue, folder, true, true, false, false, false, true);
    }
    if (queue.GetCount() == before) {
        return false;
    }
    return AfterAdding(wasEmpty);
}

bool PPlayQueue::PlayFrom(int start, bool paused) {
    if (start < 0 || start >= queue.GetCount()) {
        StopPlaying();
        return false;
    }
    unsigned mine = ++generation;
    for (int i = start; i < queue.GetCount(); ++i) {
        Opened opened = OpenEntry(i, paused, mine);
        if (opened == Opened::Superseded) {
            return index != -1;
        }
        if (opened == Opened::Yes) {
            index = i;
            return true;
        }
    }
    StopPlaying();
    return false;
}

bool PPlayQueue::PlayTrack(int entry, bool paused) {
    unsigned mine = ++generation;
    return OpenEntry(entry, paused, mine) == Opened::Yes;
}

PPlayQueue::Opened PPlayQueue::OpenEntry(int entry, bool paused, unsigned mine) {
    if (entry < 0 || entry >= queue.GetCount()) {
        ClearNowPlaying();
        return Opened::No;
    }
    // A copy: while the player opens, held commands may replace the queue.
    SString path = *queue.GetAt(entry);
    SString address = GetPlayableAddress(path.c_str());
    bool opened = !address.IsEmpty() && host.OpenMedia(address.c_str());
    if (generation != mine) {
        return Opened::Superseded; // a held command played, stopped or replaced
    }
    if (!opened) {
        host.OnSkipped(path.c_str());
        return Opened::No;
    }
    if (paused) {
        host.Pause();
    }
    host.OnNowPlaying(path.c_str(), entry + 1, queue.GetCount());
    return Opened::Yes;
}

bool PPlayQueue::NextTrack() {
    if (index == -1) {
        return false;
    }
    if (repeat && index + 1 == queue.GetCount()) {
        return PlayFrom(0, false);
    }
    return PlayFrom(index + 1, false);
}

bool PPlayQueue::PreviousTrack() {
    if (index == -1) {
        return false;
    }
    unsigned mine = ++generation;
    Opened opened = OpenEntry(index - 1, false, mine);
    if (opened == Opened::Superseded) {
        return index != -1;
    }
    if (opened == Opened::Yes) {
        --index;
        return true;
    }
    StopPlaying();
    return false;
}

bool PPlayQueue::TogglePause() {
    return index != -1 && host.TogglePause();
}

bool PPlayQueue::StopPlaying() {
    if (queue.GetCount() == 0) {
        return false;
    }
    ++generation;
    ClearNowPlaying();
    queue.DeleteAll();
    index = -1;
    return true;
}

bool PPlayQueue::SeekSeconds(int seconds) {
    return index != -1 && host.Seek(seconds);
}

void PPlayQueue::ClearNowPlaying() {
    host.Stop();
    host.OnNowPlayingCleared();
}

void PPlayQueue::OnTrackEnded() {
    // An end reported after the queue was stopped belongs to nothing; it
    // must never reach the shutdown below.
    if (index == -1) {
        return;
    }
    if (queue.GetCount() == 1) {
        if (repeat) {
            host.Seek(0);
            return;
        }
        if (StopPlaying() && shutdown) {
            host.ShutDownMachine();
        }
        return;
    }
    if (!NextTrack() && shutdown) {
        host.ShutDownMachine();
    }
}

void PPlayQueue::OnTrackFailed() {
    if (index == -1) {
        return;
    }
    // As an entry that does not open: passed over, and the queue goes on
    // with the next one without wrapping.
    host.OnSkipped(queue.GetAt(index)->c_str());
    if (!PlayFrom(index + 1, false) && shutdown) {
        host.ShutDownMachine();
    }
}
