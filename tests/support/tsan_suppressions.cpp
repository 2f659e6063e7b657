// What ThreadSanitizer cannot see: Pango looks for fonts on a thread of its own, and these libraries lock by
// system calls that are not announced to it.
extern "C" const char* __tsan_default_suppressions();

extern "C" const char* __tsan_default_suppressions() {
    return "race:libpangoft2-1.0\n"
           "race:libpango-1.0\n"
           "race:libfontconfig\n"
           "race:libcairo\n"
           "race:libglib-2.0\n";
}
