// The resources this layer embeds (files of pages/resources/, named by
// number): 187 the description pages' style sheet, 188 their heading icon
// (a 32 by 28 GIF), 166 the Book's style sheet, 130 the default cover of a
// folder (150 by 150), and the description window's toolbar pictures
// (48 by 48). The drawings (.svg) are rendered to PNG at build time; the
// table of every numbered resource is docs/resources.md.
#pragma once

inline constexpr unsigned RESOURCE_DESCRIPTION_STYLE = 187;
inline constexpr unsigned RESOURCE_HEADING_ICON = 188;
inline constexpr unsigned RESOURCE_BOOK_STYLE = 166;
inline constexpr unsigned RESOURCE_DEFAULT_COVER = 130;

// Description window toolbar, in button order.
inline constexpr unsigned RESOURCE_DESC_PAGE = 191;
inline constexpr unsigned RESOURCE_DESC_ALL_PAGES = 192;
inline constexpr unsigned RESOURCE_DESC_GROUP = 194;
inline constexpr unsigned RESOURCE_DESC_GENRE = 193;
inline constexpr unsigned RESOURCE_DESC_NAME = 196;
inline constexpr unsigned RESOURCE_DESC_TITLE = 189;
inline constexpr unsigned RESOURCE_DESC_QUOTE = 197;
inline constexpr unsigned RESOURCE_DESC_IMAGE = 195;
inline constexpr unsigned RESOURCE_DESC_BOLD = 190;

// Registers them as BINARY resources; safe to call from any thread, any
// number of times. Every operation of this layer calls it before a lookup.
void EnsurePagesResources();
