#include "pages/book.h"

#include <algorithm>
#include <condition_variable>
#include <cstdio>
#include <deque>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "foundation/disk.h"
#include "foundation/file.h"
#include "foundation/path.h"
#include "foundation/timer.h"
#include "library/media.h"
#include "library/metadata.h"
#include "pages/book_images.h"
#include "pages/description.h"
#include "pages/resources.h"

namespace {

// Colours and classes by level; level 3 serves every deeper one. The
// banner's fill is a shade lighter than the cell around it.
struct Level {
    uint32_t fill; // 0xRRGGBB
    const char* cell;
    const char* className;
};
constexpr Level LEVELS[] = {
    {0xB2D5DE, "AAD0DA", "txtRow1"},
    {0xDFD5B1, "dbd0a9", "txtRow2"},
    {0xB5E2AE, "addfa6", "txtRow3"},
    {0xC8C8C8, "c2c2c2", "txtRow4"},
};

const Level& LevelOf(int level) {
    return LEVELS[std::clamp(level, 0, 3)];
}

// The pictures of one folder.
struct ImageJob {
    int k = 0;
    int level = 0;
    SString name;
    SString folder;
};

bool WriteWholeFile(const SString& path, const void* data, int size) {
    SFilePath file;
    if (!file.Open(path.c_str(), true, true, false, false)) {
        return false;
    }
    bool isWritten = file.Write(data, size) == size;
    file.Close();
    return isWritten;
}

// Makes the pictures of the folders on a few threads while the page is
// written; each thread keeps one banner painter. With one thread the
// pictures are made on the caller's thread as they come.
class ImageWorkers {
public:
    ImageWorkers(const SString& folder, const PCovers& covers, const SFileMem& defaultJpeg,
                 int count)
        : folder(folder), covers(covers), defaultJpeg(defaultJpeg) {
        for (int i = 0; count > 1 && i < count; ++i) {
            threads.emplace_back([this] { Serve(); });
        }
        if (threads.empty()) {
            painter = std::make_unique<PBannerPainter>();
        }
    }
    ~ImageWorkers() { Finish(nullptr); }

    void Push(ImageJob&& job) {
        if (threads.empty()) {
            Make(job, *painter);
            std::lock_guard<std::mutex> lock(mutex);
            ++done;
            return;
        }
        std::lock_guard<std::mutex> lock(mutex);
        jobs.push_back(std::move(job));
        wake.notify_one();
    }
    int GetDone() {
        std::lock_guard<std::mutex> lock(mutex);
        return done;
    }
    // Waits for every job; onDone hears the count of finished jobs as it
    // grows.
    void Finish(const std::function<void(int)>& onDone) {
        std::unique_lock<std::mutex> lock(mutex);
        isClosing = true;
        wake.notify_all();
        while (!jobs.empty() || busy > 0) {
            int count = done;
            lock.unlock();
            if (onDone) {
                onDone(count);
            }
            lock.lock();
            if (!jobs.empty() || busy > 0) {
                finished.wait(lock);
            }
        }
        int count = done;
        lock.unlock();
        for (std::thread& thread : threads) {
            thread.join();
        }
        threads.clear();
        if (onDone) {
            onDone(count);
        }
    }

private:
    void Serve() {
        PBannerPainter ownPainter;
        std::unique_lock<std::mutex> lock(mutex);
        for (;;) {
            wake.wait(lock, [this] { return isClosing || !jobs.empty(); });
            if (jobs.empty()) {
                return;
            }
            ImageJob job = std::move(jobs.front());
            jobs.pop_front();
            ++busy;
            lock.unlock();
            Make(job, ownPainter);
            lock.lock();
            --busy;
            ++done;
            finished.notify_all();
        }
    }

    void Make(const ImageJob& job, PBannerPainter& bannerPainter) const {
        SString base = folder + "book" + SString::FromInt(job.k);
        // The cover is looked for here too, off the thread that writes the
        // page. A cover file that does not decode passes to the next place
        // of the cover order; with none left the default picture stands.
        SFileMem jpeg;
        bool hasCover = false;
        for (const SString& cover : covers.FindCoverFiles(job.folder.c_str())) {
            if (MakeCoverThumbnail(cover.c_str(), jpeg)) {
                hasCover = true;
                break;
            }
        }
        if (hasCover) {
            WriteWholeFile(base + ".jpg", jpeg.GetData(), jpeg.GetSize());
        } else if (defaultJpeg.GetSize() > 0) {
            WriteWholeFile(base + ".jpg", defaultJpeg.GetData(), defaultJpeg.GetSize());
        }
        SImage banner;
        SFileMem png;
        if (bannerPainter.Draw(job.name, LevelOf(job.level).fill, banner) &&
            banner.Save(&png, IMAGE_PNG)) {
            WriteWholeFile(base + ".png", png.GetData(), png.GetSize());
        }
    }

