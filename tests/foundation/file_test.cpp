// SFile over disk and memory: lines, search, growth, seeking, clipping,
// digests, open modes and atomic replacement.
#include "foundation/file.h"

#include <gtest/gtest.h>

#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "support/temp_dir.h"

namespace {

std::string Str(const SString& text) {
    return std::string(text.c_str(), text.GetLength());
}

std::unique_ptr<SFileMem> MemWith(const std::string& bytes) {
    auto file = std::make_unique<SFileMem>();
    file->Write(bytes.data(), static_cast<int>(bytes.size()));
    file->Rewind();
    return file;
}

// Both kinds of file over the same bytes; the disk one lives in dir.
std::vector<std::unique_ptr<SFile>> BothWith(const TempDir& dir, const std::string& bytes) {
    std::vector<std::unique_ptr<SFile>> files;
    files.push_back(MemWith(bytes));
    std::string path = dir.Write("data.bin", bytes);
    files.push_back(std::make_unique<SFilePath>(path.c_str(), false, false, true, false));
    return files;
}

const char* KindName(const SFile& file) {
    return file.GetKind() == SFile::KIND_DISK ? "disk" : "memory";
}

std::vector<std::string> FilesIn(const std::string& folder) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        names.push_back(entry.path().filename().string());
    }
    return names;
}

} // namespace

// ReadLine: only CR LF ends a line on either kind; a lone CR or LF stays in
// memory and is dropped on disk.

using Lines = std::vector<std::pair<std::string, bool>>; // text, ended with CR LF

struct LineCase {
    const char* name;
    std::string bytes;
    bool keepBlanks;
    int maxChars;
    Lines memory;
    Lines disk; // empty: the same as in memory
};

TEST(FileReadLine, LoneLineEndsStayInMemoryAndAreDroppedOnDisk) {
    // clang-format off
    const LineCase cases[] = {
        {"crlf pairs", "a\r\nb", false, -1, {{"a", true}, {"b", false}}, {}},
        {"lone cr", "a\rb\r\n", false, -1, {{"a\rb", true}}, {{"ab", true}}},
        {"lone lf", "a\nb\r\nc", false, -1, {{"a\nb", true}, {"c", false}},
                                             {{"ab", true}, {"c", false}}},
        {"cr cr lf", "x\r\r\ny", false, -1, {{"x\r", true}, {"y", false}},
                                           {{"x", true}, {"y", false}}},
        {"cr at the end", "a\r", false, -1, {{"a\r", false}}, {{"a", false}}},
        {"no final line end", "abc", false, -1, {{"abc", false}}, {}},
        {"empty lines", "\r\n\r\nz\r\n", false, -1, {{"", true}, {"", true}, {"z", true}}, {}},
        {"blanks trimmed", " \ta b \t\r\n", false, -1, {{"a b", true}}, {}},
        {"blanks kept", " \ta b \t\r\n", true, -1, {{" \ta b \t", true}}, {}},
        {"trimmed after the drop", " \n a \r\n", false, -1, {{"\n a", true}}, {{"a", true}}},
        {"max cuts a line", "abcdef\r\n", false, 4, {{"abcd", false}, {"ef", true}}, {}},
        {"max before crlf", "abcd\r\nx", false, 4, {{"abcd", false}, {"", true}, {"x", false}}, {}},
        {"max and lone lf", "a\nbc", false, 2, {{"a\n", false}, {"bc", false}},
                                             {{"ab", false}, {"c", false}}},
        {"max and lone cr", "a\rb", false, 2, {{"a\r", false}, {"b", false}}, {{"ab", false}}},
        {"crlf ends before max", "ab\r\ncd", false, 3, {{"ab", true}, {"cd", false}}, {}}};
    // clang-format on
    TempDir dir;
    for (const LineCase& c : cases) {
        for (auto& file : BothWith(dir, c.bytes)) {
            SCOPED_TRACE(std::string(c.name) + " on " + KindName(*file));
            ASSERT_TRUE(file->IsOpen());
            bool onDisk = file->GetKind() == SFile::KIND_DISK;
            for (const auto& [text, crlf] : onDisk && !c.disk.empty() ? c.disk : c.memory) {
                bool ended = !crlf;
                EXPECT_EQ(Str(file->ReadLine(c.keepBlanks, c.maxChars, &ended)), text);
                EXPECT_EQ(ended, crlf);
            }
            EXPECT_TRUE(file->IsEnd());
        }
    }
}

