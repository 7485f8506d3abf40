#pragma once

/// @file
/// What leaves the shared library.

/// Marks what libTqZelLogbook.so exports; everything else in it is hidden.
#define TQZEL_EXPORT __attribute__((visibility("default")))

/// Marks members of an exported class that only the library itself calls.
#define TQZEL_INTERNAL __attribute__((visibility("hidden")))
