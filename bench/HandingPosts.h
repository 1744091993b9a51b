#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <thread>

#include "bench/CurlPosts.h"
#include "orvane/platform/MainQueue.h"

namespace orvane::bench {

/// Posts by CurlPosts on a thread of its own. Each body is handed to that thread, and each reply to a main
/// queue: what an application does whose main thread must not wait, and what the library does for it.
class HandingPosts {
 public:
  HandingPosts(std::uint16_t port, std::size_t connections) : posts_(port, connections) {}
  HandingPosts(const HandingPosts&) = delete;
  HandingPosts& operator=(const HandingPosts&) = delete;
  ~HandingPosts();

  /// Like CurlPosts::post(), but makes the bodies on the calling thread. `replied` is called on the other.
  void post(std::size_t count, std::string_view path, const std::function<std::string()>& body,
            const std::function<void(const std::string& reply)>& replied);

 private:
  CurlPosts posts_;
  MainQueue jobs_;
  MainQueue replies_;
  std::thread thread_{[this] { jobs_.run(); }};
};

}  // namespace orvane::bench