    SString folder;
    const PCovers& covers; // read only, shared by the threads
    const SFileMem& defaultJpeg;
    std::unique_ptr<PBannerPainter> painter; // the one-thread case
    std::vector<std::thread> threads;
    std::mutex mutex; // guards jobs, done, busy, isClosing
    std::condition_variable wake;
    std::condition_variable finished;
    std::deque<ImageJob> jobs;
    int done = 0;
    int busy = 0;
    bool isClosing = false;
};

// Reports progress only when the value changes.
class ProgressReporter {
public:
    explicit ProgressReporter(const PBookProgress& callback) : callback(callback) {}
    void Report(long long index, long long count) {
        int value = count > 0 ? static_cast<int>(index * 1000 / count) : 0;
        if (callback && value != last) {
            last = value;
            callback(value);
        }
    }

private:
    const PBookProgress& callback;
    int last = -1;
};

// The thumbnail of a folder without a cover.
void MakeDefaultThumbnail(const SImage& given, SFileMem& jpeg) {
    if (given.IsValid() && MakeCoverThumbnail(given, jpeg)) {
        return;
    }
    SImage cover;
    if (cover.LoadResource("BINARY", 130) && MakeCoverThumbnail(cover, jpeg)) {
        return;
    }
    // A plain grey tile with a darker frame.
    cover.Create(BOOK_COVER_SIDE, BOOK_COVER_SIDE, PIXEL_FORMAT_24RGB);
    cover.Fill(0xFF909090);
    SRect inner{2, 2, BOOK_COVER_SIDE - 2, BOOK_COVER_SIDE - 2};
    cover.Fill(0xFFD8D8D8, &inner);
    MakeCoverThumbnail(cover, jpeg);
}

// Output gathered in memory and written in large blocks.
class PageWriter {
public:
    explicit PageWriter(SFile& file) : file(file) {}
    void Line(const std::string& text) {
        buffer += text;
        buffer += "\r\n";
        if (buffer.size() > (1u << 18)) {
            Flush();
        }
    }
    void Raw(const char* data, int size) { buffer.append(data, static_cast<size_t>(size)); }
    bool Flush() {
        int size = static_cast<int>(buffer.size());
        isWritten = isWritten && file.Write(buffer.data(), size) == size;
        buffer.clear();
        return isWritten;
    }

private:
    SFile& file;
    std::string buffer;
    bool isWritten = true;
};

std::string Text(const SString& text) {
    return std::string(text.c_str(), static_cast<size_t>(text.GetLength()));
}

} // namespace

void PBook::SetRoot(const char* folder) {
    SPath path;
    root = path.SetFolder(folder != nullptr ? folder : "") ? path.GetFullPath() : SString("");
    covers.SetRoot(root.c_str());
}

void PBook::SetImageNames(const char* setting) {
    covers.SetSharedNames(setting != nullptr ? setting : "");
}

SString PBook::GetDefaultBookPath() const {
    return root.IsEmpty() ? SString("") : root + "Book.htm";
}

