// Cover search without a window: the sources a folder's cover is looked for
// on the web, the readers of their replies, and the bounded downloads.
//
// Four sources, each a base address in the settings: an image-search page
// scraped for its result links (off unless an address is set, since only
// a page of the old result form can be read), MusicBrainz release search
// with the pictures of the Cover Art Archive, the iTunes Search API and
// Deezer's album search. Each reply becomes a list of candidates: the full
// picture's address, a thumbnail's address and a label.
//
// Every request is blocking, bounded in time and size, sends the program's
// own User-Agent and can be cancelled from another thread; the window runs
// it on a worker thread.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "foundation/string.h"

class SImage;

enum PCoverSource {
    COVER_SOURCE_SCRAPER = 0,
    COVER_SOURCE_MUSICBRAINZ = 1,
    COVER_SOURCE_ITUNES = 2,
    COVER_SOURCE_DEEZER = 3,
    COVER_SOURCE_COUNT = 4,
};

// Settings values that replace the default addresses.
inline constexpr const char* COVER_SCRAPER_URL_VALUE = "CoverSearchUrl";
inline constexpr const char* COVER_MUSICBRAINZ_URL_VALUE = "MusicBrainzUrl";
inline constexpr const char* COVER_ART_ARCHIVE_URL_VALUE = "CoverArtArchiveUrl";
inline constexpr const char* COVER_ITUNES_URL_VALUE = "ITunesSearchUrl";
inline constexpr const char* COVER_DEEZER_URL_VALUE = "DeezerUrl";

inline constexpr const char* DEFAULT_MUSICBRAINZ_URL = "https://musicbrainz.org";
inline constexpr const char* DEFAULT_COVER_ART_ARCHIVE_URL = "https://coverartarchive.org";
inline constexpr const char* DEFAULT_ITUNES_URL = "https://itunes.apple.com";
inline constexpr const char* DEFAULT_DEEZER_URL = "https://api.deezer.com";
inline constexpr const char* COVER_SEARCH_HOMEPAGE = "https://melkora.org";

struct PCoverCandidate {
    SString imageUrl; // the full picture
    SString thumbUrl; // a small one for the result window
    SString label;    // what the result is: "Artist - Album", or the page's size
    int source = COVER_SOURCE_SCRAPER;
    // The size the reply gives for the full picture; 0 when it gives none.
    int width = 0;
    int height = 0;
};

struct PCoverSearchSettings {
    SString scraperUrl; // "" turns the scraper off
    SString musicBrainzUrl = DEFAULT_MUSICBRAINZ_URL;
    SString coverArtUrl = DEFAULT_COVER_ART_ARCHIVE_URL;
    SString itunesUrl = DEFAULT_ITUNES_URL;
    SString deezerUrl = DEFAULT_DEEZER_URL;
    SString userAgent; // "" gives CoverSearchUserAgent of this build
    int connectMilliseconds = 10000;
    int stallSeconds = 10;
    int totalMilliseconds = 30000;
    int64_t replyLimitBytes = 4 * 1024 * 1024;  // a result page or JSON reply
    int64_t imageLimitBytes = 16 * 1024 * 1024; // a downloaded picture
};

// The settings from stored values: read gives the stored text of a value
// name (COVER_*_URL_VALUE), "" when none is stored. A source without a
// stored address keeps its default; the scraper has none and stays off.
using PSettingReader = SString (*)(const char* name);
PCoverSearchSettings ReadCoverSearchSettings(PSettingReader read);

// The largest number of candidates taken from one reply.
constexpr int COVER_MAX_RESULTS = 50;

// "Melkora Browser/<version> (+<homepage>)": the program names itself and
// where to reach its makers, as MusicBrainz asks of its clients.
SString CoverSearchUserAgent(const char* version);
// Every byte outside ASCII letters, digits and "-_.~" as "%XX" with capital
// hexadecimal digits, so a query goes out byte by byte.
SString PercentEncode(const char* text);

// The request of each source for query; start is the offset of the first
// result asked (the next page of "More"). The iTunes search has no offset:
// PCoverSearch asks it for the first results only.
SString MakeScraperRequest(const char* base, const char* query, int start);
SString MakeMusicBrainzRequest(const char* base, const char* query, int start = 0);
SString MakeItunesRequest(const char* base, const char* query);
SString MakeDeezerRequest(const char* base, const char* query, int start = 0);

// Readers of the replies: each appends what it finds to out (at most
// COVER_MAX_RESULTS) and gives the number appended; damaged or foreign
// text gives 0. Addresses that are not http or https are dropped.
//
// The scraper reads result links "<a href=/imgres?imgurl=...&w=...&h=...>"
// each followed by its thumbnail on a ".google.com/images?q=tbn:" address,
// stopping at the first result that does not fit.
int ReadScrapedPage(const char* page, size_t size, std::vector<PCoverCandidate>* out);
// A release search reply ({"releases": [...]}); the pictures are the Cover
// Art Archive's front images of each release under coverArtBase.
int ReadMusicBrainzReleases(const char* json, size_t size, const char* coverArtBase,
                            std::vector<PCoverCandidate>* out);
// An iTunes search reply ({"results": [...]}) of albums.
int ReadItunesAlbums(const char* json, size_t size, std::vector<PCoverCandidate>* out);
// A Deezer album search reply ({"data": [...]}).
int ReadDeezerAlbums(const char* json, size_t size, std::vector<PCoverCandidate>* out);

// Result of PCoverSearch::Search when the reply could not be had.
constexpr int COVER_FETCH_FAILED = -1;

class PCoverSearch {
public:
    explicit PCoverSearch(const PCoverSearchSettings& settings);

    const PCoverSearchSettings& GetSettings() const { return settings; }
    // The scraper needs its address; the others are on with any address.
    bool IsEnabled(int source) const;
    // Asks source for query and appends its candidates to out: their
    // number (0 when the reply holds none), or COVER_FETCH_FAILED when the
    // source is off, the request failed, went over its limits or was
    // cancelled. A start past 0 asks for the results after the first start
    // ones; the iTunes search, which cannot, then gives 0 without asking.
    int Search(int source, const char* query, int start, std::vector<PCoverCandidate>* out);
    // The body at url into body, within limitBytes; false on any failure.
    bool Fetch(const char* url, int64_t limitBytes, std::string* body);
    // Downloads and decodes a picture. False when it cannot be had, is not a
    // picture, or is larger than the image limit in bytes or 8,000 pixels
    // on a side.
    bool FetchImage(const char* url, SImage* image);

    // Ends the transfers running and refuses new ones until Reset; from
    // any thread.
    void Cancel() { cancelled.store(true); }
    void Reset() { cancelled.store(false); }
    bool IsCancelled() const { return cancelled.load(); }

private:
    PCoverSearchSettings settings;
    std::atomic<bool> cancelled{false};
};
