// Says for which of Apple's systems the sources are compiled. The stand-ins are those of an iOS device.
#pragma once

#if __has_include_next(<TargetConditionals.h>)
// The C headers that tests/darwin uses always say macOS.
#include_next <TargetConditionals.h>
#undef TARGET_OS_IPHONE
#undef TARGET_OS_OSX
#endif

#ifdef __ENVIRONMENT_MAC_OS_X_VERSION_MIN_REQUIRED__
#define TARGET_OS_IPHONE 0
#define TARGET_OS_OSX 1
#else
#define TARGET_OS_IPHONE 1
#define TARGET_OS_OSX 0
#endif
