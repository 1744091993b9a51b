// Sends the same request as startOrvane.cpp does, by libcurl alone, and waits until it is ended.

#include <curl/curl.h>
#include <string>

int main(int, char** arguments) {
  curl_global_init(CURL_GLOBAL_DEFAULT);
  CURL* const handle = curl_easy_init();
  curl_slist* headers = curl_slist_append(nullptr, "Content-Type: application/json");
  headers = curl_slist_append(headers, "XRAPI-VERSION: 1.0");
  headers = curl_slist_append(headers, "XRAPI-DEVICE-TYPE: 1");
  const std::string url = std::string("http://127.0.0.1:") + arguments[1] + "/tenant/getVerifyCode";
  curl_easy_setopt(handle, CURLOPT_URL, url.c_str());
  curl_easy_setopt(handle, CURLOPT_HTTPHEADER, headers);
  curl_easy_setopt(handle, CURLOPT_POSTFIELDS, R"({"captcha":"x7Kp","mobile":"13800138000"})");
  curl_easy_perform(handle);
}
