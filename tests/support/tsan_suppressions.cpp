// What ThreadSanitizer cannot see. Pango looks for fonts on a thread of its own, and the text libraries lock
// by system calls that are not announced to it. All connections of a process share one hash key inside
// libsystemd, which renews it without a lock; a program has one connection, only tests have several.
extern "C" const char* __tsan_default_suppressions();

extern "C" const char* __tsan_default_suppressions() {
    return "race:libpangoft2-1.0\n"
           "race:libpango-1.0\n"
           "race:libharfbuzz\n"
           "race:libfontconfig\n"
           "race:libcairo\n"
           "race:libglib-2.0\n"
           "race:getrandom\n";
}
