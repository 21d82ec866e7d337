#pragma once

#include <libteskTools/Types.h>

VX_C_BEGIN

/// The state of an RC4 stream: the permutation and its two indexes.
typedef struct vxRC4Key {
    unsigned char theState[256];  ///< the permutation
    unsigned char x;              ///< index that every byte moves by one
    unsigned char y;              ///< index that the permutation moves
} vxRC4Key;

/// Prepares a stream from `aLength` bytes of key, by RC4's key schedule.
///
/// An empty or null key leaves the identity permutation. RC4 hides a text from a glance; it does
/// not protect it.
///
/// Threads:  any; one at a time for one state.
VX_API void vxRC4_PrepareKey(const void* aKey, size_t aLength, vxRC4Key* aState);

/// Enciphers or deciphers `aLength` bytes in place and moves the stream on: the operation is its
/// own inverse.
///
/// Threads:  any; one at a time for one state.
VX_API void vxRC4_Process(void* aBytes, size_t aLength, vxRC4Key* aState);

VX_C_END
