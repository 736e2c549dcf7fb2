// The resources this layer embeds (files of pages/resources/, named by
// number): 187 the description pages' style sheet, 188 their heading icon
// (a 32 by 28 GIF), 166 the Book's style sheet.
#pragma once

inline constexpr unsigned RESOURCE_DESCRIPTION_STYLE = 187;
inline constexpr unsigned RESOURCE_HEADING_ICON = 188;
inline constexpr unsigned RESOURCE_BOOK_STYLE = 166;

// Registers them as BINARY resources; safe to call from any thread, any
// number of times. Every operation of this layer calls it before a lookup.
void EnsurePagesResources();
