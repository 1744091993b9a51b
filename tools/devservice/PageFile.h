#pragma once

#include <span>
#include <string_view>

namespace devservice {

/// A file of the folder page/, compiled into the program.
struct PageFile {
  std::string_view path;  ///< In the URL.
  std::string_view contentType;
  std::string_view content;
};

/// Returns all files of the page.
std::span<const PageFile> pageFiles();

}  // namespace devservice
