#include "foundation/message.h"

#include <glib.h>

#include <algorithm>
#include <atomic>
#include <deque>
#include <mutex>
#include <sys/syscall.h>
#include <unistd.h>
#include <vector>

namespace {

struct Timer {
    HWND hwnd = 0;
    uintptr_t id = 0;
    unsigned elapse = 1;
    uint64_t due = 0;
};

struct Target {
    HWND hwnd = 0;
    SMessageTarget* target = nullptr;
};

// One row of the thread table. Rows are made on first use and kept until
// ResetThreadTable, so a post racing with the end of a thread finds a row
// that is merely unused and refuses the handle.
struct Row {
    std::mutex mutex;
    unsigned threadId = 0; // 0: the row is free
    GMainContext* context = nullptr;
    bool pushedContext = false;
    std::deque<SMessage> queue;
    std::vector<Target> targets; // sorted by handle
    std::vector<Timer> timers;
};

std::atomic<Row*> rows[THREAD_TABLE_SIZE];
std::mutex tableMutex; // making and freeing rows
std::atomic<uint32_t> nextSerial{0};
thread_local int ownRowIndex = -1;

std::atomic<SMessageClock> messageClock{nullptr};
std::atomic<bool> clockIsReal{true};

uint64_t MonotonicMilliseconds() {
    return static_cast<uint64_t>(g_get_monotonic_time() / 1000);
}

Row* RowOfHandle(HWND hwnd) {
    int index = static_cast<int>(hwnd >> 24) - 1;
    if (index < 0 || index >= THREAD_TABLE_SIZE) {
        return nullptr;
    }
    return rows[index].load();
}

// The calling thread's row, or null.
Row* OwnRow() {
    if (ownRowIndex < 0) {
        return nullptr;
    }
    Row* row = rows[ownRowIndex].load();
    if (row == nullptr) {
        ownRowIndex = -1;
    }
    return row;
}

std::vector<Target>::iterator FindIn(std::vector<Target>& targets, HWND hwnd) {
    auto it = std::lower_bound(targets.begin(), targets.end(), hwnd,
                               [](const Target& item, HWND value) { return item.hwnd < value; });
    if (it != targets.end() && it->hwnd == hwnd) {
        return it;
    }
    return targets.end();
}

bool InRange(unsigned message, unsigned first, unsigned last) {
    return (first == 0 && last == 0) || (message >= first && message <= last);
}

// Takes (or looks at) the first message in range, else a due timer.
bool Take(Row* row, SMessage* message, bool remove, unsigned first, unsigned last) {
    std::lock_guard<std::mutex> lock(row->mutex);
    for (auto it = row->queue.begin(); it != row->queue.end(); ++it) {
        if (InRange(it->message, first, last)) {
            *message = *it;
            if (remove) {
                row->queue.erase(it);
            }
            return true;
        }
    }
    if (!InRange(WM_TIMER, first, last) || row->timers.empty()) {
        return false;
    }
    uint64_t now = GetMessageClock();
    Timer* due = nullptr;
    for (Timer& timer : row->timers) {
        if (timer.due <= now && (due == nullptr || timer.due < due->due)) {
            due = &timer;
        }
    }
    if (due == nullptr) {
        return false;
    }
    *message = SMessage{due->hwnd, WM_TIMER, due->id, 0, now};
    if (remove) {
        due->due = now + due->elapse;
    }
    return true;
}

// Milliseconds until the next timer of the row, or -1 when there is none.
int64_t NextTimerDelay(Row* row) {
    std::lock_guard<std::mutex> lock(row->mutex);
    if (row->timers.empty()) {
        return -1;
    }
    uint64_t now = GetMessageClock();
    uint64_t next = UINT64_MAX;
    for (const Timer& timer : row->timers) {
        next = std::min(next, timer.due);
    }
    return next <= now ? 0 : static_cast<int64_t>(next - now);
}

gboolean StopWaiting(gpointer) {
    return G_SOURCE_REMOVE;
}

} // namespace

