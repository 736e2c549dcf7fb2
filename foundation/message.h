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

// The classic names of the handle and message word types.
using HWND = uint32_t;
using WPARAM = uintptr_t;
using LPARAM = intptr_t;
using LRESULT = intptr_t;

// Message numbers of the platform vocabulary, by their customary values.
constexpr unsigned WM_NULL = 0x0000;
constexpr unsigned WM_CREATE = 0x0001;
constexpr unsigned WM_DESTROY = 0x0002;
constexpr unsigned WM_MOVE = 0x0003;
constexpr unsigned WM_SIZE = 0x0005;
constexpr unsigned WM_SETFOCUS = 0x0007;
constexpr unsigned WM_KILLFOCUS = 0x0008;
constexpr unsigned WM_ENABLE = 0x000A;
constexpr unsigned WM_SETREDRAW = 0x000B;
constexpr unsigned WM_SETTEXT = 0x000C;
constexpr unsigned WM_GETTEXT = 0x000D;
constexpr unsigned WM_PAINT = 0x000F;
constexpr unsigned WM_CLOSE = 0x0010;
constexpr unsigned WM_QUIT = 0x0012;
constexpr unsigned WM_ERASEBKGND = 0x0014;
constexpr unsigned WM_SHOWWINDOW = 0x0018;
constexpr unsigned WM_SETCURSOR = 0x0020;
constexpr unsigned WM_GETMINMAXINFO = 0x0024;
constexpr unsigned WM_SETFONT = 0x0030;
constexpr unsigned WM_GETFONT = 0x0031;
constexpr unsigned WM_NOTIFY = 0x004E;
constexpr unsigned WM_STYLECHANGED = 0x007D;
constexpr unsigned WM_NCDESTROY = 0x0082;
constexpr unsigned WM_NCMOUSEMOVE = 0x00A0;
constexpr unsigned WM_NCLBUTTONDOWN = 0x00A1;
constexpr unsigned WM_NCLBUTTONUP = 0x00A2;
constexpr unsigned WM_NCRBUTTONDOWN = 0x00A4;
constexpr unsigned WM_NCRBUTTONUP = 0x00A5;
constexpr unsigned WM_NCMBUTTONDOWN = 0x00A7;
constexpr unsigned WM_NCMBUTTONUP = 0x00A8;
constexpr unsigned WM_KEYDOWN = 0x0100;
constexpr unsigned WM_KEYUP = 0x0101;
constexpr unsigned WM_CHAR = 0x0102;
constexpr unsigned WM_SYSKEYDOWN = 0x0104;
constexpr unsigned WM_SYSKEYUP = 0x0105;
constexpr unsigned WM_KEYFIRST = 0x0100;
constexpr unsigned WM_KEYLAST = 0x0109;
constexpr unsigned WM_COMMAND = 0x0111;
constexpr unsigned WM_SYSCOMMAND = 0x0112;
constexpr unsigned WM_TIMER = 0x0113;
constexpr unsigned WM_HSCROLL = 0x0114;
constexpr unsigned WM_VSCROLL = 0x0115;
constexpr unsigned WM_INITMENUPOPUP = 0x0117;
constexpr unsigned WM_MOUSEMOVE = 0x0200;
constexpr unsigned WM_LBUTTONDOWN = 0x0201;
constexpr unsigned WM_LBUTTONUP = 0x0202;
constexpr unsigned WM_LBUTTONDBLCLK = 0x0203;
constexpr unsigned WM_RBUTTONDOWN = 0x0204;
constexpr unsigned WM_RBUTTONUP = 0x0205;
constexpr unsigned WM_MBUTTONDOWN = 0x0207;
constexpr unsigned WM_MBUTTONUP = 0x0208;
constexpr unsigned WM_MOUSEWHEEL = 0x020A;
constexpr unsigned WM_MOUSEFIRST = 0x0200;
constexpr unsigned WM_MOUSELAST = 0x020E;
constexpr unsigned WM_CAPTURECHANGED = 0x0215;
constexpr unsigned WM_ENTERSIZEMOVE = 0x0231;
constexpr unsigned WM_EXITSIZEMOVE = 0x0232;
constexpr unsigned WM_DROPFILES = 0x0233;
constexpr unsigned WM_NCMOUSELEAVE = 0x02A2;
constexpr unsigned WM_MOUSELEAVE = 0x02A3;
constexpr unsigned WM_USER = 0x0400;
constexpr unsigned WM_APP = 0x8000;

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
