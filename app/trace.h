// Milestones of the desktop program on stderr, one per line, for tests and
// benchmarks: "ready MS", "folder MS PATH", "open PATH", "end PATH",
// "stats MS", "descriptions MS" (the description window opened),
// "page PATH" (a description page shown in the web pane); of the Book:
// "book-progress N" (each tenth of the way, in thousandths), "book MS PATH"
// or "book-failed REASON", "book-window PATH", "queue COUNT PATH" (a song
// added from the Book), "book-sent ZIP" or "book-not-sent ZIP" (xdg-email
// ended), "zip-removed ZIP"; "help PAGE"; of the cover search:
// "cover-search QUERY" and "cover PATH" (the cover saved); of the strip:
// "strip reserved H", "strip above H", "strip refused", "strip off".
// On only when MELKORA_TRACE=1; MS counts from the start of the process.
#pragma once

bool IsTraceOn();
// Milliseconds since the process started.
long long TraceMilliseconds();
// Prints event, then the milliseconds when withTime is set, then text when
// given.
void Trace(const char* event, bool withTime, const char* text = nullptr);
