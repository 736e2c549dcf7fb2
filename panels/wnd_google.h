// PWndGoogle: the cover search window. A small modal window of six
// pictures found on the web for a folder, each with its size (in red when
// the cover would have to be enlarged), a scroll bar, "More" (the next
// results), the choice of sources and "Cancel". A click on a picture
// downloads the full picture and hands it, made a 150 by 150 square, to
// the host, which saves it as the folder's cover.
//
// Every request runs on a PCoverWorker: the window stays live, says what
// it is asking in its status line, and Cancel ends it at once. What a
// failed search or download finds is told in a message, and the window
// keeps the pictures it had. The window reaches its opener only through
// PCoverHost, so it is tested with a recording host.
#pragma once

#include <memory>
#include <vector>

#include "controls/media_ctrl.h"
#include "foundation/image.h"
#include "library/cover_search.h"
#include "library/cover_worker.h"
#include "toolkit/button_ctrls.h"
#include "toolkit/combo_ctrl.h"
#include "toolkit/draw.h"
#include "toolkit/range_ctrls.h"
#include "toolkit/wnd.h"

class PCoverHost {
public:
    virtual ~PCoverHost() = default;
    // Saves cover (150 by 150) as the folder's cover; false when it could
    // not be written.
    virtual bool SaveCover(const SImage& cover) = 0;
    // A message box over the window: text, caption and MB_* flags.
    virtual void ShowMessage(const char* text, const char* caption, unsigned flags) = 0;
};

// The texts the window tells.
inline constexpr const char* COVER_CAPTION = "Melkora Browser";
inline constexpr const char* COVER_NO_CONNECTION = "No active connection.";
inline constexpr const char* COVER_NOTHING_FOUND = "No image file found.";
inline constexpr const char* COVER_CANNOT_DOWNLOAD = "Cannot download the cover.";

// The window's client size and its controls' ids.
constexpr int COVER_WINDOW_WIDTH = 485;
constexpr int COVER_WINDOW_HEIGHT = 165;
constexpr int COVER_PICTURES = 6;
constexpr int ID_COVER_PICTURE = 1001; // 1001 to 1006
constexpr int ID_COVER_MORE = 1003;
constexpr int ID_COVER_CANCEL = 1002;

// The name a source is shown with.
const char* CoverSourceName(int source);
// The label under a result: its full picture's size, or the source's name
// when the reply told none; red (true) when a side is below the cover's.
SString CoverResultLabel(const PCoverCandidate& candidate, bool* red);

class PWndGoogle : public SWnd {
public:
    PWndGoogle(PCoverHost* host, const PCoverSearchSettings& settings);
    ~PWndGoogle() override;

    // The window's opener; null once it should hear nothing more.
    void SetHost(PCoverHost* newHost) { host = newHost; }
    // The query, as the user would type it.
    void SetQuery(const char* text) { query = text != nullptr ? text : ""; }
    const SString& GetQuery() const { return query; }
    // The window over owner (null for none), centred on it, titled
    // "Web...", shown, with the first search started.
    bool Create(SWnd* owner);
    // Create, then the modal run: 0 when a cover was picked and saved,
    // -1 for any other end.
    int Run(SWnd* owner);

    // The searches. Choose the sources (-1 for every source that is on);
    // a new choice searches again from the first results.
    bool SearchSources(int source);
    // "More": the results after those shown, which replace them.
    bool FetchResultPage();
    // A click on picture index (0 to 5): downloads the full picture.
    bool PickPicture(int index);
    // "Cancel": the job in hand stops and the window ends with -1.
    void CancelWindow();

    // What the window shows, for the tests.
    bool IsBusy() const { return worker != nullptr && worker->IsBusy(); }
    int GetResultCount() const { return static_cast<int>(results.size()); }
    const PCoverFound& GetResult(int index) const { return *results[index]; }
    const SImage& GetCover() const { return cover; }
    SMediaCtrl& GetPicture(int index) { return pictures[index]; }
    SMediaCtrl& GetLabel(int index) { return labels[index]; }
    SMediaCtrl& GetStatus() { return status; }
    SScrollCtrl& GetScrollBar() { return scrollBar; }
    SButtonCtrl& GetMoreButton() { return more; }
    SButtonCtrl& GetCancelButton() { return cancel; }
    SComboCtrl& GetSourceChoice() { return sourceChoice; }
    // The sources of each item of the choice, -1 for all.
    const std::vector<int>& GetChoiceSources() const { return choiceSources; }

protected:
    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override;

private:
    bool BuildControls();
    bool StartSearch(bool nextPage);
    void OnReport(PCoverReport&& report);
    void OnSearchEnd();
    void OnCoverReport(PCoverReport&& report);
    void ShowResults();
    void UpdateScrollBar();
    void SetBusy(const char* text);
    void SetIdle();
    void Tell(const char* text, unsigned flags);
    void End(int result);

    PCoverHost* host;
    PCoverSearchSettings settings;
    std::unique_ptr<PCoverWorker> worker;
    SString query;
    // The sources of the current choice, in the order they are asked, and
    // the offset of the next results of each (by PCoverSource).
    std::vector<int> sources;
    std::vector<int> choiceSources;
    int nextStart[COVER_SOURCE_COUNT] = {};
    int pendingStart[COVER_SOURCE_COUNT] = {};
    // The search in hand: whether it replaces what is shown yet, how many
    // sources failed and answered, and whether one has been shown.
    int searchJob = 0;
    int coverJob = 0;
    bool replaced = false;
    int failedSources = 0;
    int answeredSources = 0;
    bool everShown = false;
    bool ending = false;

    std::vector<std::unique_ptr<PCoverFound>> results;
    SImage cover;
    std::unique_ptr<SFont> labelFont;
    SMediaCtrl pictures[COVER_PICTURES];
    SMediaCtrl labels[COVER_PICTURES];
    SScrollCtrl scrollBar;
    SButtonCtrl more;
    SButtonCtrl cancel;
    SComboCtrl sourceChoice;
    SMediaCtrl status;
};
