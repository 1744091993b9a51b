#include "bench/Service.h"

#include <random>

namespace orvane::bench {

std::string pictureReply(const Bytes& picture) {
  std::string reply = R"({"code":0,"msg":"ok","data":[)";
  for (const std::uint8_t byte : picture) reply.append(std::to_string(byte)).push_back(',');
  reply.back() = ']';
  return reply + "}";
}

std::vector<Bytes> makePictures(std::size_t size) {
  std::mt19937 random;
  std::vector<Bytes> pictures(1'280'000 / size, Bytes(size));
  for (Bytes& picture : pictures) {
    for (std::uint8_t& byte : picture) byte = static_cast<std::uint8_t>(random());
  }
  return pictures;
}

}  // namespace orvane::bench
