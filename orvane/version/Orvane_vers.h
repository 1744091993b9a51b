#pragma once

#include "orvane/base/Export.h"

extern "C" {

/// The library's version as a number.
ORVANE_API extern const double OrvaneVersionNumber;

/// The library's build record: program, project and project version, and a line feed.
ORVANE_API extern const unsigned char OrvaneVersionString[];
}
