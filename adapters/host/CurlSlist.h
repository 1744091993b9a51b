#pragma once

#include <curl/curl.h>
#include <memory>
#include <new>
#include <string>

namespace orvane {

/// Owns a list of strings for curl.
class CurlSlist {
 public:
  curl_slist* get() const noexcept { return list_.get(); }
  void append(const std::string& line) {
    curl_slist* longer = curl_slist_append(list_.get(), line.c_str());
    if (!longer) throw std::bad_alloc();
    static_cast<void>(list_.release());
    list_.reset(longer);
  }

 private:
  struct Deleter {
    void operator()(curl_slist* list) const noexcept { curl_slist_free_all(list); }
  };
  std::unique_ptr<curl_slist, Deleter> list_;
};

}  // namespace orvane
