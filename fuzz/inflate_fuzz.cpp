// InflateBlocks over any bytes: never an overrun, a crash or a hang, and the
// total it reports is what the target received.
#include <cstdint>
#include <cstdlib>

#include "foundation/file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size > 1 << 20) {
        return 0;
    }
    SFileMem source;
    source.Write(data, static_cast<int>(size));
    source.Rewind();
    SFileMem target;
    int written = source.InflateBlocks(&target);
    if (written != target.GetSize() || written < 0) {
        abort();
    }
    return 0;
}
