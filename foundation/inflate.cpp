// SFile::InflateBlocks over zlib's one-shot uncompress(). Every size read
// from the stream is checked against the buffers before it is used, so a
// damaged or hostile stream can end the work early but never overrun.
#include "foundation/file.h"

#include <zlib.h>

#include <memory>
#include <new>

namespace {

constexpr int MAX_BLOCK_OUT = 100000;
constexpr int MAX_BLOCK_IN = 110012;

// A 32-bit little-endian number; false when the stream ran short.
bool ReadNumber(SFile& file, int32_t& value) {
    unsigned char bytes[4];
    if (file.ReadBytes(bytes, 4) != 4) {
        return false;
    }
    value = static_cast<int32_t>(bytes[0] | (bytes[1] << 8) | (bytes[2] << 16) |
                                 (static_cast<uint32_t>(bytes[3]) << 24));
    return true;
}

} // namespace

int SFile::InflateBlocks(SFile* target, void* context) {
    if (target == nullptr) {
        return 0;
    }
    std::unique_ptr<unsigned char[]> output(new (std::nothrow) unsigned char[MAX_BLOCK_OUT]);
    std::unique_ptr<unsigned char[]> input(new (std::nothrow) unsigned char[MAX_BLOCK_IN]);
    int32_t blockCount = 0;
    if (output == nullptr || input == nullptr || !ReadNumber(*this, blockCount)) {
        return 0;
    }
    int total = 0;
    for (int32_t index = 0; index < blockCount; ++index) {
        if (progress != nullptr && !progress(index, blockCount, context)) {
            return 0;
        }
        int32_t rawSize = 0;
        int32_t packedSize = 0;
        if (!ReadNumber(*this, rawSize) || !ReadNumber(*this, packedSize)) {
            break;
        }
        // A claim beyond the buffers means the stream is damaged: what follows
        // cannot be framed, so the work ends here.
        if (rawSize < 0 || rawSize > MAX_BLOCK_OUT || packedSize < 0 || packedSize > MAX_BLOCK_IN) {
            break;
        }
        if (ReadBytes(input.get(), packedSize) != packedSize) {
            break;
        }
        uLongf produced = static_cast<uLongf>(rawSize);
        if (uncompress(output.get(), &produced, input.get(), static_cast<uLong>(packedSize)) ==
                Z_OK &&
            produced > 0) {
            total += target->Write(output.get(), static_cast<int>(produced));
        }
    }
    return total;
}
