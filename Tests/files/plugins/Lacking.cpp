// A plug-in that lacks two of the entry points that the tests ask for.

extern "C" __attribute__((visibility("default"))) int ProbeOpen(void) {
    return 1;
}
