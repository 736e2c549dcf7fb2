#include "app/cli/cli_pages.h"

#include <cstring>
#include <string>
#include <unistd.h>

#include "foundation/file.h"
#include "foundation/path.h"
#include "foundation/disk.h"
#include "pages/book.h"
#include "pages/description.h"
#include "pages/description_page.h"

namespace {

// A bar with a percentage on stderr, drawn only when stderr is a terminal
// and only when the value changes.
class ProgressBar {
public:
    ProgressBar() : isShown(isatty(STDERR_FILENO) != 0) {}
    ~ProgressBar() { Done(); }
    // value out of total.
    void Show(long long value, long long total) {
        int percent = total > 0 ? static_cast<int>(value * 100 / total) : 0;
        if (!isShown || percent == last) {
            return;
        }
        last = percent;
        const int width = 40;
        int filled = percent * width / 100;
        std::string bar = "\r[" + std::string(static_cast<size_t>(filled), '#') +
                          std::string(static_cast<size_t>(width - filled), '.') + "] ";
        fprintf(stderr, "%s%3d%%", bar.c_str(), percent);
        fflush(stderr);
    }
    void Done() {
        if (isShown && last >= 0) {
            fputc('\n', stderr);
        }
        last = -1;
        isShown = false;
    }

private:
    bool isShown;
    int last = -1;
};

int Fail(const char* reason, const char* detail = "") {
    fprintf(stderr, "melkora-cli: %s%s\n", reason, detail);
    return 1;
}

int Usage(const PCliJob& job) {
    fputs(job.usage, stderr);
    return 2;
}

int Help(const PCliJob& job) {
    fputs(job.usage, stdout);
    return 0;
}

bool IsHelp(int argc, char** argv) {
    for (int i = 0; i < argc; ++i) {
        if (strcmp(argv[i], "--help") == 0 || strcmp(argv[i], "-h") == 0) {
            return true;
        }
    }
    return false;
}

// The root as given, checked to be a folder, with its trailing "/".
bool ReadRoot(const char* text, SString& root) {
    SPath path;
    SDisk disk;
    if (text == nullptr || !path.SetFolder(text) || !disk.IsFolder(path.GetFullPath().c_str())) {
        fprintf(stderr, "melkora-cli: not a folder: %s\n", text != nullptr ? text : "");
        return false;
    }
    root = path.GetFullPath();
    return true;
}

// Takes "--images VALUE" out of the arguments, which every job accepts;
// setting, when given, receives the value (the last one given). False when
// the value is missing.
bool TakeImages(int& argc, char** argv, const char** setting) {
    int kept = 0;
    for (int i = 0; i < argc; ++i) {
        if (strcmp(argv[i], "--images") == 0) {
            if (i + 1 >= argc) {
                return false;
            }
            if (setting != nullptr) {
                *setting = argv[i + 1];
            }
            ++i;
            continue;
        }
        argv[kept++] = argv[i];
    }
    argc = kept;
    return true;
}

const PCliJob& JobNamed(const char* name);

// What every job does first: "--help", then "--images" (its value into
// images when given), then, for a job of fixed arguments (count 0 or more),
// the count and the root folder in the first of them. CONTINUE when the job
// goes on, else the exit code.
constexpr int CONTINUE = -1;
int StartJob(const char* name, int& argc, char** argv, int count, SString* root,
             const char** images = nullptr) {
    const PCliJob& job = JobNamed(name);
    if (IsHelp(argc, argv)) {
        return Help(job);
    }
    if (!TakeImages(argc, argv, images) || (count >= 0 && argc != count)) {
        return Usage(job);
    }
    if (count > 0 && root != nullptr && !ReadRoot(argv[0], *root)) {
        return 1;
    }
    return CONTINUE;
}

int RunPages(int argc, char** argv) {
    SString root;
    if (int code = StartJob("pages", argc, argv, 1, &root); code != CONTINUE) {
        return code;
    }
    PKnownFolders known;
    known.Load(root.c_str());
    ProgressBar bar;
    PPagesResult result;
    bool isBuilt = BuildAllDescriptionPages(
        root.c_str(), known, [&bar](const SString&, int percent) { bar.Show(percent, 100); },
        &result);
    bar.Done();
    if (!isBuilt) {
        return Fail(result.firstFailure.c_str());
    }
    if (result.failed > 0) {
        SString text;
        text.Format("%d file%s not written; the first: ", result.failed,
                    result.failed == 1 ? "" : "s");
        return Fail(text.c_str(), result.firstFailure.c_str());
    }
    return 0;
}

int RunPage(int argc, char** argv) {
    SString root;
    if (int code = StartJob("page", argc, argv, 2, &root); code != CONTINUE) {
        return code;
    }
    SString relative(argv[1]);
    while (relative.GetLength() > 0 && relative.GetAt(relative.GetLength() - 1) == '/') {
        relative.SetLength(relative.GetLength() - 1);
    }
    while (relative.GetLength() > 0 && relative.GetAt(0) == '/') {
        relative.Delete(0, 1);
    }
    if (HasDotDotPart(relative.c_str())) {
        return Fail("the folder lies outside the root: ", relative.c_str());
    }
    PKnownFolders known;
    known.Load(root.c_str());
    SString reason;
    if (!BuildDescriptionPage(root.c_str(), relative.c_str(), &known, &reason)) {
        return Fail("no page written for ", (relative + ": " + reason).c_str());
    }
    return 0;
}

int RunDescribeLine(int argc, char** argv) {
    SString root;
    if (int code = StartJob("describe-line", argc, argv, 1, &root); code != CONTINUE) {
        return code;
    }
    PKnownFolders known;
    known.Load(root.c_str());
    std::string input;
    char block[65536];
    size_t got;
    while ((got = fread(block, 1, sizeof(block), stdin)) > 0) {
        input.append(block, got);
    }
    // LF or CR LF ends a line; a last line without an end still counts.
    size_t start = 0;
    while (start < input.size()) {
        size_t end = input.find('\n', start);
        size_t next = end == std::string::npos ? input.size() : end + 1;
        size_t stop = end == std::string::npos ? input.size() : end;
        if (stop > start && input[stop - 1] == '\r') {
            --stop;
        }
        SString line;
        line.Assign(input.data() + start, static_cast<int>(stop - start));
        SString html = ConvertDescriptionLine(line, &known);
        fwrite(html.c_str(), 1, static_cast<size_t>(html.GetLength()), stdout);
        fputc('\n', stdout);
        start = next;
    }
    return fflush(stdout) == 0 ? 0 : Fail("cannot write the output");
}

int RunBook(int argc, char** argv) {
    const char* imageNames = nullptr;
    if (int code = StartJob("book", argc, argv, -1, nullptr, &imageNames); code != CONTINUE) {
        return code;
    }
    const PCliJob& job = JobNamed("book");
    const char* rootText = nullptr;
    const char* output = nullptr;
    bool makeImages = true;
    PBook book;
    book.SetImageNames(imageNames);
    for (int i = 0; i < argc; ++i) {
        if (strcmp(argv[i], "--no-images") == 0) {
            makeImages = false;
        } else if (strcmp(argv[i], "--output") == 0 && i + 1 < argc) {
            output = argv[++i];
        } else if (argv[i][0] != '-' && rootText == nullptr) {
            rootText = argv[i];
        } else {
            return Usage(job);
        }
    }
    SString root;
    if (rootText == nullptr) {
        return Usage(job);
    }
    if (!ReadRoot(rootText, root)) {
        return 1;
    }
    book.SetRoot(root.c_str());
    SString bookPath = output != nullptr ? SString(output) : book.GetDefaultBookPath();
    ProgressBar bar;
    book.progress = [&bar](int thousandths) { bar.Show(thousandths, 1000); };
    bool isBuilt = book.BuildBook(bookPath.c_str(), makeImages);
    bar.Done();
    return isBuilt ? 0 : Fail("no Book written: ", book.GetFailure().c_str());
}

int RunZipBook(int argc, char** argv) {
    if (int code = StartJob("zip-book", argc, argv, -1, nullptr); code != CONTINUE) {
        return code;
    }
    const PCliJob& job = JobNamed("zip-book");
    const char* rootText = nullptr;
    const char* output = nullptr;
    for (int i = 0; i < argc; ++i) {
        if (strcmp(argv[i], "--output") == 0 && i + 1 < argc) {
            output = argv[++i];
        } else if (argv[i][0] != '-' && rootText == nullptr) {
            rootText = argv[i];
        } else {
            return Usage(job);
        }
    }
    if (rootText == nullptr || output == nullptr) {
        return Usage(job);
    }
    SString root;
    if (!ReadRoot(rootText, root)) {
        return 1;
    }
    PBook book;
    book.SetRoot(root.c_str());
    SString bookPath = book.GetDefaultBookPath();
    SDisk disk;
    if (!disk.IsFile(bookPath.c_str())) {
        return Fail("no Book in ", root.c_str());
    }
    return book.WriteBookZip(bookPath.c_str(), output) ? 0 : Fail("cannot write ", output);
}

const PCliJob JOBS[] = {
    {"pages",
     "usage: melkora-cli pages ROOT\n"
     "  builds every description page under ROOT, and Images/icon.gif\n",
     RunPages},
    {"page",
     "usage: melkora-cli page ROOT REL\n"
     "  builds the description page of the folder REL (relative to ROOT, \"/\" separated);\n"
     "  exit 1 when no page was written\n",
     RunPage},
    {"describe-line",
     "usage: melkora-cli describe-line ROOT\n"
     "  converts each line of stdin as a description page converts a text line,\n"
     "  with the known folders of ROOT, one converted line per input line\n",
     RunDescribeLine},
    {"book",
     "usage: melkora-cli book ROOT [--no-images] [--output FILE] [--images \"A;B\"]\n"
     "  writes the Book (default ROOT/Book.htm, pictures in the folder named after its stem)\n",
     RunBook},
    {"zip-book",
     "usage: melkora-cli zip-book ROOT --output FILE\n"
     "  packs ROOT/Book.htm and its pictures into the zip archive FILE\n",
     RunZipBook},
};

const PCliJob& JobNamed(const char* name) {
    const PCliJob* job = FindPagesJob(name);
    return job != nullptr ? *job : JOBS[0];
}

} // namespace

const PCliJob* GetPagesJobs(int* count) {
    if (count != nullptr) {
        *count = static_cast<int>(sizeof(JOBS) / sizeof(JOBS[0]));
    }
    return JOBS;
}

void PrintPagesUsage(FILE* out) {
    for (const PCliJob& job : JOBS) {
        fputs(job.usage, out);
    }
}

const PCliJob* FindPagesJob(const char* name) {
    for (const PCliJob& job : JOBS) {
        if (name != nullptr && strcmp(job.name, name) == 0) {
            return &job;
        }
    }
    return nullptr;
}
