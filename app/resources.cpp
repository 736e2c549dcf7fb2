#include "app/resources.h"

#include "panels/resources.h"

#include <mutex>

// Generated from app/resources/ at build time.
void RegisterAppResources();

void EnsureAppResources() {
    static std::once_flag once;
    std::call_once(once, RegisterAppResources);
    EnsurePanelsResources();
}