bool PBook::BuildBook(const char* bookPath, bool makeImages) {
    EnsurePagesResources();
    SDisk disk;
    SPath book;
    if (root.IsEmpty() || bookPath == nullptr || !book.Set(bookPath) || !book.HasName()) {
        return false;
    }
    SString stem = book.GetTitle();
    SString imageFolder = book.GetFolderPath() + stem + "/";
    ProgressReporter reporter(progress);

    if (makeImages) {
        if (!disk.CreateFolder(imageFolder.c_str(), true) && !disk.IsFolder(imageFolder.c_str())) {
            return false;
        }
        int attributes = disk.GetAttributes(imageFolder.c_str());
        if (attributes >= 0 && (attributes & DISK_HIDDEN) == 0) {
            disk.SetAttributes(imageFolder.c_str(), attributes | DISK_HIDDEN);
        }
        SStringArray old;
        disk.Enumerate(&old, (imageFolder + "book*.png").c_str(), ENUM_FILES);
        disk.Enumerate(&old, (imageFolder + "book*.jpg").c_str(), ENUM_FILES);
        for (int i = 0; i < old.GetCount(); ++i) {
            reporter.Report(i, old.GetCount());
            std::remove(old.GetAt(i)->c_str());
        }
    }

    int rootCount = SPath(root.c_str()).GetDepth();
    SStringArray folders;
    disk.Enumerate(&folders, (root + "*.*").c_str(), ENUM_RECURSIVE | ENUM_FOLDERS | ENUM_NO_HIDDEN);
    int count = folders.GetCount();

    SFilePath file;
    if (!file.OpenReplace(bookPath)) {
        return false;
    }
    SFileMem style;
    style.LoadResource("BINARY", RESOURCE_BOOK_STYLE);
    PageWriter page(file);
    page.Line("<html>");
    page.Line("<head>");
    page.Line("<title>Mel Kora</title>");
    if (style.GetSize() > 0) {
        page.Raw(style.GetData(), style.GetSize());
    }
    page.Line("</head>");
    page.Line("<body leftmargin=0 topmargin=0 rightmargin=0 bottommargin=0 marginwidth=0 "
              "marginheight=0>");

    SFileMem defaultJpeg;
    if (makeImages) {
        MakeDefaultThumbnail(defaultCover, defaultJpeg);
    }
    int threadCount = threads > 0 ? threads : static_cast<int>(std::thread::hardware_concurrency());
    std::unique_ptr<ImageWorkers> workers;
    if (makeImages) {
        workers = std::make_unique<ImageWorkers>(imageFolder, covers, defaultJpeg,
                                                 std::max(threadCount, 1));
    }

    const std::string stemText = Text(stem);
    int prevDepth = rootCount;
    for (int i = 0; i < count; ++i) {
        reporter.Report(workers ? std::min(i, workers->GetDone()) : i, count);
        SString folder = folders.GetText(i);
        SPath path(folder.c_str());
        SString name = path.GetLastFolder(true);
        int depth = path.GetDepth();
        int level = depth - rootCount - 1;
        if (level < 0) {
            continue;
        }
        // Songs, videos and radios of the folder itself, sorted.
        SStringArray media;
        CollectMedia(media, folder.c_str(), false, true, true, false, false, false);

        for (int close = prevDepth - depth + 1; close > 0; --close) {
            page.Line("</tr>");
            page.Line("</table>");
        }
        const Level& colours = LevelOf(level);
        int k = i;
        std::string kText = std::to_string(k);
        if (makeImages) {
            ImageJob job;
            job.k = k;
            job.level = level;
            job.name = name;
            job.folder = folder;
            workers->Push(std::move(job));
        }

        std::string cell = colours.cell;
        std::string relative = Text(folder.Mid(root.GetLength(), folder.GetLength() - root.GetLength() - 1));
        page.Line("<table border=0 cellspacing=0 cellpadding=0 width=100%>");
        page.Line("<tr>");
        page.Line("<td width=32 bgcolor=#" + cell + "><img src=\"" + stemText + "\\book" + kText +
                  ".jpg\" align=absmiddle>");
        std::string title = media.GetCount() > 0
                                ? "<a href=\"" + relative + ".album\" class=" + colours.className +
                                      ">" + Text(name) + "</a>"
                                : std::string("<font class=") + colours.className + ">" +
                                      Text(name) + "</font>";
        page.Line("<td valign=center bgcolor=#" + cell + ">" + title);
        page.Line("</tr>");
        page.Line("<tr>");
        page.Line("<td bgcolor=#" + cell + " background=\"" + stemText + "\\book" + kText +
                  ".png\" class=tdRow>");
        page.Line("<td>");
        if (media.GetCount() > 0) {
            page.Line("<font class=txtSong>");
            std::string songs;
            for (int m = 0; m < media.GetCount(); ++m) {
                const SString& song = *media.GetAt(m);
                SPath songPath(song.c_str());
                std::string songTitle = Text(songPath.GetTitle());
                if (GetMediaClass(song.c_str()) == MEDIA_VIDEO) {
                    songTitle = "<i>" + songTitle + "</i>";
                }
                if (m > 0) {
                    songs += std::string(" ") + DESCRIPTION_BULLET + " ";
                }
                songs += "<a href=\"" + Text(song.Mid(root.GetLength())) + "\">" + songTitle + "</a>";
            }
            page.Line(songs);
            page.Line("</font>");
        }
        prevDepth = depth;
    }
    // Tables still open stay open.
    page.Line("</body>");
    page.Line("</html>");
    bool isWritten = page.Flush();
    if (workers) {
        workers->Finish([&](int done) { reporter.Report(done, count); });
    }
    reporter.Report(count, count);
    return isWritten && file.Commit();
}

bool PBook::WriteBookZip(const char* bookPath, const char* archive) {
    SDisk disk;
    SPath book;
    if (root.IsEmpty() || bookPath == nullptr || archive == nullptr || !book.Set(bookPath) ||
        !disk.IsFile(bookPath)) {
        return false;
    }
    SStringArray files;
    files.Add(book.GetFullPath());
    disk.Enumerate(&files, (book.GetFolderPath() + book.GetTitle() + "/*.*").c_str(), ENUM_FILES);
    return disk.WriteZip(archive, &files, SPath(root.c_str()).GetDepth() - 1);
}

SString PBook::GetBookZipTitle(const STimer& date) {
    return date.Format("book #M-#D-#Y");
}

SString PBook::MakeBookZipPath(const STimer& date) {
    SDisk disk;
    return disk.MakeUniqueName(disk.GetTempFolder().c_str(), GetBookZipTitle(date).c_str(), "zip");
}
