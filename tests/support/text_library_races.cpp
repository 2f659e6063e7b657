// Pango looks for fonts on a thread of its own. ThreadSanitizer sees neither the locks of that library nor
// those of the libraries below it, and takes what they hand over for races.
extern "C" const char* __tsan_default_suppressions() {
    return "race:libglib-2.0.so\n"
           "race:libcairo.so\n"
           "race:libpangoft2-1.0.so\n"
           "race:libharfbuzz.so\n"
           "race:libfontconfig.so\n";
}
