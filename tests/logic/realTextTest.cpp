#include <array>
#include <bit>
#include <charconv>
#include <clocale>
#include <cmath>
#include <cstdlib>
#include <gtest/gtest.h>
#include <random>
#include <unistd.h>

#include "orvane/base/realText.h"

namespace orvane::test {
namespace {

/// Returns what the standard library writes with that many digits, in the C locale always.
std::string written(double real, int digits) {
  std::array<char, 64> text;
  const auto form = std::chars_format::general;
  return {text.data(), std::to_chars(text.data(), text.data() + text.size(), real, form, digits).ptr};
}

bool readsBack(double real, const std::string& text) {
  double read = 0;
  std::from_chars(text.data(), text.data() + text.size(), read);
  return read == real;
}

void checkRandomReals() {
  std::mt19937_64 random(11);
  for (std::uint64_t round = 0; round < 4096; ++round) {  // All exponents and signs.
    // Random bits, with many denormals; numbers near powers of two; integers of any size; few digits before
    // or after the point.
    const std::uint64_t bits = random();
    for (const double real :
         {std::bit_cast<double>(bits), std::bit_cast<double>(bits >> bits % 64),
          std::bit_cast<double>((round << 52) + bits % 5 - 2), static_cast<double>(bits >> bits % 64) * 1000,
          static_cast<double>(bits % 10'000) / std::pow(10, round % 9)}) {
      if (!std::isfinite(real)) continue;
      int digits = 15;
      while (digits < 17 && !readsBack(real, written(real, digits))) ++digits;
      const std::string text = writeReal(real);
      ASSERT_EQ(text, written(real, digits));
      ASSERT_EQ(readReal(text), real);
      ASSERT_EQ(writeReal(real, 16), written(real, 16));
    }
  }
}

TEST(RealText, ReadsBackAlsoWithADecimalPointOfTwoBytes) {
  checkRandomReals();
  const std::string folder = testing::TempDir() + "locale-" + std::to_string(::getpid());
  const auto run = [](const std::string& command) { return std::system(command.c_str()) == 0; };
  if (run("mkdir " + folder + " && localedef -i ps_AF -f UTF-8 " + folder + "/ps_AF"))
    ::setenv("LOCPATH", folder.c_str(), 1);
  const bool isSet = std::setlocale(LC_NUMERIC, "ps_AF") || std::setlocale(LC_NUMERIC, "ps_AF.UTF-8");
  run("rm -r " + folder);
  ASSERT_TRUE(isSet) << "localedef or the source of the locale ps_AF is missing.";
  EXPECT_GT(std::string(std::localeconv()->decimal_point).size(), 1U);
  checkRandomReals();
  std::setlocale(LC_NUMERIC, "C");
}

}  // namespace
}  // namespace orvane::test
