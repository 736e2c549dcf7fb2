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
    // beside it (named after the file's stem, made hidden, emptied of its
    // old "book*.png" and "book*.jpg" first) with book<k>.jpg and
    // book<k>.png for the k-th folder. The page is replaced atomically.
    // False only when the image folder cannot be had or the page cannot be
    // written; a picture that fails leaves its folder's image missing.
    bool BuildBook(const char* bookPath, bool makeImages);

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
    SString root;
    PCovers covers; // finds each folder's cover
};
