// Linked into the test programs that run GStreamer. GLib, which GStreamer
// stands on, is built without frame pointers, so the fast unwinder stops
// at g_malloc and a leak report cannot be matched against the suppressions
// of tests/support/lsan.supp; these programs unwind allocations the slow,
// complete way. Options given in ASAN_OPTIONS still come after these.
extern "C" const char* __asan_default_options() {
    return "fast_unwind_on_malloc=0";
}
