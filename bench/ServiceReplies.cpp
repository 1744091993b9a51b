#include "bench/ServiceReplies.h"

#include <random>

namespace orvane::bench {

Bytes makePicture(std::size_t size, std::size_t number) {
  std::mt19937 random(static_cast<std::mt19937::result_type>(number));
  Bytes picture(size);
  for (std::uint8_t& byte : picture) byte = static_cast<std::uint8_t>(random());
  picture.at(0) = static_cast<std::uint8_t>(number);
  return picture;
}

bool isPicture(const Bytes& picture) {
  return !picture.empty() && picture[0] < pictureCount && picture == makePicture(picture.size(), picture[0]);
}

std::string pictureReply(const Bytes& picture) {
  std::string reply = R"({"code":0,"msg":"ok","data":[)";
  for (const std::uint8_t byte : picture) reply.append(std::to_string(byte)).push_back(',');
  reply.back() = ']';
  return reply + "}";
}

std::string tinyReply() {
  return R"({"code":0,"msg":"ok"})";
}

}  // namespace orvane::bench
