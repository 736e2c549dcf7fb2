// SDigest: a CRC-32, MD5 or SHA-1 fed piece by piece, for contents too large
// to hold at once (the digests of SFilePath). The one-block helpers
// Crc32, Md5Hex and Sha1Hex are declared in foundation/file.h.
#pragma once

#include <cstdint>

#include "foundation/string.h"

struct _GChecksum;

class SDigest {
public:
    enum Kind { DIGEST_CRC32, DIGEST_MD5, DIGEST_SHA1 };

    explicit SDigest(Kind kind);
    ~SDigest();
    SDigest(const SDigest&) = delete;
    SDigest& operator=(const SDigest&) = delete;

    // A null data or a count below 1 adds nothing.
    void Update(const void* data, int count);
    // The CRC-32 so far (0 for the other kinds).
    uint32_t GetCrc32() const { return crc; }
    // Upper-case hex of the MD5 or SHA-1 so far ("" for the CRC-32 kind).
    // Further updates are ignored once it has been asked for.
    SString GetHex();

private:
    Kind kind;
    uint32_t crc = 0;
    _GChecksum* checksum = nullptr;
};
