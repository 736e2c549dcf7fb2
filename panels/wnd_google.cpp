#include "panels/wnd_google.h"

#include <algorithm>

#include "controls/media_layout.h"
#include "foundation/network.h"
#include "library/metadata.h"
#include "toolkit/draw.h"
#include "toolkit/notification.h"
#include "toolkit/selector.h"
#include "toolkit/sys_colors.h"

namespace {

constexpr uint32_t WHITE = 0x00FFFFFF;
constexpr uint32_t BLACK = 0x00000000;
constexpr uint32_t RED = 0x000000FF; // program colours are 0x00BBGGRR
constexpr unsigned LABEL_ALIGN = 0x11; // centred across and down
// The cursor over the window while it waits for the network ("progress":
// busy, but still taking clicks).
constexpr int CURSOR_PROGRESS = 12;
constexpr int ID_COVER_SOURCES = 1010;
// The labels' font, small enough for "1000 x 1000" under a picture.
constexpr const char* LABEL_FONT_FACE = "Verdana";
constexpr double LABEL_FONT_POINTS = 7.5;

SRect PictureRect(int i) {
    return SRect{5 + 80 * i, 5, 80 + 80 * i, 80};
}

SRect LabelRect(int i) {
    return SRect{5 + 80 * i, 80, 80 + 80 * i, 105};
}

} // namespace

const char* CoverSourceName(int source) {
    switch (source) {
    case COVER_SOURCE_SCRAPER:
        return "Image search";
    case COVER_SOURCE_MUSICBRAINZ:
        return "MusicBrainz";
    case COVER_SOURCE_ITUNES:
        return "iTunes";
    case COVER_SOURCE_DEEZER:
        return "Deezer";
    default:
        return "";
    }
}

SString CoverResultLabel(const PCoverCandidate& candidate, bool* red) {
    bool known = candidate.width > 0 && candidate.height > 0;
    if (red != nullptr) {
        *red = known && (candidate.width < COVER_SIDE || candidate.height < COVER_SIDE);
    }
    if (!known) {
        return SString(CoverSourceName(candidate.source));
    }
    SString label = SString::FromInt(candidate.width);
    label += " x ";
    label += SString::FromInt(candidate.height);
    return label;
}

PWndGoogle::PWndGoogle(PCoverHost* host, const PCoverSearchSettings& settings)
    : host(host), settings(settings) {}

PWndGoogle::~PWndGoogle() {
    // The worker first: its reports name this window's members.
    worker.reset();
    Destroy();
}

bool PWndGoogle::Create(SWnd* owner) {
    SRect place{0, 0, COVER_WINDOW_WIDTH, COVER_WINDOW_HEIGHT};
    if (!SWnd::Create("Web...", WS_CAPTION | WS_SYSMENU, 0, &place, 0)) {
        return false;
    }
    if (owner != nullptr && owner->GetHandle() != 0) {
        SetOwner(owner->GetTopWindow());
    }
    SetClientSize(COVER_WINDOW_WIDTH, COVER_WINDOW_HEIGHT);
    SetMinMaxClient(COVER_WINDOW_WIDTH, COVER_WINDOW_HEIGHT, COVER_WINDOW_WIDTH,
                    COVER_WINDOW_HEIGHT);
    // Centred on the owner, or on the work area without one.
    SRect area;
    SWnd* top = owner != nullptr ? SWnd::FromHandle(owner->GetTopWindow()) : nullptr;
    if (top != nullptr && top->IsVisible()) {
        area = top->GetWindowRect();
    } else if (!GetWorkArea(&area)) {
        area = SRect{0, 0, GetWidth(), GetHeight()};
    }
    int left = area.left + (area.Width() - GetWidth()) / 2;
    int upper = area.top + (area.Height() - GetHeight()) / 2;
    MoveWindow(SRect{left, upper, left + GetWidth(), upper + GetHeight()});
    SetBackColor(GetSysColor(SYS_COLOR_BTNFACE));
    if (!BuildControls()) {
        return false;
    }
    worker = std::make_unique<PCoverWorker>(
        settings, [this](PCoverReport&& report) { OnReport(std::move(report)); });
    Show(SW_SHOW);
    SearchSources(-1);
    return true;
}