SMessageTarget::~SMessageTarget() = default;

unsigned GetCurrentThreadId() {
    thread_local unsigned id = static_cast<unsigned>(syscall(SYS_gettid));
    return id;
}

int RegisterThread() {
    if (OwnRow() != nullptr) {
        return ownRowIndex;
    }
    std::lock_guard<std::mutex> tableLock(tableMutex);
    bool tableEmpty = true;
    int freeIndex = -1;
    for (int i = 0; i < THREAD_TABLE_SIZE; ++i) {
        Row* row = rows[i].load();
        if (row == nullptr) {
            if (freeIndex < 0) {
                freeIndex = i;
            }
            continue;
        }
        std::lock_guard<std::mutex> lock(row->mutex);
        if (row->threadId != 0) {
            tableEmpty = false;
        } else if (freeIndex < 0) {
            freeIndex = i;
        }
    }
    if (freeIndex < 0) {
        return -1;
    }
    Row* row = rows[freeIndex].load();
    if (row == nullptr) {
        row = new Row;
        rows[freeIndex].store(row);
    }
    GMainContext* context = g_main_context_get_thread_default();
    bool pushed = false;
    if (context != nullptr) {
        g_main_context_ref(context);
    } else if (tableEmpty) {
        context = g_main_context_ref(g_main_context_default());
    } else {
        context = g_main_context_new();
        g_main_context_push_thread_default(context);
        pushed = true;
    }
    std::lock_guard<std::mutex> lock(row->mutex);
    row->threadId = GetCurrentThreadId();
    row->context = context;
    row->pushedContext = pushed;
    ownRowIndex = freeIndex;
    return freeIndex;
}

void UnregisterThread(unsigned threadId) {
    unsigned self = GetCurrentThreadId();
    if (threadId != 0 && threadId != self) {
        return;
    }
    Row* row = OwnRow();
    if (row == nullptr) {
        return;
    }
    std::lock_guard<std::mutex> tableLock(tableMutex);
    GMainContext* context = nullptr;
    bool pushed = false;
    {
        std::lock_guard<std::mutex> lock(row->mutex);
        row->threadId = 0;
        row->queue.clear();
        row->targets.clear();
        row->timers.clear();
        context = row->context;
        pushed = row->pushedContext;
        row->context = nullptr;
        row->pushedContext = false;
    }
    if (pushed) {
        g_main_context_pop_thread_default(context);
    }
    if (context != nullptr) {
        g_main_context_unref(context);
    }
    ownRowIndex = -1;
}

int FindThreadEntry(unsigned threadId) {
    if (threadId == 0) {
        return -1;
    }
    for (int i = 0; i < THREAD_TABLE_SIZE; ++i) {
        Row* row = rows[i].load();
        if (row == nullptr) {
            continue;
        }
        std::lock_guard<std::mutex> lock(row->mutex);
        if (row->threadId == threadId) {
            return i;
        }
    }
    return -1;
}

void ResetThreadTable() {
    UnregisterThread(0);
    std::lock_guard<std::mutex> tableLock(tableMutex);
    for (auto& slot : rows) {
        Row* row = slot.exchange(nullptr);
        if (row != nullptr && row->context != nullptr) {
            g_main_context_unref(row->context);
        }
        delete row;
    }
    ownRowIndex = -1;
}

HWND RegisterTarget(SMessageTarget* target) {
    Row* row = OwnRow();
    if (row == nullptr || target == nullptr) {
        return 0;
    }
    uint32_t serial = 0;
    while (serial == 0) {
        serial = (nextSerial.fetch_add(1) + 1) & 0xFFFFFF;
    }
    HWND hwnd = (static_cast<uint32_t>(ownRowIndex + 1) << 24) | serial;
    std::lock_guard<std::mutex> lock(row->mutex);
    auto it = std::lower_bound(row->targets.begin(), row->targets.end(), hwnd,
                               [](const Target& item, HWND value) { return item.hwnd < value; });
    row->targets.insert(it, Target{hwnd, target});
    return hwnd;
}

