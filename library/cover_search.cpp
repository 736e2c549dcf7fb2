#include "library/cover_search.h"

#include <string>
#include <string_view>

#include "foundation/file.h"
#include "foundation/image.h"
#include "foundation/network.h"
#include "library/json_reader.h"

#ifndef MELKORA_VERSION
#define MELKORA_VERSION "0"
#endif

namespace {

// Result links of the old image-search page, and where their thumbnails sit.
constexpr std::string_view RESULT_MARK = "<a href=/imgres?imgurl=";
constexpr size_t RESULT_SKIP = 16; // from the mark to "imgurl="
constexpr std::string_view THUMB_MARK = ".google.com/images?q=tbn:";
constexpr size_t THUMB_LEAD = 11; // the scheme and short host before THUMB_MARK

// The largest side a page may tell for a picture.
constexpr long COVER_MAX_SIDE_TOLD = 1000000;

// Candidates asked of each JSON source.
constexpr int REQUEST_LIMIT = 25;

bool IsWebAddress(std::string_view url) {
    auto startsWith = [&](std::string_view lead) {
        if (url.size() <= lead.size()) {
            return false;
        }
        for (size_t i = 0; i < lead.size(); ++i) {
            char c = url[i];
            if (c >= 'A' && c <= 'Z') {
                c = static_cast<char>(c - 'A' + 'a');
            }
            if (c != lead[i]) {
                return false;
            }
        }
        return true;
    };
    if (!startsWith("http://") && !startsWith("https://")) {
        return false;
    }
    for (char c : url) {
        if (static_cast<unsigned char>(c) <= ' ' || c == 0x7F) {
            return false; // a blank or control byte would split the request
        }
    }
    return true;
}

SString ToSString(std::string_view text) {
    SString result("");
    if (text.empty()) {
        return result;
    }
    result.Assign(text.data(), static_cast<int>(text.size()));
    return result;
}

// The leading decimal digits of text as a number, 0 when there are none;
// larger values count as COVER_MAX_SIDE_TOLD.
int ReadCount(std::string_view text) {
    long value = 0;
    for (char c : text) {
        if (c < '0' || c > '9') {
            break;
        }
        value = value * 10 + (c - '0');
        if (value > COVER_MAX_SIDE_TOLD) {
            return COVER_MAX_SIDE_TOLD;
        }
    }
    return static_cast<int>(value);
}

// "base" + rest, without doubling the "/" between them.
SString Join(const char* base, const char* rest) {
    SString address(base != nullptr ? base : "");
    while (!address.IsEmpty() && address.GetAt(address.GetLength() - 1) == '/') {
        address = address.Left(address.GetLength() - 1);
    }
    address += rest;
    return address;
}

// "Artist - Title", or whichever of them there is.
SString MakeLabel(const std::string& artist, const std::string& title) {
    std::string label = artist;
    if (!artist.empty() && !title.empty()) {
        label += " - ";
    }
    label += title;
    return ToSString(label);
}

// A MusicBrainz identifier: 36 characters of hexadecimal digits and "-".
bool IsMusicBrainzId(const std::string& id) {
    if (id.size() != 36) {
        return false;
    }
    for (size_t i = 0; i < id.size(); ++i) {
        char c = id[i];
        bool dash = i == 8 || i == 13 || i == 18 || i == 23;
        bool hex = (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
        if (dash ? c != '-' : !hex) {
            return false;
        }
    }
    return true;
}

// The array of that name in a JSON object reply; null when the reply is
// none.
const PJsonValue* ReplyArray(const PJsonValue& reply, const char* name) {
    const PJsonValue* array = reply.Get(name);
    return array != nullptr && array->IsArray() ? array : nullptr;
}

bool Full(int added) {
    return added >= COVER_MAX_RESULTS;
}

// SNetwork collecting the body in memory, bounded by the size limit.
class PBodyNetwork : public SNetwork {
public:
    std::string body;

    int OnDownloadBlock(unsigned, unsigned, unsigned count, const void* data, SFile*,
                        void*) override {
        body.append(static_cast<const char*>(data), count);
        return NET_BLOCK_SKIP;
    }
};

} // namespace

SString CoverSearchUserAgent(const char* version) {
    SString agent("Melkora Browser/");
    agent += version != nullptr && version[0] != 0 ? version : MELKORA_VERSION;
    agent += " (+";
    agent += COVER_SEARCH_HOMEPAGE;
    agent += ")";
    return agent;
}

PCoverSearchSettings ReadCoverSearchSettings(PSettingReader read) {
    PCoverSearchSettings settings;
    if (read == nullptr) {
        return settings;
    }
    struct {
        const char* name;
        SString* address;
    } values[] = {
        {COVER_SCRAPER_URL_VALUE, &settings.scraperUrl},
        {COVER_MUSICBRAINZ_URL_VALUE, &settings.musicBrainzUrl},
        {COVER_ART_ARCHIVE_URL_VALUE, &settings.coverArtUrl},
        {COVER_ITUNES_URL_VALUE, &settings.itunesUrl},
        {COVER_DEEZER_URL_VALUE, &settings.deezerUrl},
    };
    for (const auto& value : values) {
        SString stored = read(value.name);
        stored.Trim();
        if (!stored.IsEmpty()) {
            *value.address = stored;
        }
    }
    return settings;
}

SString PercentEncode(const char* text) {
    static const char HEX[] = "0123456789ABCDEF";
    std::string out;
    for (const char* c = text != nullptr ? text : ""; *c != 0; ++c) {
        unsigned char b = static_cast<unsigned char>(*c);
        if ((b >= 'a' && b <= 'z') || (b >= 'A' && b <= 'Z') || (b >= '0' && b <= '9') ||
            b == '-' || b == '_' || b == '.' || b == '~') {
            out.push_back(static_cast<char>(b));
        } else {
            out.push_back('%');
            out.push_back(HEX[b >> 4]);
            out.push_back(HEX[b & 15]);
        }
    }
    return ToSString(out);
}

SString MakeScraperRequest(const char* base, const char* query, int start) {
    SString address = Join(base, "/images?hl=en&safe=off&q=");
    address += PercentEncode(query);
    address += "&start=";
    address += SString::FromInt(start < 0 ? 0 : start);
    return address;
}

SString MakeMusicBrainzRequest(const char* base, const char* query, int start) {
    SString address = Join(base, "/ws/2/release/?fmt=json&limit=");
    address += SString::FromInt(REQUEST_LIMIT);
    if (start > 0) {
        address += "&offset=";
        address += SString::FromInt(start);
    }
    address += "&query=";
    address += PercentEncode(query);
    return address;
}

SString MakeItunesRequest(const char* base, const char* query) {
    SString address = Join(base, "/search?media=music&entity=album&limit=");
    address += SString::FromInt(REQUEST_LIMIT);
    address += "&term=";
    address += PercentEncode(query);
    return address;
}

SString MakeDeezerRequest(const char* base, const char* query, int start) {
    SString address = Join(base, "/search/album?limit=");
    address += SString::FromInt(REQUEST_LIMIT);
    if (start > 0) {
        address += "&index=";
        address += SString::FromInt(start);
    }
    address += "&q=";
    address += PercentEncode(query);
    return address;
}

int ReadScrapedPage(const char* page, size_t size, std::vector<PCoverCandidate>* out) {
    if (page == nullptr || out == nullptr) {
        return 0;
    }
    std::string_view text(page, size);
    size_t p = 0;
    int added = 0;
    while (p < text.size() && !Full(added)) {
        size_t mark = text.find(RESULT_MARK, p);
        if (mark == std::string_view::npos) {
            break;
        }
        size_t fields = mark + RESULT_SKIP;
        size_t close = text.find('>', fields);
        if (close == std::string_view::npos) {
            break;
        }
        p = close;
        std::string_view link = text.substr(fields, close - fields);
        std::string_view imageUrl;
        std::string_view width;
        std::string_view height;
        bool anyItem = false;
        size_t start = 0;
        while (start <= link.size()) {
            size_t amp = link.find('&', start);
            std::string_view item =
                link.substr(start, amp == std::string_view::npos ? link.npos : amp - start);
            if (!item.empty()) {
                anyItem = true;
                size_t equals = item.find('=');
                std::string_view key = item.substr(0, equals);
                std::string_view value =
                    equals == std::string_view::npos ? std::string_view() : item.substr(equals + 1);
                if (key == "imgurl") {
                    imageUrl = value;
                } else if (key == "w") {
                    width = value;
                } else if (key == "h") {
                    height = value;
                }
            }
            if (amp == std::string_view::npos) {
                break;
            }
            start = amp + 1;
        }
        if (!anyItem || imageUrl.empty()) {
            break;
        }
        size_t thumbMark = text.find(THUMB_MARK, p);
        if (thumbMark == std::string_view::npos) {
            break;
        }
        size_t blank = text.find(' ', thumbMark + THUMB_MARK.size());
        if (blank == std::string_view::npos) {
            break;
        }
        p = blank;
        size_t thumbStart = thumbMark >= THUMB_LEAD ? thumbMark - THUMB_LEAD : 0;
        std::string_view thumbUrl = text.substr(thumbStart, blank - thumbStart);
        if (!IsWebAddress(imageUrl)) {
            continue; // a result the program would not fetch
        }
        PCoverCandidate candidate;
        candidate.source = COVER_SOURCE_SCRAPER;
        candidate.imageUrl = ToSString(imageUrl);
        candidate.thumbUrl = IsWebAddress(thumbUrl) ? ToSString(thumbUrl) : SString("");
        candidate.width = ReadCount(width);
        candidate.height = ReadCount(height);
        candidate.label = SString::FromInt(candidate.width);
        candidate.label += " x ";
        candidate.label += SString::FromInt(candidate.height);
        out->push_back(std::move(candidate));
        ++added;
    }
    return added;
}

int ReadMusicBrainzReleases(const char* json, size_t size, const char* coverArtBase,
                            std::vector<PCoverCandidate>* out) {
    PJsonValue reply;
    if (out == nullptr || !ReadJson(json, size, &reply)) {
        return 0;
    }
    const PJsonValue* releases = ReplyArray(reply, "releases");
    if (releases == nullptr) {
        return 0;
    }
    int added = 0;
    for (const PJsonValue& release : releases->items) {
        if (Full(added)) {
            break;
        }
        const std::string& id = release.GetString("id");
        if (!IsMusicBrainzId(id)) {
            continue;
        }
        std::string artist;
        const PJsonValue* credits = release.Get("artist-credit");
        if (credits != nullptr && credits->IsArray()) {
            for (const PJsonValue& credit : credits->items) {
                artist += credit.GetString("name");
                artist += credit.GetString("joinphrase");
            }
        }
        SString image = Join(coverArtBase, "/release/");
        image += id.c_str();
        image += "/front";
        if (!IsWebAddress(std::string_view(image.c_str(), image.GetLength()))) {
            return added; // the archive's address itself is unusable
        }
        PCoverCandidate candidate;
        candidate.source = COVER_SOURCE_MUSICBRAINZ;
        candidate.thumbUrl = image;
        candidate.thumbUrl += "-250";
        candidate.imageUrl = image;
        candidate.label = MakeLabel(artist, release.GetString("title"));
        out->push_back(std::move(candidate));
        ++added;
    }
    return added;
}

int ReadItunesAlbums(const char* json, size_t size, std::vector<PCoverCandidate>* out) {
    PJsonValue reply;
    if (out == nullptr || !ReadJson(json, size, &reply)) {
        return 0;
    }
    const PJsonValue* results = ReplyArray(reply, "results");
    if (results == nullptr) {
        return 0;
    }
    int added = 0;
    for (const PJsonValue& album : results->items) {
        if (Full(added)) {
            break;
        }
        const std::string& artwork = album.GetString("artworkUrl100");
        if (!IsWebAddress(artwork)) {
            continue;
        }
        PCoverCandidate candidate;
        candidate.source = COVER_SOURCE_ITUNES;
        candidate.thumbUrl = ToSString(artwork);
        // The artwork's address names its size; a larger one is served at
        // the same address with another size in it.
        std::string large = artwork;
        size_t size100 = large.rfind("/100x100");
        if (size100 != std::string::npos) {
            large.replace(size100, 8, "/600x600");
            candidate.width = 600;
            candidate.height = 600;
        } else {
            candidate.width = 100;
            candidate.height = 100;
        }
        candidate.imageUrl = ToSString(large);
        candidate.label =
            MakeLabel(album.GetString("artistName"), album.GetString("collectionName"));
        out->push_back(std::move(candidate));
        ++added;
    }
    return added;
}

int ReadDeezerAlbums(const char* json, size_t size, std::vector<PCoverCandidate>* out) {
    PJsonValue reply;
    if (out == nullptr || !ReadJson(json, size, &reply)) {
        return 0;
    }
    const PJsonValue* albums = ReplyArray(reply, "data");
    if (albums == nullptr) {
        return 0;
    }
    // The picture sizes of an album, largest first, with their sides.
    static const struct {
        const char* name;
        int side;
    } SIZES[] = {
        {"cover_xl", 1000}, {"cover_big", 500}, {"cover_medium", 250}, {"cover_small", 56}};
    int added = 0;
    for (const PJsonValue& album : albums->items) {
        if (Full(added)) {
            break;
        }
        PCoverCandidate candidate;
        candidate.source = COVER_SOURCE_DEEZER;
        for (const auto& size : SIZES) {
            const std::string& url = album.GetString(size.name);
            if (!IsWebAddress(url)) {
                continue;
            }
            if (candidate.imageUrl.IsEmpty()) {
                candidate.imageUrl = ToSString(url);
                candidate.width = size.side;
                candidate.height = size.side;
            }
            if (size.side >= 120 || candidate.thumbUrl.IsEmpty()) {
                candidate.thumbUrl = ToSString(url); // the smallest of at least 120
            }
        }
        if (candidate.imageUrl.IsEmpty()) {
            continue;
        }
        std::string artist;
        const PJsonValue* performer = album.Get("artist");
        if (performer != nullptr) {
            artist = performer->GetString("name");
        }
        candidate.label = MakeLabel(artist, album.GetString("title"));
        out->push_back(std::move(candidate));
        ++added;
    }
    return added;
}

PCoverSearch::PCoverSearch(const PCoverSearchSettings& settings) : settings(settings) {
    if (this->settings.userAgent.IsEmpty()) {
        this->settings.userAgent = CoverSearchUserAgent(nullptr);
    }
}

bool PCoverSearch::IsEnabled(int source) const {
    switch (source) {
    case COVER_SOURCE_SCRAPER:
        return !settings.scraperUrl.IsEmpty();
    case COVER_SOURCE_MUSICBRAINZ:
        return !settings.musicBrainzUrl.IsEmpty();
    case COVER_SOURCE_ITUNES:
        return !settings.itunesUrl.IsEmpty();
    case COVER_SOURCE_DEEZER:
        return !settings.deezerUrl.IsEmpty();
    default:
        return false;
    }
}

bool PCoverSearch::Fetch(const char* url, int64_t limitBytes, std::string* body) {
    if (body == nullptr || url == nullptr || !IsWebAddress(url) || cancelled.load()) {
        return false;
    }
    PBodyNetwork network;
    network.SetLimits(settings.connectMilliseconds, settings.stallSeconds,
                      settings.totalMilliseconds, limitBytes);
    network.SetUserAgent(settings.userAgent.c_str());
    network.SetCancelFlag(&cancelled);
    SFileMem unused; // every block is kept in the body instead
    bool ok = network.Download(&unused, url, nullptr, 64 * 1024);
    if (!ok || cancelled.load() || static_cast<int64_t>(network.body.size()) > limitBytes) {
        return false;
    }
    *body = std::move(network.body);
    return true;
}

int PCoverSearch::Search(int source, const char* query, int start,
                         std::vector<PCoverCandidate>* out) {
    if (out == nullptr || !IsEnabled(source)) {
        return COVER_FETCH_FAILED;
    }
    SString request;
    switch (source) {
    case COVER_SOURCE_SCRAPER:
        request = MakeScraperRequest(settings.scraperUrl.c_str(), query, start);
        break;
    case COVER_SOURCE_MUSICBRAINZ:
        request = MakeMusicBrainzRequest(settings.musicBrainzUrl.c_str(), query, start);
        break;
    case COVER_SOURCE_ITUNES:
        if (start > 0) {
            return 0; // no offset: its first results were all it has
        }
        request = MakeItunesRequest(settings.itunesUrl.c_str(), query);
        break;
    default:
        request = MakeDeezerRequest(settings.deezerUrl.c_str(), query, start);
        break;
    }
    std::string body;
    if (!Fetch(request.c_str(), settings.replyLimitBytes, &body)) {
        return COVER_FETCH_FAILED;
    }
    switch (source) {
    case COVER_SOURCE_SCRAPER:
        return ReadScrapedPage(body.data(), body.size(), out);
    case COVER_SOURCE_MUSICBRAINZ:
        return ReadMusicBrainzReleases(body.data(), body.size(), settings.coverArtUrl.c_str(), out);
    case COVER_SOURCE_ITUNES:
        return ReadItunesAlbums(body.data(), body.size(), out);
    default:
        return ReadDeezerAlbums(body.data(), body.size(), out);
    }
}

bool PCoverSearch::FetchImage(const char* url, SImage* image) {
    if (image == nullptr) {
        return false;
    }
    image->Empty();
    std::string body;
    if (!Fetch(url, settings.imageLimitBytes, &body) || body.empty() ||
        body.size() > static_cast<size_t>(INT32_MAX)) {
        return false;
    }
    SFileMem file;
    if (file.Write(body.data(), static_cast<int>(body.size())) != static_cast<int>(body.size())) {
        return false;
    }
    file.Rewind();
    if (!image->Load(&file) || image->GetWidth() > IMAGE_MAX_SIDE ||
        image->GetHeight() > IMAGE_MAX_SIDE) {
        image->Empty();
        return false;
    }
    return true;
}
