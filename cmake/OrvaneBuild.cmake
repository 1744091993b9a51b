# Says how every target of the project is compiled.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

if(PROJECT_IS_TOP_LEVEL AND NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release CACHE STRING "" FORCE)
endif()

# Sets the repository as include root, turns on the warnings, and hides symbols by default.
function(orvane_compile_options target)
  target_include_directories(${target} PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>)
  target_compile_options(${target} PRIVATE -ffunction-sections -fdata-sections
    -Wall -Wextra -Wpedantic -Wconversion
    $<$<BOOL:${ORVANE_WERROR}>:-Werror>)
  set_target_properties(${target} PROPERTIES CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
endfunction()

# Most of the library and of the tools waits for the network, so it is compiled for size. The files that
# work on text or pictures override this.
set(ORVANE_SIZE_OPTIONS $<$<CONFIG:Release>:-Os>)

# The shared library is a tenth smaller when the compiler sees it as a whole.
set(ORVANE_WHOLE_PROGRAM OFF)
if(BUILD_SHARED_LIBS)
  include(CheckIPOSupported)
  check_ipo_supported(RESULT ORVANE_WHOLE_PROGRAM OUTPUT ignored LANGUAGES CXX)
endif()
