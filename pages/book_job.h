// PBookJob: one run of PBook::BuildBook on a worker thread, so that the
// window thread stays free to paint the progress and keep the player going.
// The progress is kept in an atomic the owner reads when it likes (each
// change also posts a note, at most one in flight); the result is read
// after the worker has been joined.
#pragma once

#include <atomic>
#include <functional>

#include "foundation/thread.h"
#include "pages/book.h"

class PBookJob : public SThread {
public:
    // The id of the posted progress note.
    static constexpr unsigned POST_PROGRESS = 0x87DB;

    // Called on the owner's thread when the progress changed (in
    // thousandths); may be empty.
    using ProgressHandler = std::function<void(int thousandths)>;

    PBookJob() = default;
    ~PBookJob() override { StopAndJoin(); }

    // The book to build: set root, image names and cover before Start; the
    // worker owns it until the run ends.
    PBook& GetBook() { return book; }
    // Starts the run; false when a run is still active or no thread starts.
    bool StartBuild(const char* bookPath, bool makeImages, ProgressHandler onProgress);
    // The run has ended (its result is waiting for Finish).
    bool IsDone() const { return done.load(); }
    // Joins the worker and gives the run's result; false when no run ended.
    bool Finish();
    int GetProgress() const { return progress.load(); }

protected:
    bool Run() override;
    void OnPost(unsigned id, SValue* value) override;

private:
    PBook book;
    SString path;
    bool images = true;
    ProgressHandler handler;
    std::atomic<int> progress{0};
    std::atomic<bool> notePending{false};
    std::atomic<bool> done{false};
    // Written by the worker before done is set; read after the join.
    bool result = false;
};
