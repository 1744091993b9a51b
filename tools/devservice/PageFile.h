#pragma once

#include <span>
#include <string_view>

namespace devservice {

/// A file of the folder page/, as it was when the program was built.
struct PageFile {
  std::string_view path;  ///< Under which it is served.
  std::string_view contentType;
  std::string_view content;
};

std::span<const PageFile> pageFiles();

}  // namespace devservice
