#include "foundation/image_list.h"

#include "foundation/file.h"

namespace {

constexpr int LIST_DEFAULT_SIDE = 16;
constexpr int LIST_MAX_SIDE = 256;

int CellSide(int side) {
    return side < 1 || side > LIST_MAX_SIDE ? LIST_DEFAULT_SIDE : side;
}

// Grey and half transparent: how a command that cannot be used looks.
void ApplyDisabledLook(SImage& image) {
    image.ConvertTo(PIXEL_FORMAT_32ARGB);
    image.MakeGray();
    image.SetAlpha(128, nullptr, true);
}

} // namespace

SImageList::~SImageList() = default;

bool SImageList::Create(int newWidth, int newHeight, int newFlags) {
    Destroy();
    width = CellSide(newWidth);
    height = CellSide(newHeight);
    flags = newFlags;
    isCreated = true;
    return true;
}

void SImageList::Destroy() {
    images.clear();
    width = 0;
    height = 0;
    flags = 0;
    isCreated = false;
}

const SImage* SImageList::GetImage(int index) const {
    if (index < 0 || index >= GetCount()) {
        return nullptr;
    }
    return &images[index];
}

bool SImageList::AddEmpty() {
    if (!isCreated) {
        return false;
    }
    SImage blank;
    blank.Create(width, height, PIXEL_FORMAT_24RGB);
    if (!blank.IsValid()) {
        return false;
    }
    images.push_back(std::move(blank));
    return true;
}

bool SImageList::Add(const SImage* image) {
    if (!isCreated || image == nullptr || !image->IsValid()) {
        return false;
    }
    SImage cell;
    if (!cell.CopyFrom(image)) {
        return false;
    }
    cell.ConvertTo(PIXEL_FORMAT_32ARGB);
    if (cell.GetWidth() != width || cell.GetHeight() != height) {
        cell.ResizeCanvas(width, height);
    }
    if (!cell.IsValid()) {
        return false;
    }
    images.push_back(std::move(cell));
    return true;
}

bool SImageList::AddFile(SFile* file, bool disabledLook) {
    SImage image;
    if (!isCreated || !image.Load(file)) {
        return false;
    }
    if (disabledLook) {
        ApplyDisabledLook(image);
    }
    return Add(&image);
}

bool SImageList::AddResource(unsigned id, const char* type, bool disabledLook) {
    SImage image;
    if (!isCreated || !image.LoadResource(type != nullptr ? type : "BINARY", id)) {
        return false;
    }
    if (disabledLook) {
        ApplyDisabledLook(image);
    }
    return Add(&image);
}

bool SImageList::CreateFromStrip(const SImage* strip, int cellWidth, int cellHeight) {
    cellWidth = cellWidth < 1 ? LIST_DEFAULT_SIDE : cellWidth;
    cellHeight = cellHeight < 1 ? LIST_DEFAULT_SIDE : cellHeight;
    if (strip == nullptr || strip->GetWidth() < cellWidth || strip->GetHeight() < cellHeight) {
        return false;
    }
    Create(cellWidth, cellHeight, 32);
    for (int y = 0; y + cellHeight <= strip->GetHeight(); y += cellHeight) {
        for (int x = 0; x + cellWidth <= strip->GetWidth(); x += cellWidth) {
            SImage cell;
            if (!cell.Crop(strip, x, y, cellWidth, cellHeight) || !Add(&cell)) {
                return false;
            }
        }
    }
    return true;
}

void SImageList::Draw(int index, cairo_t* cr, int x, int y) const {
    const SImage* image = GetImage(index);
    if (image == nullptr || cr == nullptr) {
        return;
    }
    // Cells are made here with the default attributes: top left, no colours.
    SRect target{x, y, x + image->GetWidth(), y + image->GetHeight()};
    image->Draw(cr, &target);
}
