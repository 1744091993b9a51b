#include <gtest/gtest.h>

#include "orvane/json/readByteRun.h"

namespace orvane::test {
namespace {

TEST(ReadByteRun, StopsBeforeAnythingElseAndNotMuchEarlier) {
  std::string numbers;
  for (int value = 0; value < 256; ++value) numbers += std::to_string(value) + ",";
  const std::string after(80, '0');
  for (const std::string stranger : {"", " ", "256,", "-1,", "00,", "1.5,", ",", "\xB1,"}) {
    const std::string text = "[" + numbers + stranger + after;
    std::size_t position = 1;
    Bytes bytes = {7};
    readByteRun(text, position, bytes);
    EXPECT_LE(position, 1 + numbers.size()) << stranger;
    EXPECT_GE(position, 1 + numbers.size() - 70) << stranger;
    std::string read = "[";
    for (std::size_t i = 1; i < bytes.size(); ++i) read += std::to_string(bytes[i]) + ",";
    EXPECT_EQ(read, text.substr(0, position));
  }
}

}  // namespace
}  // namespace orvane::test