bool PWndGoogle::BuildControls() {
    HWND self = GetHandle();
    labelFont.reset(MakeFont(LABEL_FONT_FACE, PointsToHeight(LABEL_FONT_POINTS), 0));
    for (int i = 0; i < COVER_PICTURES; ++i) {
        SRect picturePlace = PictureRect(i);
        SRect labelPlace = LabelRect(i);
        if (!pictures[i].Create("", 0, WS_EX_STATICEDGE, &picturePlace, self,
                                ID_COVER_PICTURE + i) ||
            !labels[i].Create("", 0, WS_EX_STATICEDGE, &labelPlace, self)) {
            return false;
        }
        pictures[i].SetBackColor(WHITE);
        pictures[i].SetMargins(0, 0, 0, 0);
        pictures[i].SetButton(true);
        pictures[i].SetFlat(true);
        pictures[i].SetCursor(CURSOR_HAND + 1);
        pictures[i].SetToolTip(true);
        labels[i].SetBackColor(WHITE);
        labels[i].SetAlign(LABEL_ALIGN);
        labels[i].SetMargins(0, 0, 0, 0);
        SendMessage(labels[i].GetHandle(), WM_SETFONT, reinterpret_cast<WPARAM>(labelFont.get()),
                    0);
        labels[i].SetTrimming(true);
    }
    SRect scrollPlace{5, 105, 480, 125};
    SRect morePlace{5, 135, 95, 160};
    SRect cancelPlace{390, 135, 480, 160};
    SRect statusPlace{240, 135, 385, 160};
    if (!scrollBar.Create("", 0, 0, &scrollPlace, self) ||
        !more.Create("More", WS_VISIBLE | WS_TABSTOP, 0, &morePlace, self, ID_COVER_MORE) ||
        !cancel.Create("Cancel", WS_VISIBLE | WS_TABSTOP, 0, &cancelPlace, self,
                       ID_COVER_CANCEL) ||
        !sourceChoice.Create(this, SRect{100, 136, 235, 159}, ID_COVER_SOURCES) ||
        !status.Create("", WS_VISIBLE, 0, &statusPlace, self)) {
        return false;
    }
    status.SetAlign(MEDIA_ALIGN_CENTER | MEDIA_ALIGN_MIDDLE);
    status.SetTrimming(true);
    // Every source that is on, then each alone.
    PCoverSearch probe(settings);
    sourceChoice.AddText("All sources");
    choiceSources = {-1};
    for (int source : {COVER_SOURCE_SCRAPER, COVER_SOURCE_MUSICBRAINZ, COVER_SOURCE_ITUNES,
                       COVER_SOURCE_DEEZER}) {
        if (probe.IsEnabled(source)) {
            sourceChoice.AddText(CoverSourceName(source));
            choiceSources.push_back(source);
        }
    }
    sourceChoice.SetSelectedIndex(0);
    return true;
}

int PWndGoogle::Run(SWnd* owner) {
    if (!Create(owner)) {
        return -1;
    }
    if (ending) {
        return modalResult; // ended before it could be shown
    }
    return DoModal();
}

bool PWndGoogle::SearchSources(int source) {
    sources.clear();
    PCoverSearch probe(settings);
    for (int each : {COVER_SOURCE_SCRAPER, COVER_SOURCE_MUSICBRAINZ, COVER_SOURCE_ITUNES,
                     COVER_SOURCE_DEEZER}) {
        if ((source < 0 || source == each) && probe.IsEnabled(each)) {
            sources.push_back(each);
        }
    }
    std::fill(std::begin(nextStart), std::end(nextStart), 0);
    return StartSearch(false);
}

bool PWndGoogle::FetchResultPage() {
    return StartSearch(true);
}

