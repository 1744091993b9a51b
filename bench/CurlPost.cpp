#include "bench/CurlPost.h"

#include <initializer_list>

#include "orvane/orvane.h"

namespace orvane::bench {
namespace {

curl_slist* makeList(std::initializer_list<std::string> strings) {
  curl_slist* list = nullptr;
  for (const std::string& string : strings) list = curl_slist_append(list, string.c_str());
  return list;
}

}  // namespace

CurlPost::CurlPost(std::uint16_t port)
    : headers_(makeList({"Content-Type: application/json", "XRAPI-VERSION: 1.0", "XRAPI-DEVICE-TYPE: 1"}),
               curl_slist_free_all),
      reroute_(makeList({std::string(serviceHost()) + ":80:127.0.0.1:" + std::to_string(port)}),
               curl_slist_free_all) {
  const auto set = [this](auto option, auto value) { curl_easy_setopt(handle(), option, value); };
  set(CURLOPT_NOSIGNAL, 1L);
  set(CURLOPT_PROXY, "");
  set(CURLOPT_CONNECT_TO, reroute_.get());
  set(CURLOPT_ACCEPT_ENCODING, "");
  set(CURLOPT_COOKIEFILE, "");
  set(CURLOPT_USERAGENT, "bench");
  set(CURLOPT_HTTPHEADER, headers_.get());
  set(CURLOPT_POST, 1L);
  set(CURLOPT_WRITEDATA, &reply_);
  set(
      CURLOPT_WRITEFUNCTION, +[](char* bytes, std::size_t one, std::size_t size, void* reply) {
        static_cast<std::string*>(reply)->append(bytes, one * size);
        return one * size;
      });
}

void CurlPost::prepare(std::string_view path, const std::string& body) {
  reply_.clear();
  curl_easy_setopt(handle(), CURLOPT_URL, std::string(serviceBaseURL()).append(path).c_str());
  curl_easy_setopt(handle(), CURLOPT_POSTFIELDSIZE, static_cast<long>(body.size()));
  curl_easy_setopt(handle(), CURLOPT_POSTFIELDS, body.data());
}

}  // namespace orvane::bench
