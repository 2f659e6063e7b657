// What the sanitizers cannot see.
extern "C" {
const char* __tsan_default_suppressions();
const char* __lsan_default_suppressions();
}

// Pango looks for fonts on a thread of its own, and the text libraries lock by system calls that are not
// announced to ThreadSanitizer. All connections of a process share one hash key inside libsystemd, which
// renews it without a lock; a program has one connection, only tests have several.
extern "C" const char* __tsan_default_suppressions() {
    return "race:libpangoft2-1.0\n"
           "race:libpango-1.0\n"
           "race:libharfbuzz\n"
           "race:libfontconfig\n"
           "race:libcairo\n"
           "race:libglib-2.0\n"
           "race:getrandom\n";
}

// That thread may still be at work when a test ends, with fonts that nobody else knows yet.
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libfontconfig\n";
}
