#include "app/data_files.h"

#include <climits>
#include <cstdlib>

#include "foundation/disk.h"
#include "toolkit/wnd_app.h"

SString GetDataFolder() {
    SString folder = GetProgramFolder() + "../share/melkora/";
    char resolved[PATH_MAX];
    if (realpath(folder.c_str(), resolved) == nullptr) {
        return folder;
    }
    return SString(resolved) + "/";
}

SString FindDataFile(const char* name) {
    SString path = GetDataFolder() + name;
    SDisk disk;
    return disk.IsFile(path.c_str()) ? path : SString("");
}
