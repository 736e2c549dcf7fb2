#include "pages/resources.h"

#include <mutex>

// Generated from pages/resources/ at build time.
void RegisterPagesResources();

void EnsurePagesResources() {
    static std::once_flag once;
    std::call_once(once, RegisterPagesResources);
}
