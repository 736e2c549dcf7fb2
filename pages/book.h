// The Book: one HTML catalogue of the whole collection, with a cover
// thumbnail and a name banner for every folder and a link for every album
// and song, and its packing into a zip archive. No window is involved; the
// caller shows the progress it is handed.
#pragma once

#include <functional>

#include "foundation/array.h"
#include "foundation/image.h"
#include "foundation/string.h"
#include "library/metadata.h"

class STimer;

// Receives the progress in thousandths (0 to 1000), only when it changes.
using PBookProgress = std::function<void(int thousandths)>;

class PBook {
public:
    PBook() = default;
    PBook(const PBook&) = delete;
    PBook& operator=(const PBook&) = delete;

    // The collection's root folder, with or without its trailing "/".
    void SetRoot(const char* root);
    const SString& GetRoot() const { return root; }
    // "<root>Book.htm", the book's usual place.
    SString GetDefaultBookPath() const;

    // Writes the book file and, with makeImages, fills the image folder
    // beside it (named after the file's stem, made hidden) with
    // book<k>.jpg and book<k>.png for the k-th folder, and removes the old
    // pictures past the new count. The page and its pictures are replaced
    // so that a kill or a full disk at any moment leaves the old Book or
    // the new one whole (every picture the page names is there), and the
    // leftovers of a killed run are removed first. Nothing is written
    // outside the real path of the folder that holds the book file: a book
    // file or image folder that a link leads elsewhere is refused. A
    // picture that cannot be made (no cover, nothing drawn) leaves its
    // folder's image missing; one that cannot be written fails the run and
    // the old Book stays. False when the run fails; GetFailure tells why.
    bool BuildBook(const char* bookPath, bool makeImages);
    // Why the last BuildBook failed, one line; empty after a success.
    const SString& GetFailure() const { return failure; }

    // Packs the book file and every file of its image folder into archive,
    // with entry names taken from the root down ("Book.htm",
    // "Book/book0.jpg"). False when the book file is missing or the
    // archive cannot be written; an archive already there is then kept.
    bool WriteBookZip(const char* bookPath, const char* archive);
    // The archive's name for a date, "book 3-7-2026" (no leading zeros),
    // and a free path of that name with ".zip" in the temporary folder.
    static SString GetBookZipTitle(const STimer& date);
    static SString MakeBookZipPath(const STimer& date);

    // The shared cover names, as the "Images" setting holds them ("A;B"):
    // a folder of one of these names without a cover of its own takes
    // "<root><name>.png" or ".jpg". Compared without regard to case.
    void SetImageNames(const char* setting);
    // The picture of a folder with no cover. When empty, BINARY resource
    // 130 is used, and failing that a plain tile.
    SImage defaultCover;
    // Threads for the pictures; 0 means one per core, 1 draws them all on
    // the calling thread. The output is the same whatever the number.
    int threads = 0;
    PBookProgress progress;

private:
    bool Fail(const SString& reason);

    SString root;
    SString failure;
    PCovers covers; // finds each folder's cover
};
