#include "pages/book.h"

#include <algorithm>
#include <cerrno>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>
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
    const char* prefix = ""; // of the picture names
};

bool WriteWholeFile(const SString& path, const void* data, int size) {
    SFilePath file;
    if (!file.Open(path.c_str(), true, true, false, false)) {
        return false;
    }
    bool isWritten = file.Write(data, size) == size;
    isWritten = file.Flush() && isWritten;
    file.Close();
    return isWritten;
}

// Makes the pictures of the folders on a few threads while the page is
// written; each thread keeps one banner painter. With one thread the
// pictures are made on the caller's thread as they come.
class ImageWorkers {
public:
    // Pictures go to folder, named prefix + "book<k>.jpg" and ".png".
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
    // The first picture that could not be written, with the system's
    // reason; empty when every write went through.
    SString GetWriteFailure() {
        std::lock_guard<std::mutex> lock(mutex);
        return writeFailure;
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

    void Make(const ImageJob& job, PBannerPainter& bannerPainter) {
        SString base = folder + job.prefix + "book" + SString::FromInt(job.k);
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
        const SFileMem& cover = hasCover ? jpeg : defaultJpeg;
        if (cover.GetSize() > 0) {
            Write(base + ".jpg", cover);
        }
        SImage banner;
        SFileMem png;
        if (bannerPainter.Draw(job.name, LevelOf(job.level).fill, banner) &&
            banner.Save(&png, IMAGE_PNG)) {
            Write(base + ".png", png);
        }
    }

    void Write(const SString& path, const SFileMem& data) {
        errno = 0;
        if (WriteWholeFile(path, data.GetData(), data.GetSize())) {
            return;
        }
        int error = errno;
        std::lock_guard<std::mutex> lock(mutex);
        if (writeFailure.IsEmpty()) {
            writeFailure = SString("cannot write ") + path;
            if (error != 0) {
                writeFailure += SString(": ") + strerror(error);
            }
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
    SString writeFailure;
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
        flushed += buffer.size();
        buffer.clear();
        return isWritten;
    }
    // How many bytes the page holds so far.
    size_t Position() const { return flushed + buffer.size(); }

private:
    SFile& file;
    std::string buffer;
    size_t flushed = 0;
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

namespace {

// Pictures of a Book being made are written under a staging prefix
// ("~a" or "~b" before "book<k>"), and "~t" marks a picture on its way to
// its final name; see BuildBook.
constexpr const char* STAGING_PREFIXES[] = {"~a", "~b"};
constexpr const char* PROMOTING_PREFIX = "~t";

// Whether name is prefix + "book" + digits + ".jpg" or ".png"; k receives
// the number.
bool IsPictureName(const char* name, const char* prefix, long& k) {
    size_t prefixLength = strlen(prefix);
    if (strncmp(name, prefix, prefixLength) != 0 || strncmp(name + prefixLength, "book", 4) != 0) {
        return false;
    }
    const char* digits = name + prefixLength + 4;
    const char* end = digits;
    while (*end >= '0' && *end <= '9') {
        ++end;
    }
    if (end == digits || end - digits > 9 || (strcmp(end, ".jpg") != 0 && strcmp(end, ".png") != 0)) {
        return false;
    }
    k = strtol(digits, nullptr, 10);
    return true;
}

// Deletes the pictures of folder named prefix + "book<k>" with k from
// fromK on; nothing else of the folder is touched.
void RemovePictures(const SString& folder, const char* prefix, long fromK) {
    DIR* dir = opendir(folder.c_str());
    if (dir == nullptr) {
        return;
    }
    std::vector<std::string> doomed;
    while (struct dirent* item = readdir(dir)) {
        long k;
        if (IsPictureName(item->d_name, prefix, k) && k >= fromK) {
            doomed.push_back(item->d_name);
        }
    }
    int fd = dirfd(dir);
    for (const std::string& name : doomed) {
        unlinkat(fd, name.c_str(), 0);
    }
    closedir(dir);
}

// The prefix of the pictures that the Book at bookPath shows now: "" for
// the final names, or a staging prefix when a run was cut short after
// putting in its page. Read from the first picture of the page.
std::string CurrentPicturePrefix(const SString& bookPath, const std::string& stem) {
    SFilePath file;
    if (!file.Open(bookPath.c_str(), false, false, true, false)) {
        return "";
    }
    std::string head(1 << 20, '\0');
    int got = file.Read(head.data(), static_cast<int>(head.size()));
    head.resize(static_cast<size_t>(std::max(got, 0)));
    std::string mark = "<img src=\"" + stem + "\\";
    size_t at = head.find(mark);
    if (at == std::string::npos) {
        return "";
    }
    std::string rest = head.substr(at + mark.size(), 2);
    for (const char* prefix : STAGING_PREFIXES) {
        if (rest == prefix) {
            return prefix;
        }
    }
    return "";
}

// Gives the staged picture of folder its final name, keeping the staged
// one (the page in place still shows it): a hard link renamed over the
// final name, or a copy where the file system has no hard links.
bool PromotePicture(const SString& folder, const std::string& staged, const std::string& final) {
    std::string from = std::string(folder.c_str()) + staged;
    std::string via = std::string(folder.c_str()) + PROMOTING_PREFIX + final;
    std::string to = std::string(folder.c_str()) + final;
    unlink(via.c_str());
    if (link(from.c_str(), via.c_str()) != 0) {
        SFilePath source;
        if (!source.Open(from.c_str(), false, false, true, false)) {
            return false;
        }
        int size = source.GetSize();
        std::string bytes(static_cast<size_t>(std::max(size, 0)), '\0');
        bool isRead = source.Read(bytes.data(), size) == size;
        source.Close();
        if (!isRead || !WriteWholeFile(SString(via.c_str()), bytes.data(), size)) {
            unlink(via.c_str());
            return false;
        }
    }
    if (rename(via.c_str(), to.c_str()) != 0) {
        unlink(via.c_str());
        return false;
    }
    return true;
}

} // namespace

bool PBook::Fail(const SString& reason) {
    failure = reason;
    return false;
}

// The Book and its pictures are replaced so that a kill or a full disk at
// any moment leaves the old Book whole or the new one whole: every picture
// the page in place names exists, whole.
//
// 1. Leftovers of a killed run go: temporary files, and staged pictures
//    that the page in place does not show.
// 2. The new pictures are written under a staging prefix the page in place
//    does not use, and the new page, naming them, to a temporary file. A
//    picture or the page that cannot be written ends the run here: the
//    staged pictures go and the old Book stays.
// 3. That page is put in place: the new Book is whole, under staged names.
// 4. Each staged picture gets its final name ("book<k>"), as a hard link
//    renamed over the old picture, and the page with the final names is
//    put in place.
// 5. The staged pictures and the old pictures past the new count go.
bool PBook::BuildBook(const char* bookPath, bool makeImages) {
    EnsurePagesResources();
    failure.Empty();
    SDisk disk;
    SPath book;
    if (root.IsEmpty() || bookPath == nullptr || !book.Set(bookPath) || !book.HasName()) {
        return Fail("no Book path");
    }
    SString stem = book.GetTitle();
    SString bookFolder = book.GetFolderPath();
    SString imageFolder = bookFolder + stem + "/";
    SString finalPath = book.GetFullPath();
    ProgressReporter reporter(progress);
    if (!disk.IsFolder(bookFolder.c_str())) {
        return Fail(SString("no folder ") + bookFolder);
    }
    // Nothing is written outside the folder that holds the Book.
    if (!IsInsideFolder(bookFolder.c_str(), finalPath.c_str()) ||
        (makeImages && !IsInsideFolder(bookFolder.c_str(), imageFolder.c_str()))) {
        return Fail(SString("the Book or its pictures lead outside ") + bookFolder);
    }
    RemoveLeftoverTempFiles(bookFolder.c_str());

    const std::string stemText = Text(stem);
    const char* staging = "";
    if (makeImages) {
        if (!disk.CreateFolder(imageFolder.c_str(), true) && !disk.IsFolder(imageFolder.c_str())) {
            return Fail(SString("cannot make the picture folder ") + imageFolder);
        }
        int attributes = disk.GetAttributes(imageFolder.c_str());
        if (attributes >= 0 && (attributes & DISK_HIDDEN) == 0) {
            disk.SetAttributes(imageFolder.c_str(), attributes | DISK_HIDDEN);
        }
        RemoveLeftoverTempFiles(imageFolder.c_str());
        std::string current = CurrentPicturePrefix(finalPath, stemText);
        for (const char* prefix : STAGING_PREFIXES) {
            if (current != prefix) {
                RemovePictures(imageFolder, prefix, 0);
            }
        }
        RemovePictures(imageFolder, PROMOTING_PREFIX, 0);
        staging = current == STAGING_PREFIXES[0] ? STAGING_PREFIXES[1] : STAGING_PREFIXES[0];
    }
    const std::string stagingText = staging;

    int rootCount = SPath(root.c_str()).GetDepth();
    SStringArray folders;
    disk.Enumerate(&folders, (root + "*.*").c_str(), ENUM_RECURSIVE | ENUM_FOLDERS | ENUM_NO_HIDDEN);
    int count = folders.GetCount();

    SFilePath file;
    errno = 0;
    if (!file.OpenReplace(finalPath.c_str())) {
        return Fail(SString("cannot write ") + finalPath + (errno != 0 ? SString(": ") + strerror(errno) : SString("")));
    }
    SFileMem style;
    style.LoadResource("BINARY", RESOURCE_BOOK_STYLE);
    PageWriter page(file);
    // Where each staging prefix stands in the page, to write it again
    // with the final names.
    std::vector<size_t> stagedAt;
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
            job.prefix = staging;
            workers->Push(std::move(job));
        }

        std::string cell = colours.cell;
        std::string relative = Text(folder.Mid(root.GetLength(), folder.GetLength() - root.GetLength() - 1));
        page.Line("<table border=0 cellspacing=0 cellpadding=0 width=100%>");
        page.Line("<tr>");
        std::string coverStart = "<td width=32 bgcolor=#" + cell + "><img src=\"" + stemText + "\\";
        stagedAt.push_back(page.Position() + coverStart.size());
        page.Line(coverStart + stagingText + "book" + kText + ".jpg\" align=absmiddle>");
        std::string title = media.GetCount() > 0
                                ? "<a href=\"" + relative + ".album\" class=" + colours.className +
                                      ">" + Text(name) + "</a>"
                                : std::string("<font class=") + colours.className + ">" +
                                      Text(name) + "</font>";
        page.Line("<td valign=center bgcolor=#" + cell + ">" + title);
        page.Line("</tr>");
        page.Line("<tr>");
        std::string bannerStart = "<td bgcolor=#" + cell + " background=\"" + stemText + "\\";
        stagedAt.push_back(page.Position() + bannerStart.size());
        page.Line(bannerStart + stagingText + "book" + kText + ".png\" class=tdRow>");
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
    errno = 0;
    bool isWritten = page.Flush() && file.Flush();
    int pageError = errno;
    SString pictureFailure;
    if (workers) {
        workers->Finish([&](int done) { reporter.Report(done, count); });
        pictureFailure = workers->GetWriteFailure();
    }
    if (!isWritten || !pictureFailure.IsEmpty()) {
        file.Close();
        if (makeImages) {
            RemovePictures(imageFolder, staging, 0);
        }
        if (!isWritten) {
            return Fail(SString("cannot write ") + finalPath +
                        (pageError != 0 ? SString(": ") + strerror(pageError) : SString("")));
        }
        return Fail(pictureFailure);
    }
    if (!makeImages) {
        reporter.Report(count, count);
        errno = 0;
        return file.Commit() ? true
                             : Fail(SString("cannot write ") + finalPath +
                                    (errno != 0 ? SString(": ") + strerror(errno) : SString("")));
    }

    // The same page with the final names, copied from the staged one with
    // each staging prefix left out.
    SFilePath finalPage;
    bool isCopied = finalPage.OpenReplace(finalPath.c_str()) && file.Seek(0) == 0;
    std::string block(1 << 16, '\0');
    std::string out;
    size_t position = 0;
    size_t next = 0; // into stagedAt
    const size_t skip = stagingText.size();
    int got;
    while (isCopied && (got = file.Read(block.data(), static_cast<int>(block.size()))) > 0) {
        size_t end = position + static_cast<size_t>(got);
        size_t from = position;
        out.clear();
        while (from < end) {
            if (next < stagedAt.size() && from >= stagedAt[next] + skip) {
                ++next;
            } else if (next < stagedAt.size() && from >= stagedAt[next]) {
                from = std::min(end, stagedAt[next] + skip);
            } else {
                size_t stop = next < stagedAt.size() ? std::min(stagedAt[next], end) : end;
                out.append(block.data() + (from - position), stop - from);
                from = stop;
            }
        }
        isCopied = finalPage.Write(out.data(), static_cast<int>(out.size())) ==
                   static_cast<int>(out.size());
        position = end;
    }
    errno = 0;
    isCopied = isCopied && finalPage.Flush();
    int copyError = errno;
    if (!isCopied) {
        finalPage.Close();
        file.Close();
        RemovePictures(imageFolder, staging, 0);
        return Fail(SString("cannot write ") + finalPath +
                    (copyError != 0 ? SString(": ") + strerror(copyError) : SString("")));
    }
    // The new Book, under the staged names, takes the old one's place.
    errno = 0;
    if (!file.Commit()) {
        int error = errno;
        finalPage.Close();
        RemovePictures(imageFolder, staging, 0);
        return Fail(SString("cannot write ") + finalPath +
                    (error != 0 ? SString(": ") + strerror(error) : SString("")));
    }
    // Every picture to its final name; a picture that could not be made
    // leaves no old one standing in for it.
    for (int k = 0; k < count; ++k) {
        for (const char* extension : {".jpg", ".png"}) {
            std::string final = "book" + std::to_string(k) + extension;
            std::string staged = stagingText + final;
            struct stat status;
            bool isStaged = stat((std::string(imageFolder.c_str()) + staged).c_str(), &status) == 0;
            if (!isStaged) {
                unlink((std::string(imageFolder.c_str()) + final).c_str());
            } else if (!PromotePicture(imageFolder, staged, final)) {
                finalPage.Close();
                return Fail(SString("cannot name the picture ") + imageFolder + final.c_str());
            }
        }
    }
    errno = 0;
    if (!finalPage.Commit()) {
        int error = errno;
        return Fail(SString("cannot write ") + finalPath +
                    (error != 0 ? SString(": ") + strerror(error) : SString("")));
    }
    for (const char* prefix : STAGING_PREFIXES) {
        RemovePictures(imageFolder, prefix, 0);
    }
    RemovePictures(imageFolder, "", count);
    reporter.Report(count, count);
    return true;
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
