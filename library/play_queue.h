// PPlayQueue: the list of files being played, the place of the playing one,
// and the transport rules (play from, next, previous, pause, stop, the end
// of a track with repeat and shutdown). It drives a PPlayerHost, which the
// media player host implements and tests replace with a fake.
//
// Invariant: the index is -1 (nothing plays) or a valid index. There is no
// history: "previous" is the index minus one, and a random order is made
// once, when the queue is built.
//
// Re-entry: while the player opens a file it runs a nested loop, and the
// clicks held there are carried out before OpenMedia returns. Such a click
// may call any operation here (play another queue, next, stop). Every
// operation that replaces the queue or starts or stops playing counts a
// generation; an open that returns to a changed generation leaves the
// queue and index as the held command left them.
#pragma once

#include "foundation/array.h"
#include "foundation/string.h"

// What the queue needs from the player and from the windows around it.
class PPlayerHost {
public:
    virtual ~PPlayerHost();

    // The player.
    // Closes what was open and opens address (a file path or a stream
    // address), starting to play; false when it cannot be opened.
    virtual bool OpenMedia(const char* address) = 0;
    virtual void Pause() = 0;
    // Pauses a playing medium, plays a paused one.
    virtual bool TogglePause() = 0;
    // Stops and closes the medium.
    virtual void Stop() = 0;
    // Moves the playing medium to seconds from its start and plays on.
    virtual bool Seek(int seconds) = 0;

    // The windows: told what plays and when nothing does.
    // An entry opened: path, its place (from 1) and the queue's count.
    virtual void OnNowPlaying(const char* /*path*/, int /*position*/, int /*count*/) {}
    // Playing stopped: panels, video window and transport commands clear.
    virtual void OnNowPlayingCleared() {}
    // An entry could not be opened and was passed over (path as queued).
    virtual void OnSkipped(const char* /*path*/) {}
    // Entries were added to a queue that was already playing.
    virtual void OnQueueGrown(int /*count*/) {}
    // The queue ended with the shutdown flag on: power the machine off.
    virtual void ShutDownMachine() {}
};

class PPlayQueue {
public:
    explicit PPlayQueue(PPlayerHost& host) : host(host) {}
    PPlayQueue(const PPlayQueue&) = delete;
    PPlayQueue& operator=(const PPlayQueue&) = delete;

    // State.
    int GetIndex() const { return index; }
    int GetCount() const { return queue.GetCount(); }
    const SStringArray& GetEntries() const { return queue; }
    bool GetRepeat() const { return repeat; }
    void SetRepeat(bool on) { repeat = on; }
    bool GetShutdown() const { return shutdown; }
    void SetShutdown(bool on) { shutdown = on; }
    // Each entry's file title (name without extension), in queue order.
    void GetQueueTitles(SStringArray& dest) const;

    // Building the queue. Each replaces the queue, except AddFiles and
    // AddFolder, which extend it.
    // The media of folder, not recursive, radio left out, starting at
    // index (-1 means 0). index is the track list's row as it stands,
    // although that list also shows radio files. False, with the queue
    // untouched, when the folder holds nothing to play.
    bool PlayFolderAt(int index, const char* folder);
    // selectedFolder null means no folder row is selected. With tree, the
    // selected folder's songs of the whole tree; without, its songs, videos
    // and pictures. With no selection: false without tree, else the whole
    // tree of currentFolder. Shuffled when random, else sorted.
    bool PlayFolders(const char* selectedFolder, const char* currentFolder, bool tree, bool random);
    // The selected rows' paths in row order; false when there are none.
    // Like SetPlayQueue, what plays goes on until the first entry opens.
    bool PlaySelectedTracks(const SStringArray& paths);
    // Replaces the queue by list and plays from 0, without stopping first;
    // false for null. An empty list stops.
    bool SetPlayQueue(const SStringArray* list);
    // Appends paths (the selected rows); false when there are none.
    bool AddFiles(const SStringArray& paths);
    // Appends the folder's media (not recursive, no radio), or when that
    // adds nothing its songs of the whole tree; false when nothing was
    // added.
    bool AddFolder(const char* folder);

    // Transport.
    // Plays the first entry at or after index that opens; stops the queue
    // and gives false when none does or index is not valid.
    bool PlayFrom(int index, bool paused);
    // Opens one entry; does not change the index.
    bool PlayTrack(int index, bool paused);
    bool NextTrack();
    // Plays index - 1; on the first entry this stops the queue.
    bool PreviousTrack();
    bool TogglePause();
    // Empties the queue; false when it was empty already.
    bool StopPlaying();
    bool SeekSeconds(int seconds);
    // Called at a track's natural end; ignored when nothing plays.
    void OnTrackEnded();
    // Called when the playing track fails after it opened: passed over as
    // a file that does not open, going on with the next entry.
    void OnTrackFailed();

private:
    enum class Opened { Yes, No, Superseded };
    // Opens one entry for an operation of generation mine; Superseded when
    // a command held during the open changed the queue or what plays.
    Opened OpenEntry(int entry, bool paused, unsigned mine);
    // Replaces the queue by list, without stopping first, and plays from 0;
    // an empty list stops.
    bool ReplaceAndPlay(const SStringArray& list);
    // Ends what plays and tells the windows.
    void ClearNowPlaying();
    // After an extension: plays from 0 when the queue was empty, else
    // tells the windows of the new count.
    bool AfterAdding(bool wasEmpty);

    PPlayerHost& host;
    SStringArray queue;
    int index = -1;
    unsigned generation = 0;
    bool repeat = false;
    bool shutdown = false;
};