bool PWndGoogle::StartSearch(bool nextPage) {
    if (worker == nullptr || ending) {
        return false;
    }
    worker->CancelJob();
    coverJob = 0;
    if (sources.empty()) {
        Tell(COVER_NOTHING_FOUND, MB_OK);
        if (!everShown) {
            End(-1);
        }
        return false;
    }
    std::vector<int> starts;
    for (int source : sources) {
        starts.push_back(nextPage ? nextStart[source] : 0);
    }
    std::copy(std::begin(nextStart), std::end(nextStart), std::begin(pendingStart));
    if (!nextPage) {
        std::fill(std::begin(pendingStart), std::end(pendingStart), 0);
    }
    replaced = false;
    failedSources = 0;
    answeredSources = 0;
    searchJob = worker->Search(query.c_str(), sources, starts);
    if (searchJob == 0) {
        Tell(COVER_NO_CONNECTION, MB_OK);
        return false;
    }
    SString text("Asking ");
    text += CoverSourceName(sources.front());
    text += "...";
    SetBusy(text.c_str());
    return true;
}

bool PWndGoogle::PickPicture(int index) {
    int k = scrollBar.GetValue() + index;
    if (worker == nullptr || ending || index < 0 || index >= COVER_PICTURES || k < 0 ||
        k >= GetResultCount()) {
        return false;
    }
    // A search still running gives way to the picture asked for.
    worker->CancelJob();
    searchJob = 0;
    coverJob = worker->FetchCover(results[k]->candidate.imageUrl.c_str());
    if (coverJob == 0) {
        Tell(COVER_CANNOT_DOWNLOAD, MB_ICONWARNING);
        return false;
    }
    SetBusy("Downloading the cover...");
    return true;
}

void PWndGoogle::CancelWindow() {
    if (worker != nullptr) {
        worker->CancelJob();
    }
    searchJob = 0;
    coverJob = 0;
    SetIdle();
    End(-1);
}

void PWndGoogle::OnReport(PCoverReport&& report) {
    if (report.kind == COVER_REPORT_IMAGE) {
        if (report.job == coverJob) {
            OnCoverReport(std::move(report));
        }
        return;
    }
    if (report.job != searchJob) {
        return;
    }
    if (report.kind == COVER_REPORT_END) {
        OnSearchEnd();
        return;
    }
    ++answeredSources;
    if (report.status == COVER_FETCH_FAILED) {
        ++failedSources;
    } else if (report.source >= 0 && report.source < COVER_SOURCE_COUNT) {
        pendingStart[report.source] += report.status;
    }
    if (!report.found.empty()) {
        // The first source with pictures replaces what was shown.
        if (!replaced) {
            results.clear();
            scrollBar.SetValue(0);
            replaced = true;
        }
        for (PCoverFound& found : report.found) {
            results.push_back(std::make_unique<PCoverFound>(std::move(found)));
        }
        everShown = true;
        UpdateScrollBar();
        ShowResults();
    }
    if (answeredSources < static_cast<int>(sources.size())) {
        SString text("Asking ");
        text += CoverSourceName(sources[answeredSources]);
        text += "...";
        SetBusy(text.c_str());
    }
}

void PWndGoogle::OnSearchEnd() {
    searchJob = 0;
    SetIdle();
    if (replaced) {
        std::copy(std::begin(pendingStart), std::end(pendingStart), std::begin(nextStart));
        return;
    }
    // Nothing new: the pictures shown stay, and the message says why.
    bool allFailed = failedSources == static_cast<int>(sources.size());
    Tell(allFailed ? COVER_NO_CONNECTION : COVER_NOTHING_FOUND, MB_OK);
    if (!everShown) {
        End(-1);
    }
}

void PWndGoogle::OnCoverReport(PCoverReport&& report) {
    coverJob = 0;
    SetIdle();
    if (!report.image.IsValid()) {
        Tell(COVER_CANNOT_DOWNLOAD, MB_ICONWARNING);
        return;
    }
    cover = std::move(report.image);
    bool saved = host != nullptr && host->SaveCover(cover);
    End(saved ? 0 : -1);
}

