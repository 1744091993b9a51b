#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "bench/CurlPost.h"

namespace orvane::bench {

/// Many posts on the multi interface, as a reasonable program does it: as many easy handles as connections,
/// each taking the next post as soon as it is done with one. Sends the header fields of the service's calls.
class CurlPosts {
 public:
  CurlPosts(std::uint16_t port, std::size_t connections);

  /// Posts `count` times; `body` makes the next body, `replied` is called with the reply. Throws
  /// std::runtime_error if there is none.
  void post(std::size_t count, std::string_view path, const std::function<std::string()>& body,
            const std::function<void(const std::string& reply)>& replied);

 private:
  struct Deleter {
    void operator()(CURLM* multi) const noexcept { curl_multi_cleanup(multi); }
  };
  struct Slot {
    explicit Slot(std::uint16_t port) : post(port) {}
    CurlPost post;
    std::string body;
  };

  std::unique_ptr<CURLM, Deleter> multi_;
  std::vector<std::unique_ptr<Slot>> slots_;
};

}  // namespace orvane::bench