TEST(FileReadLine, ZeroMaxDoesNotMoveAndWithEndAddsCrlfOnlyWhenTheLineHadOne) {
    TempDir dir;
    for (auto& file : BothWith(dir, " a \r\nb")) {
        SCOPED_TRACE(KindName(*file));
        bool ended = true;
        EXPECT_EQ(Str(file->ReadLine(false, 0, &ended)), "");
        EXPECT_FALSE(ended);
        EXPECT_EQ(file->GetPosition(), 0);
        EXPECT_EQ(Str(file->ReadLineWithEnd(true)), " a \r\n");
        EXPECT_EQ(Str(file->ReadLineWithEnd(true)), "b");
    }
}

TEST(FileClosed, ClosedFilesReadNothingAndSitAtZero) {
    SFilePath disk;
    SFileMem memory;
    for (SFile* file : {static_cast<SFile*>(&disk), static_cast<SFile*>(&memory)}) {
        SCOPED_TRACE(KindName(*file));
        char buffer[4];
        bool ended = true;
        uint32_t crc = 77;
        EXPECT_EQ((std::vector<int>{file->IsEnd(), file->Seek(5), file->GetPosition(),
                                    file->GetSize(), file->Read(buffer, 4), file->ReadInt(),
                                    file->ReadWide().GetLength(), file->FindText("a", true),
                                    file->GetCrc32(crc), static_cast<int>(crc)}),
                  (std::vector<int>{true, 0, 0, 0, 0, 0, 0, -1, false, 77}));
        EXPECT_EQ((std::vector<std::string>{Str(file->ReadLine(false, -1, &ended)),
                                            Str(file->ReadText()), Str(file->ReadZeroString(true)),
                                            Str(file->GetMd5()), Str(file->GetSha1())}),
                  std::vector<std::string>(5, ""));
        EXPECT_FALSE(ended);
    }
}

// FindBytes and FindText.

TEST(FileFind, DiskNeedsTheWholePatternAndMemoryTakesOneCutOffByTheEnd) {
    struct Outcome {
        int result;
        int position; // afterwards
    };
    struct FindCase {
        std::string data, pattern;
        int start;
        bool after;
        Outcome memory, disk;
    };
    // clang-format off
    const FindCase cases[] = {
        {"xxabc", "abc", 0, false, {2, 5}, {2, 5}}, {"xxabc", "abc", 0, true, {5, 5}, {5, 5}},
        // cut off by the end: a match in memory, the position past the end
        {"xxab", "abc", 0, false, {2, 5}, {-1, 2}}, {"xxab", "abc", 0, true, {5, 5}, {-1, 2}},
        {"abab", "abac", 0, false, {2, 6}, {-1, 1}}, // the earliest cut-off start
        {"aaab", "aab", 0, false, {1, 4}, {1, 4}}, // restart inside a partial match
        {"abcabc", "abc", 1, false, {3, 6}, {3, 6}}, // from the position on
        {"abc", "abc", 3, false, {-1, 3}, {-1, 3}}, // at the end already
        {"", "a", 0, false, {-1, 0}, {-1, 0}},
        {"short", "longer pattern", 0, true, {-1, 5}, {-1, 0}},
        {"shor", "shorter", 0, true, {7, 7}, {-1, 0}},
        {"abc", "xy", 0, false, {-1, 3}, {-1, 2}},
        {"abc", "", 1, false, {-1, 1}, {-1, 1}}}; // an empty pattern finds nothing, moves nothing
    // clang-format on
    TempDir dir;
    for (const FindCase& c : cases) {
        for (auto& file : BothWith(dir, c.data)) {
            SCOPED_TRACE(c.data + " / " + c.pattern + " on " + KindName(*file));
            Outcome expected = file->GetKind() == SFile::KIND_DISK ? c.disk : c.memory;
            file->Seek(c.start);
            EXPECT_EQ(file->FindBytes(c.pattern.data(), static_cast<int>(c.pattern.size()), c.after),
                      expected.result);
            EXPECT_EQ(file->GetPosition(), expected.position);
        }
    }
    // Past a cut-off match the memory search is at its end and finds no more.
    auto memory = MemWith("xxab");
    EXPECT_EQ(memory->FindText("abc", false), 2);
    EXPECT_TRUE(memory->IsEnd());
    EXPECT_EQ(memory->FindText("x", false), -1);
    EXPECT_EQ(memory->GetPosition(), 5);
}

