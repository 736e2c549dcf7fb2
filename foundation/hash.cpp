// Digests over zlib's crc32() and GLib's GChecksum (MD5, SHA-1): both
// libraries are already dependencies of the foundation, so no digest code of
// our own is needed.
#include "foundation/hash.h"

#include <glib.h>
#include <zlib.h>

#include "foundation/file.h"

namespace {

// GLib gives lower-case hex; the program shows and stores upper case.
SString UpperHex(const char* hex) {
    SString result(hex);
    result.MakeUpper();
    return result;
}

SString OneShot(GChecksumType type, const void* data, int count) {
    if (data == nullptr || count < 0) {
        return SString();
    }
    gchar* hex = g_compute_checksum_for_data(type, static_cast<const guchar*>(data),
                                             static_cast<gsize>(count));
    SString result = UpperHex(hex);
    g_free(hex);
    return result;
}

} // namespace

SDigest::SDigest(Kind kind) : kind(kind) {
    if (kind == DIGEST_MD5) {
        checksum = g_checksum_new(G_CHECKSUM_MD5);
    } else if (kind == DIGEST_SHA1) {
        checksum = g_checksum_new(G_CHECKSUM_SHA1);
    }
}

SDigest::~SDigest() {
    if (checksum != nullptr) {
        g_checksum_free(checksum);
    }
}

void SDigest::Update(const void* data, int count) {
    if (data == nullptr || count < 1) {
        return;
    }
    if (kind == DIGEST_CRC32) {
        crc = static_cast<uint32_t>(
            crc32(crc, static_cast<const Bytef*>(data), static_cast<uInt>(count)));
    } else if (checksum != nullptr) {
        g_checksum_update(checksum, static_cast<const guchar*>(data), count);
    }
}

SString SDigest::GetHex() {
    if (checksum == nullptr) {
        return SString();
    }
    return UpperHex(g_checksum_get_string(checksum));
}

uint32_t Crc32(const void* data, int count, uint32_t crc) {
    if (data == nullptr || count < 1) {
        return crc;
    }
    return static_cast<uint32_t>(
        crc32(crc, static_cast<const Bytef*>(data), static_cast<uInt>(count)));
}

SString Md5Hex(const void* data, int count) {
    return OneShot(G_CHECKSUM_MD5, data, count);
}

SString Sha1Hex(const void* data, int count) {
    return OneShot(G_CHECKSUM_SHA1, data, count);
}