void UnregisterTarget(HWND hwnd) {
    Row* row = RowOfHandle(hwnd);
    if (row == nullptr) {
        return;
    }
    std::lock_guard<std::mutex> lock(row->mutex);
    auto it = FindIn(row->targets, hwnd);
    if (it == row->targets.end()) {
        return;
    }
    row->targets.erase(it);
    std::erase_if(row->timers, [hwnd](const Timer& timer) { return timer.hwnd == hwnd; });
    std::erase_if(row->queue, [hwnd](const SMessage& message) { return message.hwnd == hwnd; });
}

SMessageTarget* FindTarget(HWND hwnd) {
    Row* row = RowOfHandle(hwnd);
    if (row == nullptr) {
        return nullptr;
    }
    std::lock_guard<std::mutex> lock(row->mutex);
    auto it = FindIn(row->targets, hwnd);
    return it == row->targets.end() ? nullptr : it->target;
}

unsigned GetTargetThread(HWND hwnd) {
    Row* row = RowOfHandle(hwnd);
    if (row == nullptr) {
        return 0;
    }
    std::lock_guard<std::mutex> lock(row->mutex);
    return FindIn(row->targets, hwnd) == row->targets.end() ? 0 : row->threadId;
}

int GetThreadTargets(HWND* handles, int maxCount) {
    Row* row = OwnRow();
    if (row == nullptr) {
        return 0;
    }
    std::lock_guard<std::mutex> lock(row->mutex);
    int count = 0;
    for (const Target& target : row->targets) {
        if (count >= maxCount) {
            break;
        }
        handles[count++] = target.hwnd;
    }
    return count;
}

LRESULT SendMessage(HWND hwnd, unsigned message, WPARAM wParam, LPARAM lParam) {
    SMessageTarget* target = FindTarget(hwnd);
    if (target == nullptr || GetTargetThread(hwnd) != GetCurrentThreadId()) {
        return 0;
    }
    return target->HandleMessage(hwnd, message, wParam, lParam);
}

bool PostMessage(HWND hwnd, unsigned message, WPARAM wParam, LPARAM lParam) {
    Row* row = RowOfHandle(hwnd);
    if (row == nullptr) {
        return false;
    }
    std::lock_guard<std::mutex> lock(row->mutex);
    if (row->threadId == 0 || FindIn(row->targets, hwnd) == row->targets.end()) {
        return false;
    }
    // The owner waits only after finding its queue empty, so only the post
    // that fills an empty queue needs to wake it.
    bool wasEmpty = row->queue.empty();
    row->queue.push_back(SMessage{hwnd, message, wParam, lParam, GetMessageClock()});
    if (wasEmpty) {
        g_main_context_wakeup(row->context);
    }
    return true;
}

bool PostThreadMessage(unsigned threadId, unsigned message, WPARAM wParam, LPARAM lParam) {
    if (threadId == 0) {
        return false;
    }
    for (auto& slot : rows) {
        Row* row = slot.load();
        if (row == nullptr) {
            continue;
        }
        std::lock_guard<std::mutex> lock(row->mutex);
        if (row->threadId == threadId) {
            bool wasEmpty = row->queue.empty();
            row->queue.push_back(SMessage{0, message, wParam, lParam, GetMessageClock()});
            if (wasEmpty) {
                g_main_context_wakeup(row->context);
            }
            return true;
        }
    }
    return false;
}

void PostQuitMessage(int exitCode) {
    PostThreadMessage(GetCurrentThreadId(), WM_QUIT, static_cast<WPARAM>(exitCode), 0);
}

