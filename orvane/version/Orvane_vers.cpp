#include "orvane/version/Orvane_vers.h"

const double OrvaneVersionNumber = 1.0;
const unsigned char OrvaneVersionString[] = "@(#)PROGRAM:Orvane  PROJECT:Orvane-1\n";