TEST(FileFind, FindsAMatchAcrossReadBlocks) {
    std::string data(70000, 'x');
    data.replace(65534, 4, "NEED");
    TempDir dir;
    for (auto& file : BothWith(dir, data)) {
        SCOPED_TRACE(KindName(*file));
        EXPECT_EQ(file->FindText(nullptr, false), -1);
        EXPECT_EQ(file->FindText("", false), -1);
        EXPECT_EQ(file->FindText("NEED", false), 65534);
        EXPECT_EQ(file->GetPosition(), 65538);
    }
}

// SFileMem growth and size.

TEST(FileMemGrowth, CapacityFollowsTheKilobyteRule) {
    const std::pair<int, int> cases[] = {{0, 1024},    {1, 1024},    {1023, 1024},
                                         {1024, 2048}, {1025, 2048}, {-5, 1024}};
    for (auto [size, capacity] : cases) {
        SFileMem file;
        ASSERT_TRUE(file.SetSize(size, true));
        EXPECT_EQ(file.GetCapacity(), capacity) << size;
        EXPECT_EQ(file.GetSize(), size < 0 ? 0 : size);
    }
}

TEST(FileMemGrowth, WritesGrowShrinkingKeepsThePrefixAndPullsThePositionBack) {
    SFileMem file;
    EXPECT_EQ(file.GetData(), nullptr);
    std::string piece(700, 'q');
    for (int i = 0; i < 5; ++i) {
        ASSERT_EQ(file.Write(piece.data(), 700), 700);
    }
    EXPECT_EQ(file.GetCapacity(), 4096);
    EXPECT_EQ(std::string(file.GetData(), 3500), std::string(3500, 'q'));
    EXPECT_EQ(file.Write(file.GetData(), 3500), 3500); // from its own block while growing
    EXPECT_EQ(std::string(file.GetData(), 7000), std::string(7000, 'q'));
    file.Seek(2500);
    ASSERT_TRUE(file.SetSize(100));
    EXPECT_EQ(file.GetCapacity(), 1024);
    EXPECT_EQ(file.GetPosition(), 100);
    EXPECT_EQ(std::string(file.GetData(), 100), std::string(100, 'q'));
    EXPECT_FALSE(file.SetSize(-1));
    ASSERT_TRUE(file.SetSize(150));
    EXPECT_EQ(std::string(file.GetData() + 100, 50), std::string(50, '\0'));
}

TEST(FileMemGrowth, InsertAndRemoveBytesAtThePosition) {
    auto file = MemWith("abcdef");
    file->Seek(2);
    ASSERT_TRUE(file->InsertBytes(3, true));
    EXPECT_EQ(file->GetPosition(), 5);
    file->SkipBack(3);
    file->WriteText("XYZ");
    EXPECT_EQ(std::string(file->GetData(), file->GetSize()), "abXYZcdef");
    file->Seek(1);
    ASSERT_TRUE(file->RemoveBytes(4));
    EXPECT_EQ(std::string(file->GetData(), file->GetSize()), "acdef");
    EXPECT_FALSE(file->RemoveBytes(5)); // passes the end
    EXPECT_FALSE(file->RemoveBytes(0));
    EXPECT_FALSE(file->InsertBytes(0, false));
    ASSERT_TRUE(file->InsertBytes(2, false));
    EXPECT_EQ(file->GetPosition(), 1);
    EXPECT_EQ(std::string(file->GetData(), file->GetSize()), std::string("a\0\0cdef", 7));
}

TEST(FileMemGrowth, MoveTakesTheBlockAndCloseFreesIt) {
    auto file = MemWith("hello");
    file->Seek(2);
    SFileMem moved(std::move(*file));
    EXPECT_EQ(file->GetData(), nullptr);
    EXPECT_EQ(file->GetSize(), 0);
    EXPECT_EQ(moved.GetPosition(), 2);
    EXPECT_EQ(Str(moved.ReadText()), "llo");
    moved.Close();
    EXPECT_EQ((std::vector<int>{moved.IsOpen(), moved.GetSize(), moved.GetCapacity()}),
              (std::vector<int>{false, 0, 0}));
}

