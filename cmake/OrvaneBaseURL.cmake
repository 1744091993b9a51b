# The service's address is compiled into the library. The default's host is under a reserved top-level domain,
# so that a build without this setting can never send a phone number to a stranger.

set(ORVANE_BASE_URL "http://identity.orvane.example" CACHE STRING
    "Base URL of the identity service: http://, a host name, no port, no trailing slash")

if(NOT ORVANE_BASE_URL MATCHES "^http://[A-Za-z0-9]([A-Za-z0-9.-]*[A-Za-z0-9])?$"
   OR ORVANE_BASE_URL MATCHES "\\.\\.")
  message(FATAL_ERROR "ORVANE_BASE_URL is \"${ORVANE_BASE_URL}\"; "
                      "it must be http:// and a host name, without a port, a path or a trailing slash.")
endif()