bool GetMessage(SMessage* message) {
    Row* row = OwnRow();
    if (row == nullptr || message == nullptr) {
        return false;
    }
    for (;;) {
        if (Take(row, message, true, 0, 0)) {
            return message->message != WM_QUIT;
        }
        // Nothing to do: run the thread's other event sources until a post
        // wakes the context or the next timer is due.
        GSource* timeout = nullptr;
        int64_t delay = NextTimerDelay(row);
        if (delay >= 0 && clockIsReal.load()) {
            timeout = g_timeout_source_new(static_cast<guint>(std::min<int64_t>(delay, G_MAXINT)));
            g_source_set_callback(timeout, StopWaiting, nullptr, nullptr);
            g_source_attach(timeout, row->context);
        }
        g_main_context_iteration(row->context, TRUE);
        if (timeout != nullptr) {
            g_source_destroy(timeout);
            g_source_unref(timeout);
        }
    }
}

bool PeekMessage(SMessage* message, bool remove, unsigned first, unsigned last) {
    Row* row = OwnRow();
    if (row == nullptr || message == nullptr) {
        return false;
    }
    // The platform's pending events are let in when the queue has nothing
    // to give, and every 32nd peek in any case, so that a busy queue does
    // not starve them; a poll of the context costs a system call.
    thread_local unsigned peeks = 0;
    if ((++peeks % 32) != 0 && Take(row, message, remove, first, last)) {
        return true;
    }
    for (int i = 0; i < 64 && g_main_context_pending(row->context); ++i) {
        g_main_context_iteration(row->context, FALSE);
    }
    return Take(row, message, remove, first, last);
}

LRESULT DispatchMessage(const SMessage* message) {
    if (message == nullptr || message->hwnd == 0) {
        return 0;
    }
    return SendMessage(message->hwnd, message->message, message->wParam, message->lParam);
}

int RemoveMessages(unsigned first, unsigned last) {
    Row* row = OwnRow();
    if (row == nullptr) {
        return 0;
    }
    std::lock_guard<std::mutex> lock(row->mutex);
    return static_cast<int>(std::erase_if(row->queue, [first, last](const SMessage& message) {
        return message.message >= first && message.message <= last;
    }));
}

int GetQueueLength() {
    Row* row = OwnRow();
    if (row == nullptr) {
        return 0;
    }
    std::lock_guard<std::mutex> lock(row->mutex);
    return static_cast<int>(row->queue.size());
}

bool SetTimer(HWND hwnd, uintptr_t id, unsigned elapse) {
    Row* row = RowOfHandle(hwnd);
    if (row == nullptr) {
        return false;
    }
    std::lock_guard<std::mutex> lock(row->mutex);
    if (row->threadId != GetCurrentThreadId() ||
        FindIn(row->targets, hwnd) == row->targets.end()) {
        return false;
    }
    elapse = std::max(elapse, 1u);
    uint64_t due = GetMessageClock() + elapse;
    for (Timer& timer : row->timers) {
        if (timer.hwnd == hwnd && timer.id == id) {
            timer.elapse = elapse;
            timer.due = due;
            return true;
        }
    }
    row->timers.push_back(Timer{hwnd, id, elapse, due});
    return true;
}

bool KillTimer(HWND hwnd, uintptr_t id) {
    Row* row = RowOfHandle(hwnd);
    if (row == nullptr) {
        return false;
    }
    std::lock_guard<std::mutex> lock(row->mutex);
    if (row->threadId != GetCurrentThreadId()) {
        return false;
    }
    return std::erase_if(row->timers, [hwnd, id](const Timer& timer) {
               return timer.hwnd == hwnd && timer.id == id;
           }) > 0;
}

void SetMessageClock(SMessageClock clock, bool isReal) {
    messageClock.store(clock);
    clockIsReal.store(clock == nullptr || isReal);
}

uint64_t GetMessageClock() {
    SMessageClock clock = messageClock.load();
    return clock != nullptr ? clock() : MonotonicMilliseconds();
}