TEST(FileMemGrowth, SaveAndLoadRoundTrip) {
    TempDir dir;
    std::string bytes("a\0b\r\nc", 6);
    auto file = MemWith(bytes);
    std::string path = dir / "saved.bin";
    ASSERT_TRUE(file->SaveFile(path.c_str()));
    EXPECT_EQ(TempDir::Read(path), bytes);
    SFileMem loaded;
    ASSERT_TRUE(loaded.LoadFile(path.c_str()));
    EXPECT_EQ(loaded.GetPosition(), 0);
    EXPECT_EQ(std::string(loaded.GetData(), loaded.GetSize()), bytes);
    EXPECT_FALSE(loaded.LoadFile((dir / "missing").c_str()));
}

// Seek rules, the same on both kinds.

TEST(FileSeek, NegativeOrPastTheEndMeansTheEnd) {
    TempDir dir;
    for (auto& file : BothWith(dir, "0123456789")) {
        SCOPED_TRACE(KindName(*file));
        // Each entry is the position (or count) after one step, in order.
        EXPECT_EQ((std::vector<int>{file->Seek(-1), file->Seek(15), file->IsEnd(), file->Seek(4),
                                    file->GetRemaining(), (file->Skip(3), file->GetPosition()),
                                    (file->Skip(100), file->GetPosition()),
                                    (file->SkipBack(100), file->GetPosition()),
                                    (file->SeekEnd(), file->GetPosition()),
                                    (file->Rewind(), file->GetPosition())}),
                  (std::vector<int>{10, 10, true, 4, 6, 7, 10, 0, 10, 0}));
    }
}

// Reading: clipping, zero strings, integers and wide text.

TEST(FileRead, CountsAreClippedToWhatRemains) {
    TempDir dir;
    for (auto& file : BothWith(dir, "12345")) {
        SCOPED_TRACE(KindName(*file));
        char buffer[100];
        EXPECT_EQ((std::vector<int>{file->Read(buffer, 0), file->Read(buffer, -3),
                                    file->Read(nullptr, 3), file->Read(buffer, 2),
                                    file->Read(buffer, 100), file->Read(buffer, 100)}),
                  (std::vector<int>{0, 0, 0, 2, 3, 0}));
        EXPECT_EQ((std::vector<std::string>{(file->Seek(1), Str(file->ReadText(2000000000))),
                                            (file->Seek(3), Str(file->ReadText())),
                                            Str(file->ReadText())}),
                  (std::vector<std::string>{"2345", "45", ""}));
    }
}

TEST(FileRead, ZeroStringsStopPastTheZero) {
    TempDir dir;
    std::string longText(1000, 'k');
    for (auto& file : BothWith(dir, std::string("abc\0\0def\0", 9) + longText + "\0")) {
        SCOPED_TRACE(KindName(*file));
        EXPECT_EQ(Str(file->ReadZeroString(true)), "abc");
        EXPECT_EQ(file->GetPosition(), 4);
        EXPECT_EQ(Str(file->ReadZeroString(true)), "");
        EXPECT_EQ(Str(file->ReadZeroString(false)), "");
        EXPECT_EQ(file->GetPosition(), 9);
        EXPECT_EQ(Str(file->ReadZeroString(true)), longText); // longer than one block
        EXPECT_TRUE(file->IsEnd());
    }
}

TEST(FileRead, WideTextRoundTripsLowByteFirstAndLeavesAnOddLastByte) {
    TempDir dir;
    const char16_t text[] = u"A\u00e9\u20ac\U0001F600";
    SFilePath disk;
    ASSERT_TRUE(disk.Open((dir / "wide.bin").c_str(), true, true, true, false));
    SFileMem memory;
    for (SFile* file : {static_cast<SFile*>(&disk), static_cast<SFile*>(&memory)}) {
        SCOPED_TRACE(KindName(*file));
        EXPECT_EQ(file->WriteWide(text), 10);
        EXPECT_EQ(file->WriteWide(u"xyz", 1), 2);
        file->WriteText("\x01");
        file->Rewind();
        EXPECT_EQ(Str(file->ReadText(6)), std::string("A\0\xE9\0\xAC\x20", 6));
        file->Rewind();
        SUniString back = file->ReadWide(5);
        ASSERT_EQ(back.GetLength(), 5);
        EXPECT_EQ(std::u16string(back.GetBuffer(), 5), std::u16string(text));
        EXPECT_EQ(std::u16string(file->ReadWide().GetBuffer()), u"x");
        EXPECT_EQ(file->GetRemaining(), 1);
    }
}

