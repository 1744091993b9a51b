#include "orvane/version/Orvane_vers.h"

// The build sets both from the project's version. A build without these definitions is of this version.
#ifndef ORVANE_VERSION_NUMBER
#define ORVANE_VERSION_NUMBER 1.0
#define ORVANE_VERSION_MAJOR "1"
#endif

const double OrvaneVersionNumber = ORVANE_VERSION_NUMBER;
const unsigned char OrvaneVersionString[] = "@(#)PROGRAM:Orvane  PROJECT:Orvane-" ORVANE_VERSION_MAJOR "\n";
