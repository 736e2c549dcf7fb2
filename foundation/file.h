// SFile: the one byte stream that every reader and writer of the program
// uses, over a file on disk (SFilePath) or over a block in memory (SFileMem),
// so the same format code runs on both. Files carry no error state: each
// operation answers with a count, a bool, or an empty result.
//
// Sizes and positions are signed 32-bit: a file is limited to 2 GB. Nothing
// here throws or asserts on bad input; a closed file reads as empty, and a
// count larger than the data is clipped.
#pragma once

#include <cstdint>

#include "foundation/string.h"

class SDigest; // incremental digest, foundation/hash.h

// Called by InflateBlocks before each block with the block's index (from 0)
// and the number of blocks; returning false stops the work.
using SFileProgress = bool (*)(int index, int count, void* context);

class SFile {
public:
    enum Kind { KIND_DISK = 0, KIND_MEMORY = 1 };

    SFile(const SFile&) = delete;
    SFile& operator=(const SFile&) = delete;

    // Helpers over Seek and GetPosition.
    void Rewind() { Seek(0); }
    void SeekEnd() { Seek(-1); }
    void Skip(int count);     // a position past the end means the end
    void SkipBack(int count); // stops at 0
    // Copies the source's bytes from its position, in blocks of 1,000 bytes;
    // a negative count means all that remains. Returns the bytes written.
    int AppendFrom(SFile* source, int count = -1);
    // Writes an embedded resource (see RegisterResource) at the position.
    // module is unused. False when the resource is unknown or not all written.
    bool WriteResource(const char* type, unsigned id, void* module = nullptr);

    // Compressed block stream, read from the position: a 32-bit block count,
    // then per block its uncompressed size (at most 100,000), its compressed
    // size (at most 110,012) and one zlib stream, all numbers little-endian.
    // Each block is inflated and written to target. Returns the bytes written,
    // 0 for a null target or when the progress callback says stop. A block
    // that fails to inflate writes nothing and the next one is tried; a size
    // beyond the limits or data cut short ends the work.
    int InflateBlocks(SFile* target, void* context = nullptr);
    void SetProgress(SFileProgress callback) { progress = callback; }

    int GetKind() const { return kind; }

    // The stream, in slot order.
    virtual ~SFile();
    virtual bool IsOpen() const { return handle != nullptr; }
    virtual void Close() = 0;
    // Digests of the whole content, whatever the position, which is kept.
    // GetCrc32 leaves crc untouched and gives false when the file is closed or
    // unreadable; the others then give the empty string. Hex is upper case.
    virtual bool GetCrc32(uint32_t& crc) = 0;
    virtual SString GetMd5() = 0;
    virtual SString GetSha1() = 0;
    virtual int WriteBytes(const void* buffer, int count); // Write
    // A negative count measures the text; no terminator or line end.
    virtual int WriteText(const char* text, int count = -1);
    // A count below 1 writes nothing. Returns the bytes the stream accepted.
    virtual int Write(const void* buffer, int count) = 0;
    virtual int WriteInt(int32_t value); // 4 bytes, little-endian
    // 2 bytes a character, low byte first, no terminator; a negative count
    // measures the text. Returns the bytes written.
    virtual int WriteWide(const char16_t* text, int count = -1);
    virtual int WriteLine(const char* text);        // the text, then "\r\n"
    virtual SString ReadText(int count = -1);       // negative: all that remains
    virtual int ReadBytes(void* buffer, int count); // Read
    // Clipped to what remains; a count below 1, or the end, gives 0.
    virtual int Read(void* buffer, int count) = 0;
    // Little-endian; 0 when nothing could be read (missing bytes count as 0).
    virtual int32_t ReadInt();
    // count in characters, negative: all that remains; low byte first.
    virtual SUniString ReadWide(int count = -1);
    // One line. Only the pair CR LF ends a line, or the end of the data, or
    // maxChars characters when maxChars is above 0. The two kinds differ by
    // design: on disk a lone CR or LF is dropped and only kept characters
    // count toward maxChars; in memory it stays in the text and every byte
    // consumed counts. Without keepBlanks, spaces and tabs are trimmed from
    // both sides. maxChars 0 gives "" and moves nothing. endedWithCrlf (may
    // be null) tells whether CR LF ended the line.
    virtual SString ReadLine(bool keepBlanks, int maxChars = -1, bool* endedWithCrlf = nullptr) = 0;
    // ReadLine, with "\r\n" appended when the line ended with CR LF.
    virtual SString ReadLineWithEnd(bool keepBlanks, int maxChars = -1);
    // Reads up to and past a zero byte (or to the end). Without keep, the
    // text is skipped and "" returned.
    virtual SString ReadZeroString(bool keep);
    // A negative position, or one past the end, means the end. Returns the
    // new position.
    virtual int Seek(int position) = 0;
    virtual int GetPosition() const = 0; // 0 when closed
    // Truncates or extends (new bytes are zero); a position past the new end
    // is pulled back to it on memory, and goes to the size on disk.
    virtual bool SetSize(int size) = 0;
    virtual int GetSize() const = 0;                    // 0 when closed
    virtual int GetRemaining() const;                   // size minus position, never below 0
    virtual bool IsEnd() const = 0;                     // a closed file counts as at the end
    virtual int FindText(const char* text, bool after); // FindBytes
    // Searches forward from the position. On success the position stands
    // just past the match and the result is that position when after is
    // true, else the match's start. A count below 1 gives -1 and moves
    // nothing. On disk the whole pattern must match, and -1 comes once fewer
    // than count bytes remain, the position left at the first start not
    // tried. In memory a pattern cut off by the end of the data counts as a
    // match, so the position may pass the end by the missing bytes; -1 comes
    // once the position reaches the end, and leaves it there.
    virtual int FindBytes(const void* buffer, int count, bool after) = 0;

protected:
    explicit SFile(int kind) : kind(kind) {}

