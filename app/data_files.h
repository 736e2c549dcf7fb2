// The program's data files (the welcome and help pages): in the folder
// share/melkora beside the folder of the running program, so that a build
// (build/bin/melkora, build/share/melkora) and an installed tree
// (PREFIX/bin/melkora, PREFIX/share/melkora) both find theirs.
// MELKORA_DATA_DIR, when set, names the folder instead (tests).
#pragma once

#include "foundation/string.h"

// The folder, ending in "/"; empty when the program's own place is unknown.
SString GetDataFolder();
// The full path of the data file name (a path relative to the folder);
// empty when it is not a regular file there, or when name is empty,
// absolute or holds a ".." part.
SString FindDataFile(const char* name);
