// The "demo" job of melkora-cli: makes a small collection to try the
// program on (the one `make run` opens): genres, artists and albums with
// drawn covers, descriptions with marks, a site link, a playlist, track
// texts, and short songs and a video encoded by GStreamer as it runs.
#pragma once

constexpr const char* DEMO_USAGE = "usage: melkora-cli demo DIR\n";

// arguments: those after the job's name. Returns the exit status: 0 when
// the collection was made, 1 when DIR exists and is not an empty folder or
// a file cannot be made (one line on stderr), 2 on a usage error.
int RunDemoJob(int argc, char** argv);
