#include "panels/resources.h"

#include "pages/resources.h"

#include <mutex>

// Generated from panels/resources/ at build time.
void RegisterPanelsResources();

void EnsurePanelsResources() {
    static std::once_flag once;
    std::call_once(once, RegisterPanelsResources);
    EnsurePagesResources();
}
