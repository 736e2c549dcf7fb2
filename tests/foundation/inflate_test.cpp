// SFile::InflateBlocks on block streams made here with zlib: real data, and
// streams that are cut short, damaged or claim more than the buffers hold.
#include "foundation/file.h"

#include <gtest/gtest.h>

#include <zlib.h>

#include <string>
#include <vector>

namespace {

struct Block {
    int rawSize;    // as written in the stream
    int packedSize; // as written; -1 means the real compressed size
    std::string packed;
};

Block Pack(const std::string& raw) {
    uLongf room = compressBound(raw.size());
    std::string packed(room, '\0');
    compress(reinterpret_cast<Bytef*>(packed.data()), &room,
             reinterpret_cast<const Bytef*>(raw.data()), raw.size());
    packed.resize(room);
    return {static_cast<int>(raw.size()), -1, packed};
}

SFileMem Stream(int blockCount, const std::vector<Block>& blocks) {
    SFileMem stream;
    stream.WriteInt(blockCount);
    for (const Block& block : blocks) {
        stream.WriteInt(block.rawSize);
        stream.WriteInt(block.packedSize < 0 ? static_cast<int>(block.packed.size())
                                             : block.packedSize);
        stream.Write(block.packed.data(), static_cast<int>(block.packed.size()));
    }
    stream.Rewind();
    return stream;
}

std::string Text(int size, int seed) {
    std::string text;
    for (int i = 0; i < size; ++i) {
        text.push_back(static_cast<char>('a' + (i * seed + i / 7) % 26));
    }
    return text;
}

std::string Content(const SFileMem& file) {
    return file.GetData() != nullptr ? std::string(file.GetData(), file.GetSize()) : std::string();
}

} // namespace

TEST(FileInflate, RealBlocksAreInflatedInOrder) {
    std::string first = Text(100000, 3); // the largest block allowed
    std::string second = Text(5000, 11);
    SFileMem stream = Stream(2, {Pack(first), Pack(second)});
    SFileMem target;
    EXPECT_EQ(stream.InflateBlocks(&target), 105000);
    EXPECT_EQ(Content(target), first + second);
    EXPECT_TRUE(stream.IsEnd());
}

TEST(FileInflate, NullTargetEmptyStreamsAndHugeCountsStopCleanly) {
    SFileMem stream = Stream(1, {Pack("abc")});
    EXPECT_EQ(stream.InflateBlocks(nullptr), 0);
    SFileMem target;
    SFileMem empty;
    SFileMem none = Stream(0, {});
    SFileMem negative = Stream(-4, {Pack("abc")});
    for (SFileMem* bad : {&empty, &none, &negative}) {
        EXPECT_EQ(bad->InflateBlocks(&target), 0);
    }
    SFileMem huge = Stream(0x7FFFFFFF, {Pack("only")}); // far more blocks than the data holds
    EXPECT_EQ(huge.InflateBlocks(&target), 4);
}

TEST(FileInflate, DamagedOrUnderclaimedBlocksAreSkipped) {
    Block broken = Pack(Text(3000, 5));
    broken.packed[broken.packed.size() / 2] ^= 0x55;
    broken.packed[broken.packed.size() - 1] ^= 0x55; // the checksum too
    SFileMem stream = Stream(2, {broken, Pack("after")});
    SFileMem target;
    EXPECT_EQ(stream.InflateBlocks(&target), 5);
    EXPECT_EQ(Content(target), "after");
    Block liar = Pack(Text(4000, 7));
    liar.rawSize = 100; // too little room for what the data holds
    SFileMem lying = Stream(1, {liar});
    SFileMem nothing;
    EXPECT_EQ(lying.InflateBlocks(&nothing), 0);
}

TEST(FileInflate, ClaimsBeyondTheBuffersEndTheWork) {
    const std::pair<int, int> claims[] = {
        {100001, 10}, {10, 110013}, {-1, 10}, {10, -1}, {0x7FFFFFFF, 0x7FFFFFFF}};
    for (auto [rawSize, packedSize] : claims) {
        SCOPED_TRACE(std::to_string(rawSize) + " / " + std::to_string(packedSize));
        Block bad{rawSize, packedSize, std::string(200000, 'x')};
        SFileMem stream = Stream(3, {Pack("one"), bad, Pack("three")});
        SFileMem target;
        EXPECT_EQ(stream.InflateBlocks(&target), 3);
        EXPECT_EQ(Content(target), "one");
    }
}

TEST(FileInflate, TruncatedStreamsStopCleanly) {
    SFileMem whole = Stream(2, {Pack("first block"), Pack(Text(2000, 13))});
    std::string bytes = Content(whole);
    for (size_t cut = 0; cut < bytes.size(); cut += 7) {
        SFileMem stream;
        stream.Write(bytes.data(), static_cast<int>(cut));
        stream.Rewind();
        SFileMem target;
        int written = stream.InflateBlocks(&target);
        EXPECT_TRUE(written == 0 || written == 11) << cut;
    }
}

TEST(FileInflate, ProgressSeesEachBlockAndCanStop) {
    struct Seen {
        std::vector<std::pair<int, int>> calls;
        int stopAt;
    };
    SFileProgress progress = [](int index, int count, void* context) {
        Seen* seen = static_cast<Seen*>(context);
        seen->calls.emplace_back(index, count);
        return index != seen->stopAt;
    };
    SFileMem stream = Stream(3, {Pack("a"), Pack("b"), Pack("c")});
    stream.SetProgress(progress);
    Seen all{{}, -1};
    SFileMem target;
    EXPECT_EQ(stream.InflateBlocks(&target, &all), 3);
    EXPECT_EQ(all.calls, (std::vector<std::pair<int, int>>{{0, 3}, {1, 3}, {2, 3}}));

    stream.Rewind();
    Seen stop{{}, 1};
    SFileMem second;
    EXPECT_EQ(stream.InflateBlocks(&second, &stop), 0);
    EXPECT_EQ(stop.calls.size(), 2u);
}
