// SImageList: equal-size pictures for menus, toolbars and lists, drawn by
// index. A disabled look (grey, half transparent) may be applied on adding.
#pragma once

#include <vector>

#include "foundation/image.h"

// Equal-size pictures for menus, toolbars and lists, kept as 32ARGB.
class SImageList {
public:
    SImageList() = default;
    virtual ~SImageList();

    // Destroys the old list; a side below 1 or above 256 becomes 16.
    bool Create(int width, int height, int flags);
    void Destroy();
    bool IsCreated() const { return isCreated; }
    int GetCount() const { return static_cast<int>(images.size()); }
    int GetWidth() const { return width; }
    int GetHeight() const { return height; }
    int GetFlags() const { return flags; }
    void RemoveAll() { images.clear(); }
    // The picture at index, or null.
    const SImage* GetImage(int index) const;

    // Adding; each is false before Create. AddEmpty adds a blank picture.
    bool AddEmpty();
    // A picture of another size is centred, unscaled, on a cell.
    bool Add(const SImage* image);
    // Loads a picture and adds it; disabledLook makes it grey and half
    // transparent first.
    bool AddFile(SFile* file, bool disabledLook);
    bool AddResource(unsigned id, const char* type, bool disabledLook);
    // A new list of cells cut from strip, row by row, left to right; a cell
    // side below 1 becomes 16. False when the strip is narrower or shorter
    // than a cell.
    bool CreateFromStrip(const SImage* strip, int cellWidth, int cellHeight);

    // Draws picture index at natural size with its top left at x, y.
    void Draw(int index, cairo_t* cr, int x, int y) const;

private:
    std::vector<SImage> images;
    int width = 0;
    int height = 0;
    int flags = 0;
    bool isCreated = false;
};
