// SThread: the worker base class. A worker never touches a window: it posts
// numbered values, and they run on the thread that started it, through a
// hidden port (a message target) the object keeps on the owner's thread.
// The worker side has a port of its own while it runs, for the way back.
//
// The owner's thread must have a row of the thread table (RegisterThread,
// done by ToolkitStart for the main thread) when the object is made, and
// must run a message loop for OnPost to be called.
#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <thread>

#include "foundation/message.h"
#include "foundation/string.h"
#include "foundation/value.h"

// The ports' messages are SM_THREAD_POST, SM_THREAD_POST_WORKER and
// SM_THREAD_END (foundation/message_numbers.h).

class SThread {
public:
    // At most this many posted values are in flight at once.
    static constexpr int VALUE_SLOTS = 32;

    SThread();
    SThread(const SThread&) = delete;
    SThread& operator=(const SThread&) = delete;
    // On the owner's thread. A worker still running is asked to stop
    // (RequestStop) and joined: a Run that never looks at IsStopRequested
    // keeps the destructor waiting.
    virtual ~SThread();

    // Starts the worker. False when a thread exists or the object is active
    // (a finished worker's SM_THREAD_END must have reached the owner first),
    // or when the thread cannot start. With wait the call returns when the
    // worker has ended, without dispatching messages.
    bool Start(bool wait);
    // Asks the worker to end: Run should return when IsStopRequested says
    // so, and the worker's loop quits. Any thread.
    void RequestStop();
    // Asks the worker to end and waits for it (owner's thread). Every
    // subclass calls it first thing in its destructor: the worker calls
    // virtual operations and the subclass's members until it ends, and
    // both are gone by the time ~SThread could join.
    void StopAndJoin();
    bool IsStopRequested() const { return stopRequested.load() != 0; }
    bool IsRunning() const { return running.load(); }
    bool IsActive() const { return active.load(); }
    bool HasThread() const { return handle != nullptr; }
    void SetName(const char* text) { name = text; }
    const SString& GetName() const { return name; }

    // On the worker: copies value into a free slot and posts it to the
    // owner, where OnPost receives it. False, with nothing posted, outside
    // Run and the loop, for a null value, or when all slots are in flight.
    bool Post(unsigned id, const SValue* value);
    bool Post(unsigned id, unsigned value);
    // Posts to the worker's port (OnPostToWorker, while the worker loops).
    bool PostToWorker(unsigned id, const SValue* value);
    // How many posted values are in flight.
    int GetValuesInFlight() const;
    // The owner's port handle.
    HWND GetOwnerWindow() const { return ownerWindow.handle; }

protected:
    // Worker side: first and last thing in the thread.
    virtual void OnThreadStart() {}
    virtual void OnThreadEnd() {}
    // The work; true goes on into a message loop until WM_QUIT.
    virtual bool Run() { return true; }
    // Owner side: each value posted by the worker; it is freed afterwards.
    virtual void OnPost(unsigned /*id*/, SValue* /*value*/) {}
    // Worker side: each value posted to the worker while it loops.
    virtual void OnPostToWorker(unsigned /*id*/, SValue* /*value*/) {}
    // Worker side: after the loop, or after Run when there was none.
    virtual void OnLoopEnd() {}

public:
    // A message-only port of one thread, bound to its SThread.
    class _SWnd : public SMessageTarget {
    public:
        explicit _SWnd(SThread* owner);
        ~_SWnd() override;
        LRESULT HandleMessage(HWND hwnd, unsigned message, WPARAM wParam, LPARAM lParam) override;
        SThread* owner = nullptr;
        HWND handle = 0;
    };

private:
    void ThreadProcedure();
    // Finds the slot holding value, clears it and deletes the value; a value
    // in no slot is left alone.
    void FreeValue(SValue* value);
    void FreeAllValues();
    void JoinThread();

    std::atomic<unsigned> ownerThreadId{0};
    _SWnd ownerWindow;
    std::unique_ptr<std::thread> handle;
    std::atomic<unsigned> threadId{0};
    bool wait = false;
    std::atomic<bool> running{false};
    std::atomic<bool> active{false};
    std::atomic<_SWnd*> workerWindow{nullptr};
    // The worker port's handle for PostToWorker; guarded so that no value
    // is queued after the worker has drained its port.
    std::mutex workerMutex;
    HWND workerHandle = 0;
    std::atomic<bool> workerReady{false};
    std::atomic<bool> inLoop{false};
    std::atomic<int> stopRequested{0};
    SString name;
    std::atomic<SValue*> values[VALUE_SLOTS] = {};
};