// Writing.

TEST(FileWrite, TextAndLinesWriteNoTerminatorAndIntegersAreLittleEndian) {
    SFileMem file;
    EXPECT_EQ((std::vector<int>{file.WriteText("abcdef", 3), file.WriteText("xy"),
                                file.WriteLine("L"), file.WriteText(nullptr), file.Write("z", 0)}),
              (std::vector<int>{3, 2, 3, 0, 0}));
    EXPECT_EQ(std::string(file.GetData(), file.GetSize()), "abcxyL\r\n");
    // Integers are little-endian and read as zero when nothing is left.
    file.WriteInt(0x12345678);
    file.WriteInt(-2);
    EXPECT_EQ(std::string(file.GetData() + 8, 4), "\x78\x56\x34\x12");
    file.Seek(8);
    EXPECT_EQ((std::vector<int>{file.ReadInt(), file.ReadInt(), file.ReadInt()}),
              (std::vector<int>{0x12345678, -2, 0}));
}

TEST(FileWrite, AppendFromCopiesWhatRemainsInBlocks) {
    std::string bytes;
    for (int i = 0; i < 2500; ++i) {
        bytes.push_back(static_cast<char>(i * 7));
    }
    TempDir dir;
    for (auto& source : BothWith(dir, bytes)) {
        SCOPED_TRACE(KindName(*source));
        SFileMem target;
        source->Seek(10);
        EXPECT_EQ(
            (std::vector<int>{target.AppendFrom(source.get(), 5), target.AppendFrom(source.get()),
                              target.AppendFrom(nullptr), target.AppendFrom(&target)}),
            (std::vector<int>{5, 2485, 0, 0}));
        EXPECT_EQ(std::string(target.GetData(), target.GetSize()), bytes.substr(10));
    }
}

TEST(FileWrite, ResourcesAreWrittenByTypeAndNumber) {
    static const char bytes[] = "TAVORA DIALOG 1.0.0.0\r\n";
    RegisterResource("BINARY", 9001, bytes, sizeof bytes - 1);
    SFileMem loaded("binary", 9001);
    EXPECT_EQ(std::string(loaded.GetData(), loaded.GetSize()), bytes);
    SFileMem target;
    target.WriteText("<");
    EXPECT_TRUE(target.WriteResource("BINARY", 9001));
    EXPECT_EQ(target.GetSize(), static_cast<int>(sizeof bytes));
    EXPECT_FALSE(target.WriteResource("BINARY", 9002));
    EXPECT_FALSE(ReadResource(nullptr, "BINARY", 9001, nullptr));
    SFileMem missing("BINARY", 9003);
    EXPECT_EQ(missing.GetData(), nullptr);
}

// Digests against published vectors.

TEST(FileDigest, KnownVectorsOnBothKinds) {
    // clang-format off
    const std::tuple<std::string, uint32_t, const char*, const char*> cases[] = {
        {"", 0x00000000u, "D41D8CD98F00B204E9800998ECF8427E",
         "DA39A3EE5E6B4B0D3255BFEF95601890AFD80709"},
        {"abc", 0x352441C2u, "900150983CD24FB0D6963F7D28E17F72",
         "A9993E364706816ABA3E25717850C26C9CD0D89D"},
        {"The quick brown fox jumps over the lazy dog", 0x414FA339u,
         "9E107D9D372BB6826BD81D3542A419D6", "2FD4E1C67A2D28FCED849EE1BB76E7391B93EB12"}};
    // clang-format on
    TempDir dir;
    for (const auto& [text, expectedCrc, md5, sha1] : cases) {
        const int size = static_cast<int>(text.size());
        EXPECT_EQ(Crc32(text.data(), size), expectedCrc);
        EXPECT_EQ(Str(Md5Hex(text.data(), size)), md5);
        EXPECT_EQ(Str(Sha1Hex(text.data(), size)), sha1);
        std::vector<std::unique_ptr<SFile>> files = BothWith(dir, text);
        if (text.empty()) {
            static_cast<SFileMem*>(files[0].get())->Reset(0); // allocated but empty
        }
        for (auto& file : files) {
            SCOPED_TRACE(text + " on " + KindName(*file));
            file->Seek(size / 2);
            int position = file->GetPosition();
            uint32_t crc = 1;
            EXPECT_TRUE(file->GetCrc32(crc));
            EXPECT_EQ(crc, expectedCrc);
            EXPECT_EQ(Str(file->GetMd5()), md5);
            EXPECT_EQ(Str(file->GetSha1()), sha1);
            EXPECT_EQ(file->GetPosition(), position);
        }
    }
}

