/* What a probe exports: a plug-in that lets vxmedia recognize one more format of media files.

   A probe is a shared library of any origin that needs nothing but this header. It exports the four
   functions below under exactly these names; one that is missing makes the program refuse it. The 1 in
   the names is the version of this interface.

   All texts that are returned are UTF-8 and stay valid as long as the library is loaded. The functions
   may be called by several threads at once. */

#pragma once

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* A file that is looked at. */
typedef struct vxmedia_source {
    void* context;
    uint64_t size; /* bytes */

    /* Copies up to `count` bytes that start at `position`, and returns how many there were. After 2 MiB
       of a file it returns 0. */
    size_t (*read)(void* context, uint64_t position, void* buffer, size_t count);
} vxmedia_source;

/* What the header of a file tells. All is 0 at first; a fact that the format does not have stays so. */
typedef struct vxmedia_facts {
    uint32_t width;  /* pixels */
    uint32_t height; /* pixels */
    uint32_t channels;
    uint32_t rate;             /* samples per second and channel */
    uint64_t frames;           /* samples of one channel */
    uint32_t frames_are_known; /* whether frames says anything */
    char detail[128];          /* in words, ended by a zero */
} vxmedia_facts;

/* Returns the name of the format, as tables show it. */
const char* vxmedia_probe1_format(void);

/* Returns the endings of file names that promise the format, separated by commas: "bmp,dib". */
const char* vxmedia_probe1_endings(void);

/* Returns nonzero when the content is of the format, by its first bytes. */
int vxmedia_probe1_recognize(const vxmedia_source* source);

/* Fills the facts from the header. Returns null, or the reason why the file is no such file. */
const char* vxmedia_probe1_read(const vxmedia_source* source, vxmedia_facts* facts);

#ifdef __cplusplus
}
#endif
