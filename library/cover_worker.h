// PCoverWorker: the cover search on a thread of its own, for the cover
// search window. The window queues jobs (a search of some sources for a
// query, or the download of one full picture); the worker runs them one
// after another through a PCoverSearch and hands each report over whole by
// a posted message, so the window never reads what the worker still
// writes. A search reports each source as it answers, with the
// thumbnails already made at their final size, then its end.
//
// CancelJob ends the job at once for the window: its transfers are told to
// stop, and nothing more of it is reported, even what the worker had
// already finished. The thread itself ends at destruction.
#pragma once

#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "foundation/image.h"
#include "foundation/thread.h"
#include "library/cover_search.h"

// The side of a result's picture in the window, and of a saved cover.
constexpr int COVER_THUMB_SIDE = 75;

// The picture as the window keeps it: pixels that are not fully opaque
// made white, cropped to a square about the centre on its smaller side,
// and stretched to side by side. False for an empty picture.
bool MakeSquarePicture(const SImage& source, int side, SImage* out);

struct PCoverFound {
    PCoverCandidate candidate;
    SImage thumb; // COVER_THUMB_SIDE a side
};

enum PCoverReportKind {
    COVER_REPORT_SOURCE = 0, // one source of a search answered
    COVER_REPORT_END = 1,    // a search asked every source
    COVER_REPORT_IMAGE = 2,  // a full picture was downloaded, or not
};

struct PCoverReport {
    int job = 0;
    int kind = COVER_REPORT_SOURCE;
    // COVER_REPORT_SOURCE: the source, and the candidates its reply held
    // (0 for none) or COVER_FETCH_FAILED; found holds those whose
    // thumbnail could be had, in the reply's order.
    int source = -1;
    int status = 0;
    std::vector<PCoverFound> found;
    // COVER_REPORT_IMAGE: the cover, COVER_SIDE a side; empty when the
    // picture could not be had.
    SImage image;
};

class PCoverWorker : public SThread {
public:
    static constexpr unsigned POST_REPORT = 0x87DB;
    static constexpr unsigned POST_JOB = 0x87DC;

    // Called on the owner's thread with each report of a job not cancelled.
    using ReportHandler = std::function<void(PCoverReport&& report)>;

    PCoverWorker(const PCoverSearchSettings& settings, ReportHandler onReport);
    // Cancels the job running and waits for the worker's end.
    ~PCoverWorker() override;

    // Queue a job and give its number (from 1), 0 when the worker could not
    // start. Each source is asked from its own start (the scraper's result
    // offset; the others' offset into their results).
    int Search(const char* query, const std::vector<int>& sources, const std::vector<int>& starts);
    int FetchCover(const char* url);
    // Stops the job in hand; from the owner's thread.
    void CancelJob();
    // A job queued whose end has not been reported nor cancelled.
    bool IsBusy() const { return busyJob != 0; }

protected:
    bool Run() override;
    void OnPost(unsigned id, SValue* value) override;
    void OnPostToWorker(unsigned id, SValue* value) override;

private:
    struct Job {
        int number = 0;
        bool image = false;
        std::string text; // the query, or the picture's address
        std::vector<int> sources;
        std::vector<int> starts;
    };
    int Queue(Job&& job);
    void RunQueuedJobs();
    void RunJob(const Job& job);
    // On the worker: hands report to the owner; false when stopping.
    bool Report(PCoverReport&& report);
    bool JobCancelled(int number) const { return cancelledThrough.load() >= number; }

    PCoverSearch search;
    ReportHandler onReport;
    std::mutex mutex; // guards jobs and reports
    std::deque<Job> jobs;
    std::deque<PCoverReport> reports;
    std::atomic<int> cancelledThrough{0};
    // Owner's thread only.
    int lastJob = 0;
    int busyJob = 0;
};
