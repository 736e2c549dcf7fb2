#include "foundation/thread.h"

SThread::_SWnd::_SWnd(SThread* owner) : owner(owner) {
    handle = RegisterTarget(this);
}

SThread::_SWnd::~_SWnd() {
    if (handle != 0) {
        UnregisterTarget(handle);
    }
}

LRESULT SThread::_SWnd::HandleMessage(HWND, unsigned message, WPARAM wParam, LPARAM lParam) {
    SValue* value = reinterpret_cast<SValue*>(lParam);
    switch (message) {
    case SM_THREAD_POST:
        owner->OnPost(static_cast<unsigned>(wParam), value);
        owner->FreeValue(value);
        return 0;
    case SM_THREAD_POST_WORKER:
        if (owner->inLoop.load()) {
            owner->OnPostToWorker(static_cast<unsigned>(wParam), value);
        }
        delete value; // values to the worker are owned by their message alone
        return 0;
    case SM_THREAD_END:
        owner->JoinThread();
        return 0;
    default:
        return 0;
    }
}

SThread::SThread() : ownerWindow(this) {}

SThread::~SThread() {
    StopAndJoin();
    active.store(false);
    FreeAllValues();
}

bool SThread::Start(bool waitForEnd) {
    if (handle != nullptr || active.load() || ownerWindow.handle == 0) {
        return false;
    }
    // Values of an earlier run stay in their slots until their messages
    // arrive: they may still be queued on the owner.
    wait = waitForEnd;
    threadId.store(0);
    running.store(false);
    workerReady.store(false);
    inLoop.store(false);
    stopRequested.store(0);
    ownerThreadId.store(GetCurrentThreadId());
    active.store(true);
    if (!wait) {
        running.store(true);
    }
    try {
        handle = std::make_unique<std::thread>([this] { ThreadProcedure(); });
    } catch (...) {
        threadId.store(0);
        ownerThreadId.store(0);
        active.store(false);
        running.store(false);
        return false;
    }
    if (wait) {
        JoinThread();
    }
    return true;
}

void SThread::RequestStop() {
    stopRequested.store(1);
    unsigned worker = threadId.load();
    if (worker != 0) {
        PostThreadMessage(worker, WM_QUIT, 0, 0);
    }
}

void SThread::StopAndJoin() {
    RequestStop();
    JoinThread();
}

void SThread::JoinThread() {
    if (handle == nullptr) {
        return;
    }
    if (handle->joinable()) {
        handle->join();
    }
    handle.reset();
    threadId.store(0);
}

void SThread::ThreadProcedure() {
    if (RegisterThread() < 0) {
        return;
    }
    threadId.store(GetCurrentThreadId());
    OnThreadStart();
    {
        _SWnd port(this);
        workerWindow.store(&port);
        {
            std::lock_guard<std::mutex> lock(workerMutex);
            workerHandle = port.handle;
        }
        workerReady.store(true);
        bool goOn = Run();
        running.store(false);
        if (goOn && stopRequested.load() == 0) {
            inLoop.store(true);
            SMessage message;
            while (stopRequested.load() == 0 && GetMessage(&message)) {
                DispatchMessage(&message);
            }
            inLoop.store(false);
        }
        OnLoopEnd();
        workerReady.store(false);
        workerWindow.store(nullptr);
        // Values posted to the worker after its loop ended are freed unread.
        {
            std::lock_guard<std::mutex> lock(workerMutex);
            workerHandle = 0;
        }
        SMessage message;
        while (PeekMessage(&message, true, SM_THREAD_POST_WORKER, SM_THREAD_POST_WORKER)) {
            delete reinterpret_cast<SValue*>(message.lParam);
        }
    }
    OnThreadEnd();
    bool notify = !wait && stopRequested.load() == 0;
    active.store(false);
    if (notify) {
        PostMessage(ownerWindow.handle, SM_THREAD_END, 0, 0);
    }
    UnregisterThread(0);
}

bool SThread::Post(unsigned id, const SValue* value) {
    _SWnd* port = workerWindow.load();
    if (port == nullptr || !workerReady.load() || value == nullptr) {
        return false;
    }
    for (auto& slot : values) {
        if (slot.load() != nullptr) {
            continue;
        }
        SValue* copy = new SValue;
        copy->Assign(*value);
        SValue* expected = nullptr;
        if (!slot.compare_exchange_strong(expected, copy)) {
            delete copy;
            continue;
        }
        if (PostMessage(ownerWindow.handle, SM_THREAD_POST, id, reinterpret_cast<LPARAM>(copy))) {
            return true;
        }
        FreeValue(copy);
        return false;
    }
    return false;
}

bool SThread::Post(unsigned id, unsigned value) {
    SValue temporary;
    temporary.SetInt(value);
    return Post(id, &temporary);
}

bool SThread::PostToWorker(unsigned id, const SValue* value) {
    if (value == nullptr) {
        return false;
    }
    std::lock_guard<std::mutex> lock(workerMutex);
    if (workerHandle == 0) {
        return false;
    }
    SValue* copy = new SValue;
    copy->Assign(*value);
    if (PostMessage(workerHandle, SM_THREAD_POST_WORKER, id, reinterpret_cast<LPARAM>(copy))) {
        return true;
    }
    delete copy;
    return false;
}

int SThread::GetValuesInFlight() const {
    int count = 0;
    for (const auto& slot : values) {
        count += slot.load() != nullptr ? 1 : 0;
    }
    return count;
}

void SThread::FreeValue(SValue* value) {
    if (value == nullptr) {
        return;
    }
    for (auto& slot : values) {
        SValue* expected = value;
        if (slot.compare_exchange_strong(expected, nullptr)) {
            delete value;
            return;
        }
    }
}

void SThread::FreeAllValues() {
    for (auto& slot : values) {
        delete slot.exchange(nullptr);
    }
}
