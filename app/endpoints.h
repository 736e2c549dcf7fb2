// The web addresses the program opens, in one place: each has a default
// here and can be replaced by a value of the settings key (tests point them
// at a server on 127.0.0.1).
#pragma once

#include "foundation/string.h"

// The lyrics search: the track's name and " lyrics" are appended, escaped.
inline constexpr const char* ENDPOINT_LYRICS = "LyricsSearchUrl";
inline constexpr const char* DEFAULT_LYRICS_URL = "https://duckduckgo.com/?q=";
// The page that tells how to support the program.
inline constexpr const char* ENDPOINT_DONATION = "DonationUrl";
inline constexpr const char* DEFAULT_DONATION_URL = "https://melkora.org/support";

// The stored address of that name, or the default when none is stored.
SString GetEndpoint(const char* name, const char* fallback);
// text with every byte outside letters, digits and "-_." escaped, blanks
// as "+".
SString EscapeQuery(const char* text);
