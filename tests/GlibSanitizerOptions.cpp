// GLib gives up its first table of names on purpose when it outgrows it. The table was made while
// the library was loaded, so the loader is on its stack; only the slow unwinder sees that far.

extern "C" {

__attribute__((visibility("default"))) const char* __asan_default_options()
{
    return "fast_unwind_on_malloc=0";
}

__attribute__((visibility("default"))) const char* __lsan_default_suppressions()
{
    return "leak:ld-linux\n";
}
}