void PWndGoogle::UpdateScrollBar() {
    // Six stand in view; the bar shows only past twelve results.
    int m = GetResultCount() - COVER_PICTURES;
    if (m > COVER_PICTURES) {
        scrollBar.SetRange(0, m);
        scrollBar.SetSteps(1, COVER_PICTURES);
        scrollBar.Show(SW_SHOW);
    } else {
        scrollBar.SetRange(0, 0);
        scrollBar.SetValue(0);
        scrollBar.Show(SW_HIDE);
    }
}

void PWndGoogle::ShowResults() {
    int position = scrollBar.GetValue();
    for (int i = 0; i < COVER_PICTURES; ++i) {
        int k = position + i;
        if (k >= GetResultCount()) {
            pictures[i].SetImage(nullptr);
            pictures[i].Show(SW_HIDE);
            labels[i].Show(SW_HIDE);
            continue;
        }
        const PCoverFound& found = *results[k];
        pictures[i].SetImage(nullptr); // the same control may show another picture
        pictures[i].SetImage(&found.thumb);
        SString tip = found.candidate.label;
        if (found.candidate.source != COVER_SOURCE_SCRAPER || tip.IsEmpty()) {
            tip += tip.IsEmpty() ? "" : " ";
            tip += "(";
            tip += CoverSourceName(found.candidate.source);
            tip += ")";
        }
        pictures[i].SetToolTipText(tip.c_str());
        bool red = false;
        SString label = CoverResultLabel(found.candidate, &red);
        labels[i].SetTextColor(red ? RED : BLACK);
        labels[i].SetText(label.c_str());
        pictures[i].Show(SW_SHOW);
        labels[i].Show(SW_SHOW);
    }
}

void PWndGoogle::SetBusy(const char* text) {
    status.SetText(text);
    more.Enable(false);
    SetCursor(CURSOR_PROGRESS + 1);
}

void PWndGoogle::SetIdle() {
    SString text;
    if (GetResultCount() > 0) {
        text = SString::FromInt(GetResultCount());
        text += GetResultCount() == 1 ? " picture" : " pictures";
    }
    status.SetText(text.c_str());
    more.Enable(true);
    SetCursor(0);
}

void PWndGoogle::Tell(const char* text, unsigned flags) {
    if (host != nullptr) {
        host->ShowMessage(text, COVER_CAPTION, flags);
    }
}

void PWndGoogle::End(int result) {
    ending = true;
    if (IsModal()) {
        EndModal(result);
    } else {
        modalResult = result;
        if (GetHandle() != 0) {
            Show(SW_HIDE);
        }
    }
}

LRESULT PWndGoogle::OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case SN_MEDIA_BUTTON_CLICKED: {
        SNotification note(message, wParam, lParam);
        for (int i = 0; i < COVER_PICTURES; ++i) {
            if (note.From(&pictures[i])) {
                PickPicture(i);
                return 0;
            }
        }
        return 0;
    }
    case SN_BUTTON_CLICKED: {
        SNotification note(message, wParam, lParam);
        if (note.From(&more)) {
            FetchResultPage();
        } else if (note.From(&cancel)) {
            CancelWindow();
        }
        return 0;
    }
    case SN_SCROLL_CHANGED:
        ShowResults();
        return 0;
    case SN_COMBO_SELECT_CHANGE: {
        int index = sourceChoice.GetSelectedIndex();
        if (index >= 0 && index < static_cast<int>(choiceSources.size())) {
            SearchSources(choiceSources[index]);
        }
        return 0;
    }
    case SM_OK:
        return 0; // Enter picks nothing
    case SM_CANCEL:
        CancelWindow();
        return 0;
    case WM_CLOSE:
        CancelWindow();
        return 0;
    default:
        break;
    }
    return SWnd::OnMessage(message, wParam, lParam);
}
