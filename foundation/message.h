// Messages between the program's objects: integer handles, one message
// queue per thread, timers, and the fetch-and-dispatch primitives that the
// toolkit's loop and the workers' loops are made of.
//
// A thread that receives messages takes a row of the thread table
// (RegisterThread). A message target (a window, a worker's hidden port)
// registers on its thread's row and gets a handle. Sending calls the
// target's handler at once on the calling thread; posting queues the message
// on the owner's row, from any thread, and wakes the owner's GLib main
// context. Handles carry their row in the top byte, so a post from another
// thread finds the queue without a search; a stale handle is refused.
#pragma once

#include <cstdint>

#include "foundation/message_numbers.h"

// The classic names of the handle and message word types.
using HWND = uint32_t;
using WPARAM = uintptr_t;
using LPARAM = intptr_t;
using LRESULT = intptr_t;

// Every message number (WM_*, SM_*, SN_*) is in message_numbers.h.

// A point packed into an LPARAM: x in the low 16 bits, y in the next 16,
// both signed.
constexpr LPARAM MakePointParam(int x, int y) {
    return static_cast<LPARAM>((static_cast<uint32_t>(y & 0xFFFF) << 16) |
                               static_cast<uint32_t>(x & 0xFFFF));
}
constexpr int PointParamX(LPARAM value) {
    return static_cast<int16_t>(static_cast<uint32_t>(value) & 0xFFFF);
}
constexpr int PointParamY(LPARAM value) {
    return static_cast<int16_t>((static_cast<uint32_t>(value) >> 16) & 0xFFFF);
}

// One queued message. time is the clock (GetMessageClock) when it was posted.
struct SMessage {
    HWND hwnd = 0;
    unsigned message = 0;
    WPARAM wParam = 0;
    LPARAM lParam = 0;
    uint64_t time = 0;
};

// Anything that has a handle and receives messages.
class SMessageTarget {
public:
    virtual ~SMessageTarget();
    virtual LRESULT HandleMessage(HWND hwnd, unsigned message, WPARAM wParam, LPARAM lParam) = 0;
};

// The thread table: at most this many threads receive messages at once.
constexpr int THREAD_TABLE_SIZE = 256;

// The calling thread's id (the kernel's thread id); never 0.
unsigned GetCurrentThreadId();

// Gives the calling thread a row of the table and returns its index, or the
// existing row when it has one; -1 when the table is full. The first row
// made while the table is empty runs on GLib's default main context (the
// one GTK uses); any other row gets a new context, made the thread's default
// until UnregisterThread.
int RegisterThread();
// Frees the row of a thread (0: the calling thread's own); its queue,
// timers and targets are dropped. Only the owner of a row frees it.
void UnregisterThread(unsigned threadId);
// The row index of a thread, -1 when it has none.
int FindThreadEntry(unsigned threadId);
// Frees every row. For the end of the process, with no other thread alive.
void ResetThreadTable();

// Targets. RegisterTarget gives the target a handle on the calling thread's
// row (0 when the thread has no row). UnregisterTarget drops the handle, its
// timers and the messages still queued for it. FindTarget gives the target
// of a handle of any thread, null for an unknown one; only the owner thread
// may call it.
HWND RegisterTarget(SMessageTarget* target);
void UnregisterTarget(HWND hwnd);
SMessageTarget* FindTarget(HWND hwnd);
// The owner thread of a handle, 0 for an unknown one.
unsigned GetTargetThread(HWND hwnd);
// The handles of the calling thread's row, in order.
int GetThreadTargets(HWND* handles, int maxCount);

// Sending: the handler runs now, on the calling thread, which must own the
// target. 0 for an unknown handle or a target of another thread.
LRESULT SendMessage(HWND hwnd, unsigned message, WPARAM wParam, LPARAM lParam);
// Posting, from any thread. False for an unknown handle or thread.
bool PostMessage(HWND hwnd, unsigned message, WPARAM wParam, LPARAM lParam);
bool PostThreadMessage(unsigned threadId, unsigned message, WPARAM wParam, LPARAM lParam);
// Posts WM_QUIT with exitCode as wParam to the calling thread.
void PostQuitMessage(int exitCode);

// Fetching, on the calling thread. GetMessage waits for a message and gives
// false for WM_QUIT (or when the thread has no row). PeekMessage does not
// wait; with remove it takes the message. first and last, when not both 0,
// keep only messages in that range (timers are produced only when the range
// holds WM_TIMER). While waiting, the thread's main context runs its other
// sources (the platform's events).
bool GetMessage(SMessage* message);
bool PeekMessage(SMessage* message, bool remove, unsigned first = 0, unsigned last = 0);
// Calls the handler of message->hwnd; a message without a handle (a thread
// message) is not dispatched and gives 0.
LRESULT DispatchMessage(const SMessage* message);
// Removes the queued messages of the calling thread in [first, last];
// returns how many were removed.
int RemoveMessages(unsigned first, unsigned last);
// How many messages the calling thread's queue holds.
int GetQueueLength();

// Timers: after every elapse milliseconds (at least 1), when the queue is
// empty, the owner receives WM_TIMER with the id in wParam. Setting an id
// again restarts it. False for an unknown handle or another thread's.
bool SetTimer(HWND hwnd, uintptr_t id, unsigned elapse);
bool KillTimer(HWND hwnd, uintptr_t id);

// The clock of messages and timers, in milliseconds. A null clock restores
// the monotonic clock. A fake clock (isReal false) is never waited for:
// GetMessage then only returns on a post, so tests step it and peek.
using SMessageClock = uint64_t (*)();
void SetMessageClock(SMessageClock clock, bool isReal);
uint64_t GetMessageClock();
