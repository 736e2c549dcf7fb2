// The program's data files (the welcome page, the user guide): they lie in
// "share/melkora/" beside the "bin/" folder of the executable, which holds
// both in the build tree and under the install prefix.
#pragma once

#include "foundation/string.h"

// The folder of the data files, ending in "/".
SString GetDataFolder();
// The full path of a data file; "" when it is not there.
SString FindDataFile(const char* name);
