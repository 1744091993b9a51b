#pragma once

/// Marks what the library exports; everything else is hidden.
#define ORVANE_API __attribute__((visibility("default")))
