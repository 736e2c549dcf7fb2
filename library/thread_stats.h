// PThreadStats: the statistics worker. It counts the collection on a
// thread of its own (CountLibrary), hands the finished table to the thread
// that started it by a posted message, then deletes the empty ini files.
//
// The table is built whole on the worker and handed over once: the window
// never reads a table that is still being written, so it shows nothing for
// a folder until the result arrives.
#pragma once

#include <functional>
#include <memory>

#include "foundation/string.h"
#include "foundation/thread.h"
#include "library/statistics.h"

class PThreadStats : public SThread {
public:
    // The id of the posted result.
    static constexpr unsigned POST_RESULT = 0x87DA;

    // Called on the owner's thread with the finished table.
    using ResultHandler = std::function<void(PStatsTable&& table)>;

    explicit PThreadStats(ResultHandler onResult) : onResult(std::move(onResult)) {}
    // Waits for a run still counting; its result is dropped.
    ~PThreadStats() override { StopAndJoin(); }

    // Starts counting the tree under root without waiting. Refused (false)
    // while an earlier run is still active, which then goes on with its own
    // root; the owner's thread must run its message loop for the result.
    bool StartCount(const char* root);

protected:
    bool Run() override;
    void OnPost(unsigned id, SValue* value) override;

private:
    ResultHandler onResult;
    // Written only while no worker runs; read by the worker.
    SString root;
    // Filled by the worker before it posts; taken by the owner on the post.
    std::unique_ptr<PStatsTable> result;
};
