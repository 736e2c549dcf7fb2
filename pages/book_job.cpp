#include "pages/book_job.h"

#include "pages/resources.h"

bool PBookJob::StartBuild(const char* bookPath, bool makeImages, ProgressHandler onProgress) {
    if (bookPath == nullptr || HasThread() || IsActive()) {
        return false;
    }
    // The resources are registered here, on the owner's thread, before the
    // worker looks any up.
    EnsurePagesResources();
    path = bookPath;
    images = makeImages;
    handler = std::move(onProgress);
    progress.store(0);
    notePending.store(false);
    done.store(false);
    result = false;
    book.progress = [this](int thousandths) {
        progress.store(thousandths);
        // One note in flight at a time: the owner reads the newest value.
        if (!notePending.exchange(true) && !Post(POST_PROGRESS, 0u)) {
            notePending.store(false);
        }
    };
    return Start(false);
}

bool PBookJob::Run() {
    result = book.BuildBook(path.c_str(), images);
    done.store(true);
    return false;
}

void PBookJob::OnPost(unsigned id, SValue* /*value*/) {
    if (id != POST_PROGRESS) {
        return;
    }
    notePending.store(false);
    if (handler) {
        handler(progress.load());
    }
}

bool PBookJob::Finish() {
    if (!done.load()) {
        return false;
    }
    StopAndJoin();
    book.progress = nullptr;
    handler = nullptr;
    return result;
}
