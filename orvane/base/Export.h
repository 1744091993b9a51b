#pragma once

/// Marks a declaration that the library exports. Everything else is hidden.
#define ORVANE_API __attribute__((visibility("default")))