TEST(FileDigest, DiskDigestCoversMoreThanOneBlock) {
    std::string bytes(200000, '\0');
    for (size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = static_cast<char>(i % 251);
    }
    TempDir dir;
    for (auto& file : BothWith(dir, bytes)) {
        SCOPED_TRACE(KindName(*file));
        uint32_t crc = 0;
        ASSERT_TRUE(file->GetCrc32(crc));
        EXPECT_EQ(crc, Crc32(bytes.data(), static_cast<int>(bytes.size())));
        EXPECT_EQ(Str(file->GetSha1()), Str(Sha1Hex(bytes.data(), static_cast<int>(bytes.size()))));
    }
}

// Opening disk files.

TEST(FileOpen, ModesFollowTheFlags) {
    TempDir dir;
    std::string path = dir.Write("f.txt", "original");
    SFilePath file;
    EXPECT_FALSE(file.Open(path.c_str(), false, true, false, false));
    EXPECT_FALSE(file.IsOpen());
    EXPECT_FALSE(file.Open("", false, false, true, false));
    EXPECT_FALSE(file.Open(nullptr, false, false, true, false));
    EXPECT_FALSE(file.Open(dir.Path().c_str(), false, false, true, false)); // a folder

    ASSERT_TRUE(file.Open(path.c_str(), true, false, true, false)); // r+b keeps
    EXPECT_EQ(Str(file.GetPath()), path);
    EXPECT_EQ(file.GetSize(), 8);
    file.WriteText("O");
    EXPECT_EQ(Str(file.ReadText(3)), "rig");
    file.Close();
    EXPECT_EQ(TempDir::Read(path), "Original");
    EXPECT_EQ(Str(file.GetPath()), "");

    ASSERT_TRUE(file.Open(path.c_str(), true, false, false, false)); // ab appends
    file.WriteText("+");
    file.Close();
    EXPECT_EQ(TempDir::Read(path), "Original+");

    ASSERT_TRUE(file.Open(path.c_str(), true, true, false, false)); // wb truncates
    EXPECT_EQ(file.GetSize(), 0);
    file.Close();

    ASSERT_TRUE(file.Open(path.c_str(), true, true, true, false)); // w+b
    file.WriteLine("x");
    EXPECT_EQ(file.GetSize(), 3);
    file.Rewind();
    EXPECT_EQ(Str(file.ReadLine(false)), "x");
    EXPECT_FALSE(file.Open((dir / "missing.txt").c_str(), false, false, true, false));
    EXPECT_FALSE(file.IsOpen());
}

TEST(FileOpen, SetSizeTruncatesAndExtendsOnDisk) {
    TempDir dir;
    std::string path = dir.Write("s.bin", "abcdef");
    SFilePath file(path.c_str(), true, false, true, false);
    ASSERT_TRUE(file.SetSize(3));
    EXPECT_EQ(file.GetPosition(), 3);
    EXPECT_EQ(file.GetSize(), 3);
    ASSERT_TRUE(file.SetSize(5));
    file.Close();
    EXPECT_EQ(TempDir::Read(path), std::string("abc\0\0", 5));
    SFilePath readOnly(path.c_str(), false, false, true, false);
    EXPECT_FALSE(readOnly.SetSize(1));
    EXPECT_FALSE(readOnly.SetSize(-1));
}

TEST(FileOpen, TempFileMixesWritesAndReadsAndIsDeletedOnClose) {
    SFilePath file;
    ASSERT_TRUE(file.OpenTemp());
    std::string name = Str(file.GetPath());
    EXPECT_TRUE(std::filesystem::exists(name));
    file.WriteText("abc\r\ndef");
    file.Seek(0);
    EXPECT_EQ(Str(file.ReadLine(false)), "abc");
    file.WriteText("XY");
    EXPECT_EQ(file.GetSize(), 8);
    file.Rewind();
    EXPECT_EQ(Str(file.ReadText()), "abc\r\nXYf");
    file.Close();
    EXPECT_FALSE(std::filesystem::exists(name));
}

// Atomic replacement.

