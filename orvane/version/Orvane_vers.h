#pragma once

#include "orvane/base/Export.h"

extern "C" {

/// The library's version as a number: 1.0.
ORVANE_API extern const double OrvaneVersionNumber;

/// The library's build record: a string that names program, project and project version and ends with a line
/// feed.
ORVANE_API extern const unsigned char OrvaneVersionString[];
}