    int kind;
    // The FILE* of SFilePath, the block of SFileMem; non-null means open.
    void* handle = nullptr;

private:
    SFileProgress progress = nullptr;
};

// A file on disk over a buffered stdio stream. Paths are UTF-8 with "/".
class SFilePath : public SFile {
public:
    SFilePath();
    // Opens at once; see Open.
    SFilePath(const char* path, bool write, bool create, bool read, bool shared);
    ~SFilePath() override;

    // Closes first. Modes: write+read+create "w+b" (truncates), write+read
    // "r+b", write+create "wb" (truncates), write alone "ab" (appends),
    // read alone "rb". Neither write nor read, an empty path or a folder
    // fails and leaves the object closed. shared is accepted and has no
    // effect (no share locks on this system).
    bool Open(const char* path, bool write, bool create, bool read, bool shared);
    // Closes first, creates a unique empty file in the system temp folder
    // ($TMPDIR or /tmp) and opens it "w+b". Close deletes it.
    bool OpenTemp();
    // Atomic replacement of a file the user owns: closes first, then opens a
    // new temporary file beside path (same folder), for writing and reading.
    // Its name is short and its own (see RemoveLeftoverTempFiles), so any
    // name that fits in the folder can be replaced.
    // Commit puts it in place of path; Close, a new Open or the destructor
    // without Commit deletes it and leaves any old file at path untouched.
    bool OpenReplace(const char* path);
    // Flushes, syncs to disk, gives the new file the old one's permissions
    // (or the usual ones for a new file, after umask), renames it over path
    // and closes. False, with the old file untouched, when any write failed
    // or a step fails. A symbolic link at path is followed: its target is
    // replaced. Only after OpenReplace.
    bool Commit();
    // Hands what is buffered to the system; false when that or any write
    // before it failed (a full disk shows here at the latest).
    bool Flush();
    // The name opened (the target for OpenReplace, the temp file's name for
    // OpenTemp).
    const SString& GetPath() const { return path; }

    void Close() override;
    bool GetCrc32(uint32_t& crc) override;
    SString GetMd5() override;
    SString GetSha1() override;
    int Write(const void* buffer, int count) override;
    int Read(void* buffer, int count) override;
    SString ReadLine(bool keepBlanks, int maxChars = -1, bool* endedWithCrlf = nullptr) override;
    int Seek(int position) override;
    int GetPosition() const override;
    bool SetSize(int size) override;
    int GetSize() const override;
    bool IsEnd() const override;
    int FindBytes(const void* buffer, int count, bool after) override;

private:
    enum LastOp { OP_NONE, OP_READ, OP_WRITE };
    // stdio needs a flush or seek between a write and a read on one stream.
    void PrepareFor(LastOp op);
    // Feeds the whole content to digest from position 0, restoring the
    // position; false when a block could not be read.
    bool Digest(SDigest& digest);

