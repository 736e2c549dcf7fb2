// The "play" job of melkora-cli: plays files in order through the
// program's player, on a hidden window of the headless platform, and prints
// each event of the queue as it happens.
#pragma once

#include <cstdio>

constexpr const char* PLAY_USAGE =
    "usage: melkora-cli play PATH... [--repeat] [--shuffle] [--sink fake]\n";

// arguments: those after the job's name. Returns the exit status: 0 when
// the queue played to its end, 1 when nothing could be played, 2 on a usage
// error.
int RunPlayJob(int argc, char** argv);
