#pragma once

/// Marks what libvx exports; everything else in the library is hidden.
#define VX_EXPORT __attribute__((visibility("default")))
