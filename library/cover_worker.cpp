#include "library/cover_worker.h"

#include <algorithm>
#include <chrono>
#include <thread>

#include "library/metadata.h"

bool MakeSquarePicture(const SImage& source, int side, SImage* out) {
    if (out == nullptr || !source.IsValid() || side < 1) {
        return false;
    }
    SImage picture;
    if (!picture.CopyFrom(&source)) {
        return false;
    }
    if (picture.HasAlpha()) {
        picture.FlattenAlpha();
    }
    int width = picture.GetWidth();
    int height = picture.GetHeight();
    int smaller = std::min(width, height);
    if ((width != smaller || height != smaller) &&
        !picture.Crop(&picture, (width - smaller) / 2, (height - smaller) / 2, smaller, smaller)) {
        return false;
    }
    // Resize refuses the size the picture already has.
    if (smaller != side && !picture.Resize(side, side)) {
        return false;
    }
    *out = std::move(picture);
    return true;
}

PCoverWorker::PCoverWorker(const PCoverSearchSettings& settings, ReportHandler onReport)
    : search(settings), onReport(std::move(onReport)) {
    SetName("cover search");
}

PCoverWorker::~PCoverWorker() {
    cancelledThrough.store(lastJob);
    search.Cancel();
    StopAndJoin();
}

int PCoverWorker::Search(const char* query, const std::vector<int>& sources,
                         const std::vector<int>& starts) {
    Job job;
    job.text = query != nullptr ? query : "";
    job.sources = sources;
    job.starts = starts;
    job.starts.resize(job.sources.size(), 0);
    return Queue(std::move(job));
}

int PCoverWorker::FetchCover(const char* url) {
    Job job;
    job.image = true;
    job.text = url != nullptr ? url : "";
    return Queue(std::move(job));
}

int PCoverWorker::Queue(Job&& job) {
    // The worker lives as long as this object, looping on its port.
    if (!HasThread() && !Start(false)) {
        return 0;
    }
    job.number = ++lastJob;
    {
        std::lock_guard<std::mutex> lock(mutex);
        jobs.push_back(std::move(job));
    }
    // Refused only before the worker's port exists, and the worker runs
    // the jobs queued by then as it starts (Run).
    SValue wake;
    wake.SetInt(0);
    PostToWorker(POST_JOB, &wake);
    busyJob = lastJob;
    return lastJob;
}

void PCoverWorker::CancelJob() {
    if (busyJob == 0) {
        return;
    }
    // In this order: a worker starting the job either sees the number, or
    // clears the flag before it is raised.
    cancelledThrough.store(busyJob);
    search.Cancel();
    busyJob = 0;
}

bool PCoverWorker::Run() {
    RunQueuedJobs();
    return true;
}

void PCoverWorker::OnPostToWorker(unsigned id, SValue* /*value*/) {
    if (id == POST_JOB) {
        RunQueuedJobs();
    }
}

void PCoverWorker::RunQueuedJobs() {
    for (;;) {
        Job job;
        {
            std::lock_guard<std::mutex> lock(mutex);
            if (jobs.empty()) {
                return;
            }
            job = std::move(jobs.front());
            jobs.pop_front();
        }
        if (IsStopRequested()) {
            return;
        }
        if (JobCancelled(job.number)) {
            continue;
        }
        search.Reset();
        if (JobCancelled(job.number)) {
            search.Cancel();
            continue;
        }
        RunJob(job);
    }
}

void PCoverWorker::RunJob(const Job& job) {
    if (job.image) {
        PCoverReport report;
        report.job = job.number;
        report.kind = COVER_REPORT_IMAGE;
        SImage full;
        if (search.FetchImage(job.text.c_str(), &full)) {
            MakeSquarePicture(full, COVER_SIDE, &report.image);
        }
        Report(std::move(report));
        return;
    }
    for (size_t i = 0; i < job.sources.size(); ++i) {
        if (JobCancelled(job.number) || IsStopRequested()) {
            return;
        }
        PCoverReport report;
        report.job = job.number;
        report.kind = COVER_REPORT_SOURCE;
        report.source = job.sources[i];
        std::vector<PCoverCandidate> candidates;
        report.status =
            search.Search(job.sources[i], job.text.c_str(), job.starts[i], &candidates);
        for (PCoverCandidate& candidate : candidates) {
            if (JobCancelled(job.number) || IsStopRequested()) {
                return;
            }
            SImage picture;
            PCoverFound found;
            // A result without a picture that can be had is left out.
            if (candidate.thumbUrl.IsEmpty() ||
                !search.FetchImage(candidate.thumbUrl.c_str(), &picture) ||
                !MakeSquarePicture(picture, COVER_THUMB_SIDE, &found.thumb)) {
                continue;
            }
            found.candidate = std::move(candidate);
            report.found.push_back(std::move(found));
        }
        if (!Report(std::move(report))) {
            return;
        }
    }
    PCoverReport end;
    end.job = job.number;
    end.kind = COVER_REPORT_END;
    Report(std::move(end));
}

bool PCoverWorker::Report(PCoverReport&& report) {
    if (JobCancelled(report.job)) {
        return false;
    }
    {
        std::lock_guard<std::mutex> lock(mutex);
        reports.push_back(std::move(report));
    }
    // One post takes every report queued before it; when every slot is in
    // flight, a slot frees as soon as the owner has taken its reports.
    while (!Post(POST_REPORT, 0u)) {
        if (IsStopRequested()) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}

void PCoverWorker::OnPost(unsigned id, SValue* /*value*/) {
    if (id != POST_REPORT) {
        return;
    }
    for (;;) {
        PCoverReport report;
        {
            std::lock_guard<std::mutex> lock(mutex);
            if (reports.empty()) {
                return;
            }
            report = std::move(reports.front());
            reports.pop_front();
        }
        if (JobCancelled(report.job)) {
            continue; // the window has moved on
        }
        if (report.kind != COVER_REPORT_SOURCE && report.job == busyJob) {
            busyJob = 0;
        }
        if (onReport) {
            onReport(std::move(report));
        }
    }
}
