// A plug-in with every entry point that the tests ask for.

extern "C" {

__attribute__((visibility("default"))) int ProbeOpen(void) {
    return 1;
}

__attribute__((visibility("default"))) int ProbeRead(void) {
    return 2;
}

__attribute__((visibility("default"))) int ProbeClose(void) {
    return 3;
}
}
