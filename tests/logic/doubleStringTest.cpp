#include <array>
#include <bit>
#include <charconv>
#include <clocale>
#include <cmath>
#include <cstdlib>
#include <gtest/gtest.h>
#include <random>
#include <unistd.h>

#include "orvane/base/doubleString.h"

namespace orvane::test {
namespace {

/// Returns what the standard library writes with that many digits, in the C locale always.
std::string written(double number, int digits) {
  std::array<char, 64> text;
  const auto form = std::chars_format::general;
  return {text.data(), std::to_chars(text.data(), text.data() + text.size(), number, form, digits).ptr};
}

bool readsBack(double number, const std::string& text) {
  double read = 0;
  std::from_chars(text.data(), text.data() + text.size(), read);
  return read == number;
}

void checkRandomDoubles() {
  std::mt19937_64 random(11);
  for (std::uint64_t round = 0; round < 4096; ++round) {  // All exponents and signs.
    // Random bits, with many denormals; numbers near powers of two; integers of any size; few digits before
    // or after the point.
    const std::uint64_t bits = random();
    for (const double number :
         {std::bit_cast<double>(bits), std::bit_cast<double>(bits >> bits % 64),
          std::bit_cast<double>((round << 52) + bits % 5 - 2), static_cast<double>(bits >> bits % 64) * 1000,
          static_cast<double>(bits % 10'000) / std::pow(10, round % 9)}) {
      if (!std::isfinite(number)) continue;
      int digits = 15;
      while (digits < 17 && !readsBack(number, written(number, digits))) ++digits;
      const std::string text = writeDouble(number);
      ASSERT_EQ(text, written(number, digits));
      ASSERT_EQ(readDouble(text), number);
      ASSERT_EQ(writeDouble(number, 16), written(number, 16));
    }
  }
}

TEST(DoubleString, ReadsBackAlsoWithADecimalPointOfTwoBytes) {
  checkRandomDoubles();
  const std::string folder = testing::TempDir() + "locale-" + std::to_string(::getpid());
  const auto run = [](const std::string& command) { return std::system(command.c_str()) == 0; };
  if (run("mkdir " + folder + " && localedef -i ps_AF -f UTF-8 " + folder + "/ps_AF"))
    ::setenv("LOCPATH", folder.c_str(), 1);
  const bool isSet = std::setlocale(LC_NUMERIC, "ps_AF") || std::setlocale(LC_NUMERIC, "ps_AF.UTF-8");
  run("rm -r " + folder);
  ASSERT_TRUE(isSet) << "localedef or the source of the locale ps_AF is missing.";
  EXPECT_GT(std::string(std::localeconv()->decimal_point).size(), 1U);
  checkRandomDoubles();
  std::setlocale(LC_NUMERIC, "C");
}

}  // namespace
}  // namespace orvane::test
