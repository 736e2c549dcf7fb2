// SBrowserCtrl: the window that shows web pages (the description pages, the
// Book) and reports what happens in them to its parent. The page itself is
// drawn by a web engine's widget, laid over this window by the platform
// (SHostedChild); the engine is WebKitGTK (controls/web/), or any other
// behind SWebEngine, which the tests replace.
//
// The parent is told, each with this control as wParam (SNotification):
//   SN_WEB_BEFORE_NAVIGATE  the address (Text); a result other than 0 cancels
//   SN_WEB_PROGRESS         Code: the progress in the low 32 bits, the
//                           maximum in the high 32 bits
//   SN_WEB_TITLE            the page's title changed (GetTitle)
//   SN_WEB_STATUS_TEXT      the status text changed (GetStatusText)
//   SN_WEB_DOCUMENT_DONE    Code 0 when the page is complete, 1 when it failed
//   SN_WEB_QUIT             the page asked to close its window
// Reports that arrive while the control has no window are dropped.
#pragma once

#include <cstdint>
#include <memory>

#include "foundation/string.h"
#include "toolkit/hosted_child.h"
#include "toolkit/wnd.h"

// What the control asks of a web engine. Everything runs on the window's
// thread, the reports too.
class SWebEngine {
public:
    class Events {
    public:
        virtual ~Events() = default;
        // Before any navigation, the program's own loads included; true
        // cancels it.
        virtual bool OnBeforeNavigate(const char* url) = 0;
        virtual void OnProgress(int done, int total) = 0;
        virtual void OnTitleChanged() = 0;
        virtual void OnStatusTextChanged() = 0;
        virtual void OnDocumentDone(bool failed) = 0;
        virtual void OnQuit() = 0;
    };
    virtual ~SWebEngine() = default;
    // The platform widget that shows the page, handed to the platform once.
    virtual void* GetWidget() = 0;
    // Starts loading url; history false keeps it out of the back list.
    virtual bool Load(const char* url, bool history) = 0;
    virtual SString GetAddress() const = 0;
    virtual SString GetTitle() const = 0;
    virtual SString GetStatusText() const = 0;
    // Script error boxes and other prompts of the page stay hidden.
    virtual void SetSilent(bool silent) = 0;
};

// Makes the engine of a new control; null when none can start.
using SWebEngineFactory = std::unique_ptr<SWebEngine> (*)(SWebEngine::Events* events);
// The factory of every control made after the call; null restores WebKitGTK.
void SetWebEngineFactory(SWebEngineFactory factory);

class SBrowserCtrl : public SWnd, private SWebEngine::Events {
public:
    SBrowserCtrl();
    ~SBrowserCtrl() override;

    // Loads url (a path from "/" loads as its file URL) and keeps tag as the
    // current tag. False without an engine.
    bool NavigateUrl(const char* url, const char* tag);
    // Writes html to a temporary file, "melkora_browser_<n>" plus extension
    // (".htm", ".mht"; may be empty) in the temporary folder, and loads it.
    // The file of the call before is removed first; the last goes with the
    // control.
    bool NavigateHtml(const char* html, const char* tag, const char* extension);
    const SString& GetTag() const { return tag; }
    // Sets the tag alone, with no navigation.
    void SetTag(const char* value) { tag = value != nullptr ? value : ""; }
    void SetSilent(bool silent);
    // With history off, navigations stay out of the back list.
    void SetHistory(bool on) { history = on; }
    bool HasEngine() const { return engine != nullptr; }

    SString GetAddress() const;
    SString GetTitle() const;
    SString GetStatusText() const;
    // The temporary file of the last NavigateHtml; empty when none.
    const SString& GetTempFile() const { return tempFile; }
    // The engine's widget and its place (for tests).
    const SHostedChild& GetHosted() const { return hosted; }

    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override;

private:
    bool OnBeforeNavigate(const char* url) override;
    void OnProgress(int done, int total) override;
    void OnTitleChanged() override;
    void OnStatusTextChanged() override;
    void OnDocumentDone(bool failed) override;
    void OnQuit() override;
    LRESULT Tell(unsigned message, LPARAM lParam);
    void RemoveTempFile();
    void Shut();

    std::unique_ptr<SWebEngine> engine;
    SHostedChild hosted;
    SString tag;
    SString tempFile;
    bool history = true;
    int tempCounter = 0;
};
