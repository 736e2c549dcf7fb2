// The Book window, making and sending the Book, and the help window.
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <string_view>

#include "app/data_files.h"
#include "app/settings.h"
#include "app/trace.h"
#include "app/wnd_app_main.h"
#include "foundation/disk.h"
#include "foundation/message_numbers.h"
#include "foundation/network.h"
#include "foundation/timer.h"
#include "library/media.h"
#include "pages/book.h"
#include "pages/book_job.h"
#include "panels/wnd_progress.h"
#include "toolkit/messages.h"

// The windows name their placements as the settings table does.
static_assert(std::string_view(PWndBook::PLACEMENT) == SETTING_WINDOW_BOOK);
static_assert(std::string_view(PWndHelp::PLACEMENT) == SETTING_WINDOW_HELP);

namespace {

constexpr const char* BOOK_MAIL_SUBJECT = "Melkora Browser BOOK";
constexpr const char* PROGRESS_TITLE = "Making the Book - Melkora Browser";
// How long a sent archive stays in the temporary folder after xdg-email
// returned: a mail client that was running already reads the attachment
// when the message goes, not when its window opens.
constexpr int ZIP_KEEP_SECONDS = 15 * 60;

int ZipKeepSeconds() {
    const char* value = getenv("MELKORA_BOOK_ZIP_SECONDS");
    if (value == nullptr || value[0] == 0) {
        return ZIP_KEEP_SECONDS;
    }
    return std::clamp(atoi(value), 0, 24 * 60 * 60);
}

} // namespace

// The main window as the Book and help windows see it.
class PAppBookHost : public PBookHost {
public:
    explicit PAppBookHost(PWndApp& app) : app(app) {}

    SString GetBookRoot() const override { return app.GetRootFolder(); }

    bool OpenBookFolder(const char* folder, const char* select) override {
        bool opened = app.OpenFolder(folder, select, false);
        if (opened) {
            app.ShowMainWindow();
        }
        return opened;
    }

    bool PlayBookSong(const char* file) override {
        SStringArray one;
        one.Add(file);
        return app.SetPlayQueue(one);
    }

    bool QueueBookSong(const char* file) override {
        PPlayQueue& queue = app.GetQueue();
        if (queue.GetCount() == 0) {
            return PlayBookSong(file);
        }
        SStringArray one;
        one.Add(file);
        bool added = queue.AddFiles(one);
        if (added) {
            Trace("queue", false, (SString::FromInt(queue.GetCount()) + " " + file).c_str());
        }
        return added;
    }

    bool PlayBookAlbum(const char* folder) override {
        SStringArray files;
        CollectMedia(files, folder, true, true, true, false, false, true);
        return app.SetPlayQueue(files);
    }

    bool RestorePlacement(const char* name, SWnd* window) override {
        SWindowPlacement placement;
        SRect area;
        GetWorkArea(&area);
        if (!ReadPlacement(name, area, &placement)) {
            return false;
        }
        window->MoveWindow(placement.rect);
        if (placement.isMaximized) {
            window->Maximize();
        }
        return true;
    }

    void StorePlacement(const char* name, SWnd* window) override {
        SWindowPlacement placement;
        placement.rect = window->GetWindowRect();
        placement.isVisible = window->IsVisible();
        placement.isMinimized = window->IsMinimized();
        placement.isMaximized = window->IsMaximized();
        WritePlacement(name, placement);
    }

private:
    PWndApp& app;
};

PBookHost& PWndApp::GetBookHost() {
    if (bookHost == nullptr) {
        bookHost = std::make_unique<PAppBookHost>(*this);
    }
    return *bookHost;
}

bool PWndApp::OpenBook() {
    SDisk disk;
    if (!disk.IsFile(bookPath.c_str())) {
        return MakeBook();
    }
    return OpenBookWindow();
}

bool PWndApp::OpenBookWindow() {
    if (bookWindow == nullptr) {
        bookWindow = std::make_unique<PWndBook>(GetBookHost());
    }
    bool opened = bookWindow->Open(bookPath.c_str());
    if (opened) {
        Trace("book-window", false, bookPath.c_str());
    }
    return opened;
}

