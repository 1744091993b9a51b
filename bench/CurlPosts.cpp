#include "bench/CurlPosts.h"

#include <stdexcept>

namespace orvane::bench {

CurlPosts::CurlPosts(std::uint16_t port, std::size_t connections) : multi_(curl_multi_init()) {
  for (std::size_t i = 0; i < connections; ++i) {
    slots_.push_back(std::make_unique<Slot>(port));
    curl_easy_setopt(slots_.back()->post.handle(), CURLOPT_PRIVATE, slots_.back().get());
  }
}

void CurlPosts::post(std::size_t count, std::string_view path, const std::function<std::string()>& body,
                     const std::function<void(const std::string&)>& replied) {
  std::size_t started = 0;
  std::size_t finished = 0;
  const auto startNext = [&](Slot& slot) {
    if (started == count) return;
    ++started;
    slot.body = body();
    slot.post.prepare(path, slot.body);
    curl_multi_add_handle(multi_.get(), slot.post.handle());
  };
  for (const auto& slot : slots_) startNext(*slot);
  while (finished < count) {
    int running = 0;
    curl_multi_perform(multi_.get(), &running);
    int left = 0;
    bool finishedSome = false;
    while (const CURLMsg* message = curl_multi_info_read(multi_.get(), &left)) {
      if (message->data.result != CURLE_OK) throw std::runtime_error("curl: no reply");
      CURL* const handle = message->easy_handle;
      Slot* slot = nullptr;
      curl_easy_getinfo(handle, CURLINFO_PRIVATE, &slot);
      curl_multi_remove_handle(multi_.get(), handle);
      replied(slot->post.reply());
      ++finished;
      finishedSome = true;
      startNext(*slot);
    }
    if (!finishedSome && finished < count) curl_multi_poll(multi_.get(), nullptr, 0, 1000, nullptr);
  }
}

}  // namespace orvane::bench