    SString path;     // the name opened
    SString tempPath; // set for OpenTemp and OpenReplace: deleted on Close
    bool isTemp = false;
    bool isReplace = false;
    bool failedWrite = false; // a write fell short: Commit refuses
    mutable LastOp lastOp = OP_NONE;
};

// A growable block in memory, owned. Open from construction: the block is
// allocated by the first write, load or Reset. Capacity for a size n is
// n + 1024 - (n mod 1024), so a multiple of 1,024 gains a full 1,024.
class SFileMem : public SFile {
public:
    SFileMem();
    // Loads an embedded resource (see RegisterResource).
    SFileMem(const char* type, unsigned id);
    SFileMem(SFileMem&& other) noexcept;
    SFileMem& operator=(SFileMem&& other) noexcept;
    ~SFileMem() override;

    // The internal resize: sets size to n (negative counts as 0) and the
    // capacity by the rule above, replacing the block when the capacity
    // changes. With keep, min(old size, n) bytes are carried over; added
    // bytes are zero. The position is pulled back to the new end. False when
    // memory runs out or n is too large for the rule.
    bool SetSize(int size, bool keep);
    // Allocates size bytes (contents zero) and rewinds.
    bool Reset(int size);
    // Whole-file load (replacing the content, position 0) and save. SaveFile
    // replaces the file atomically (WriteFileAtomic).
    bool LoadFile(const char* path);
    bool SaveFile(const char* path);
    // Replaces the content with an embedded resource, position 0. module is
    // unused.
    bool LoadResource(const char* type, unsigned id, void* module = nullptr);
    // Removes count bytes at the position; false when count < 1 or they
    // pass the end.
    bool RemoveBytes(int count);
    // Opens a gap of count zero bytes at the position, moving the position
    // past it when moveAfter; false when count < 1.
    bool InsertBytes(int count, bool moveAfter);
    // The block (null before the first allocation), and the block plus the
    // position. Valid until the next write or resize.
    char* GetData() { return static_cast<char*>(handle); }
    const char* GetData() const { return static_cast<const char*>(handle); }
    char* GetDataAtPosition();
    int GetCapacity() const { return capacity; }

    void Close() override;
    bool GetCrc32(uint32_t& crc) override;
    SString GetMd5() override;
    SString GetSha1() override;
    int Write(const void* buffer, int count) override;
    int Read(void* buffer, int count) override;
    SString ReadLine(bool keepBlanks, int maxChars = -1, bool* endedWithCrlf = nullptr) override;
    int Seek(int position) override;
    int GetPosition() const override { return position; }
    bool SetSize(int size) override;
    int GetSize() const override { return size; }
    bool IsEnd() const override { return position >= size; }
    int FindBytes(const void* buffer, int count, bool after) override;

private:
    int size = 0;
    int capacity = 0;
    int position = 0;
};

// Replaces the file at path with count bytes, atomically: a temporary file
// in the same folder is written, synced and renamed over path, keeping the
// old file's permissions (a new file gets 0666 less the umask). On failure
// the old file is untouched and no temporary file is left. A null data with
// a count of 0 writes an empty file.
bool WriteFileAtomic(const char* path, const void* data, int count);

// The permission bits a file replacing path gets: the old file's, or for a
// new file 0666 less the umask (read without changing it, so no other
// thread sees the umask move).
unsigned ReplacementFileMode(const char* path);

// Removes from folder the temporary files that atomic replacements left
// behind when their process was killed (each named ".melkora-" and six
// characters, and no longer locked by a live writer); files of a
// replacement still under way are left alone. Returns how many went.
int RemoveLeftoverTempFiles(const char* folder);

// Embedded resources: the build registers each numbered file (type
// "BINARY") before use; the data must live as long as the program.
// Registering the same type and id again replaces the entry. Thread-safe.
void RegisterResource(const char* type, unsigned id, const void* data, int size);
// False when unknown; data and size receive the registered block.
bool FindResourceData(const char* type, unsigned id, const void** data, int* size);
// Writes the whole resource into target through Write. module is unused.
bool ReadResource(void* module, const char* type, unsigned id, SFile* target);

// Digests of a block of bytes. Crc32 continues from crc (0 to start): the
// standard reflected CRC-32 (zlib's). The hex forms are upper case: 32
// digits for MD5, 40 for SHA-1. A null data or a negative count is empty.
uint32_t Crc32(const void* data, int count, uint32_t crc = 0);
SString Md5Hex(const void* data, int count);
SString Sha1Hex(const void* data, int count);
