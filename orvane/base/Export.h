#pragma once

#if __cplusplus < 202002L
// A missing header stops the compiler. After an #error it would go on, with hundreds of errors.
#include <Orvane needs C++20, as with -std=c++20>
#endif

/// Marks a declaration that the library exports. Everything else is hidden.
#define ORVANE_API __attribute__((visibility("default")))
