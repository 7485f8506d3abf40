#pragma once

/// @file
/// What leaves the shared library of the standalone platform.

/// Marks what libTqZelPlatform.so exports besides the platform interface itself.
#define TQZEL_STANDALONE_EXPORT __attribute__((visibility("default")))