TEST(FileAtomic, NewFilesGetUsualPermissionsAndReplacedFilesKeepTheirs) {
    TempDir dir;
    std::string path = dir / "new.ini";
    ASSERT_TRUE(WriteFileAtomic(path.c_str(), "k=v\r\n", 5));
    EXPECT_EQ(TempDir::Read(path), "k=v\r\n");
    mode_t mask = umask(022);
    umask(mask);
    struct stat info;
    ASSERT_EQ(stat(path.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0666 & ~mask);
    ASSERT_EQ(chmod(path.c_str(), 0640), 0);
    ASSERT_TRUE(WriteFileAtomic(path.c_str(), "new contents", 12));
    EXPECT_EQ(TempDir::Read(path), "new contents");
    ASSERT_EQ(stat(path.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0640u);
    ASSERT_TRUE(WriteFileAtomic(path.c_str(), nullptr, 0));
    EXPECT_EQ(TempDir::Read(path), "");
    EXPECT_EQ(FilesIn(dir.Path()).size(), 1u);
}

TEST(FileAtomic, FailedWriteLeavesTheOldFileAndNoTemporary) {
    TempDir dir;
    std::string path = dir.Write("big.ini", "keep me");
    std::string bytes(1 << 20, 'w');
    // Files may not grow past 64 KB for a moment; the write then fails.
    struct rlimit saved;
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &saved), 0);
    struct rlimit small = saved;
    small.rlim_cur = 65536;
    void (*oldHandler)(int) = signal(SIGXFSZ, SIG_IGN);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    bool written = WriteFileAtomic(path.c_str(), bytes.data(), static_cast<int>(bytes.size()));
    setrlimit(RLIMIT_FSIZE, &saved);
    signal(SIGXFSZ, oldHandler);
    EXPECT_FALSE(written);
    EXPECT_EQ(TempDir::Read(path), "keep me");
    EXPECT_EQ(FilesIn(dir.Path()), std::vector<std::string>{"big.ini"});
}

TEST(FileAtomic, ReadOnlyFolderLeavesTheOldFile) {
    if (geteuid() == 0) {
        GTEST_SKIP() << "root writes into read-only folders";
    }
    TempDir dir;
    std::string folder = dir.MakeFolder("locked");
    std::string path = dir.Write("locked/a.ini", "old");
    ASSERT_EQ(chmod(folder.c_str(), 0555), 0);
    EXPECT_FALSE(WriteFileAtomic(path.c_str(), "new", 3));
    chmod(folder.c_str(), 0755);
    EXPECT_EQ(TempDir::Read(path), "old");
}

TEST(FileAtomic, CloseWithoutCommitDiscardsTheNewContent) {
    TempDir dir;
    std::string path = dir.Write("a.lst", "old");
    {
        SFilePath file;
        ASSERT_TRUE(file.OpenReplace(path.c_str()));
        file.WriteText("half written");
    }
    EXPECT_EQ(TempDir::Read(path), "old");
    EXPECT_EQ(FilesIn(dir.Path()).size(), 1u);
    SFilePath file;
    EXPECT_FALSE(file.Commit());
    ASSERT_TRUE(file.OpenReplace(path.c_str()));
    file.WriteLine("new");
    EXPECT_TRUE(file.Commit());
    EXPECT_FALSE(file.IsOpen());
    EXPECT_EQ(TempDir::Read(path), "new\r\n");
}

TEST(FileAtomic, BadTargetsFailAndALinksTargetIsReplaced) {
    TempDir dir;
    EXPECT_FALSE(WriteFileAtomic(dir.Path().c_str(), "x", 1));
    EXPECT_FALSE(WriteFileAtomic((dir / "no/such/folder/f").c_str(), "x", 1));
    EXPECT_FALSE(WriteFileAtomic("", "x", 1));
    EXPECT_FALSE(WriteFileAtomic((dir / "f").c_str(), nullptr, 1));
    EXPECT_FALSE(WriteFileAtomic((dir / "f").c_str(), "x", -1));
    EXPECT_TRUE(FilesIn(dir.Path()).empty());
    std::string real = dir.Write("real.ini", "old");
    std::string link = dir / "link.ini";
    std::filesystem::create_symlink(real, link);
    ASSERT_TRUE(WriteFileAtomic(link.c_str(), "new", 3));
    EXPECT_TRUE(std::filesystem::is_symlink(link));
    EXPECT_EQ(TempDir::Read(real), "new");
}
