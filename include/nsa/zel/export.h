#pragma once

/// Marks what libTqZelLogbook.so exports; everything else in it is hidden.
#define TQZEL_EXPORT __attribute__((visibility("default")))
