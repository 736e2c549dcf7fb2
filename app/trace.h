// Milestones of the desktop program on stderr, one per line, for tests and
// benchmarks: "ready MS", "folder MS PATH", "open PATH", "end PATH",
// "stats MS", "descriptions MS" (the description window opened) and
// "page PATH" (a description page shown in the web pane). On only when
// MELKORA_TRACE=1; MS counts from the start of the process.
#pragma once

bool IsTraceOn();
// Milliseconds since the process started.
long long TraceMilliseconds();
// Prints event, then the milliseconds when withTime is set, then text when
// given.
void Trace(const char* event, bool withTime, const char* text = nullptr);
