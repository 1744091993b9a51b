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

void checkKnownReals() {
  constexpr double greatest = std::numeric_limits<double>::max();
  constexpr double least = std::numeric_limits<double>::denorm_min();
  const std::tuple<double, const char*, const char*> rows[] = {
      {-0.0, "-0", "-0"},
      {0.1, "0.1", "0.1"},
      {0.1 + 0.2, "0.30000000000000004", "0.3"},
      {-1.0 / 3, "-0.3333333333333333", "-0.3333333333333333"},
      {0x1p53 - 1, "9007199254740991", "9007199254740991"},
      {0x1p53, "9007199254740992", "9007199254740992"},
      {0x1p53 + 2, "9007199254740994", "9007199254740994"},
      {1e15, "1e+15", "1000000000000000"},
      {greatest, "1.7976931348623157e+308", "1.797693134862316e+308"},
      {least, "4.94065645841247e-324", "4.940656458412465e-324"}};
  for (const auto& [real, text, rounded] : rows) {
    EXPECT_EQ(writeReal(real), text);
    EXPECT_EQ(writeReal(real, 16), rounded);
  }

  const std::string zeros(20'000, '0');
  const std::pair<std::string, std::optional<double>> texts[] = {
      {"-12.5e-1", -1.25},
      {"0." + zeros + "125e20001", 1.25},
      {"125" + zeros + "e-20002", 1.25},
      {"0e999999999999999999999", 0},
      {"1.5e-99999999999999999999", 0},
      {"1.5e99999999999999999999", std::nullopt},
      {"-1e309", std::nullopt},
      // Just below and above the middle between the greatest double and the next power of two, between zero
      // and the least double, and between two integers.
      {"1.797693134862315807e308", greatest},
      {"1.797693134862315808e308", std::nullopt},
      {"2.4703282292062327e-324", 0},
      {"2.4703282292062328e-324", least},
      {"9007199254740993", 0x1p53},
      {"9007199254740993." + zeros + "1", 0x1p53 + 2}};
  for (const auto& [text, real] : texts) EXPECT_EQ(readReal(text), real) << text.substr(0, 50);
}

void checkRandomReals() {
  std::mt19937_64 random(11);
  for (std::uint64_t round = 0; round < 20'000; ++round) {
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

TEST(RealText, WritesWhatReadsBack) {
  checkKnownReals();
  checkRandomReals();
}

TEST(RealText, DoesTheSameWithADecimalPointOfTwoBytes) {
  const std::string folder = testing::TempDir() + "locale-" + std::to_string(::getpid());
  const auto run = [](const std::string& command) { return std::system(command.c_str()) == 0; };
  if (run("mkdir " + folder + " && localedef -i ps_AF -f UTF-8 " + folder + "/ps_AF"))
    ::setenv("LOCPATH", folder.c_str(), 1);
  const bool isSet = std::setlocale(LC_NUMERIC, "ps_AF") || std::setlocale(LC_NUMERIC, "ps_AF.UTF-8");
  run("rm -r " + folder);
  ASSERT_TRUE(isSet) << "localedef or the source of the locale ps_AF is missing.";
  EXPECT_GT(std::string(std::localeconv()->decimal_point).size(), 1U);
  checkKnownReals();
  checkRandomReals();
  std::setlocale(LC_NUMERIC, "C");
}

}  // namespace
}  // namespace orvane::test