bool PWndApp::MakeBook() {
    if (makingBook || bookPath.IsEmpty()) {
        return false;
    }
    makingBook = true;
    HWND self = GetHandle();
    auto job = std::make_unique<PBookJob>();
    PBook& book = job->GetBook();
    book.SetRoot(GetRootFolder().c_str());
    book.SetImageNames(ReadSettingString(SETTING_IMAGES).c_str());
    if (defaultCover.IsValid()) {
        book.defaultCover.CopyFrom(&defaultCover);
    }
    PWndProgress progress;
    progress.Open(PROGRESS_TITLE);
    Trace("book-progress", false, "0");
    int shownTenth = 0;
    auto onProgress = [&progress, &shownTenth](int thousandths) {
        progress.SetProgress(thousandths);
        // A milestone each tenth of the way, for the tests.
        int tenth = thousandths / 100;
        if (tenth > shownTenth) {
            shownTenth = tenth;
            Trace("book-progress", false, SString::FromInt(progress.GetProgress()).c_str());
        }
    };
    bool made = false;
    if (job->StartBuild(bookPath.c_str(), true, onProgress)) {
        progress.RunUntil([&job] { return job->IsDone(); });
        made = job->Finish();
    }
    SString failure = job->GetBook().GetFailure();
    job.reset(); // joins a run cut short by the program's end
    progress.Destroy();
    makingBook = false;
    if (FromHandle(self) != this) {
        return false;
    }
    if (!made) {
        Trace("book-failed", false, failure.c_str());
        statusBar.SetText(0, failure.c_str());
        return false;
    }
    Trace("book", true, bookPath.c_str());
    return OpenBookWindow();
}

bool PWndApp::SendBook() {
    SDisk disk;
    if (!disk.IsFile(bookPath.c_str())) {
        return false;
    }
    STimer today;
    today.SetNow(true);
    SString archive = PBook::MakeBookZipPath(today);
    PBook book;
    book.SetRoot(GetRootFolder().c_str());
    if (archive.IsEmpty() || !book.WriteBookZip(bookPath.c_str(), archive.c_str())) {
        return false;
    }
    if (bookZips == nullptr) {
        bookZips = std::make_unique<PBookZipSweeper>();
        SRect none{0, 0, 1, 1};
        bookZips->Create("", 0, 0, &none, GetHandle());
    }
    bookZips->Add(archive, -1);
    // The mail client's window is its own; this window goes on meanwhile.
    HWND sweeper = bookZips->GetHandle();
    SNetwork network;
    bool started = network.SendMailAsync(
        nullptr, BOOK_MAIL_SUBJECT, "", archive.c_str(), [sweeper, archive](bool sent) {
            Trace(sent ? "book-sent" : "book-not-sent", false, archive.c_str());
            auto* zips = dynamic_cast<PBookZipSweeper*>(SWnd::FromHandle(sweeper));
            if (zips != nullptr) {
                // A mail client that never got the archive
                // needs it no longer.
                zips->Add(archive, sent ? ZipKeepSeconds() : 0);
            }
        });
    if (!started) {
        bookZips->Add(archive, 0);
    }
    return started;
}

bool PWndApp::OpenHelp() {
    if (helpWindow == nullptr) {
        helpWindow = std::make_unique<PWndHelp>(GetBookHost());
    }
    SString page = FindDataFile("help.htm");
    if (page.IsEmpty()) {
        page = GetDataFolder() + "help.htm";
    }
    bool opened = helpWindow->Open(page.c_str());
    if (opened) {
        Trace("help", false, page.c_str());
    }
    return opened;
}

void PWndApp::CloseBookWindows() {
    if (bookWindow != nullptr) {
        bookWindow->ClosePage();
    }
    if (helpWindow != nullptr) {
        helpWindow->ClosePage();
    }
    if (bookZips != nullptr) {
        bookZips->RemoveAll();
    }
}

// The archives sent.

void PBookZipSweeper::Add(const SString& path, int seconds) {
    // A path given again (its mail command has ended) takes its new time.
    pending.erase(std::remove_if(pending.begin(), pending.end(),
                                 [&path](const Entry& entry) { return entry.path == path; }),
                  pending.end());
    if (seconds == 0) {
        unlink(path.c_str());
        Trace("zip-removed", false, path.c_str());
        return;
    }
    auto due = seconds < 0 ? std::chrono::steady_clock::time_point::max()
                           : std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
    pending.push_back({path, due});
    if (seconds > 0 && GetHandle() != 0) {
        SetTimer(GetHandle(), TIMER_SWEEP, 1000);
    }
}

void PBookZipSweeper::RemoveAll() {
    for (const Entry& entry : pending) {
        unlink(entry.path.c_str());
    }
    pending.clear();
}

LRESULT PBookZipSweeper::OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_TIMER && wParam == TIMER_SWEEP) {
        auto now = std::chrono::steady_clock::now();
        auto due = [now](const Entry& entry) { return entry.due <= now; };
        for (const Entry& entry : pending) {
            if (due(entry)) {
                unlink(entry.path.c_str());
                Trace("zip-removed", false, entry.path.c_str());
            }
        }
        pending.erase(std::remove_if(pending.begin(), pending.end(), due), pending.end());
        if (pending.empty()) {
            KillTimer(GetHandle(), TIMER_SWEEP);
        }
        return 0;
    }
    return SWnd::OnMessage(message, wParam, lParam);
}
