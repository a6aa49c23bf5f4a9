// Part of every program that makes HEIC files: x265, with which libheif encodes, never releases its parameters, and
// LeakSanitizer would end the program for it.
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libx265\n";
}
