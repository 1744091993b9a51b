#include "orvane/json/readByteRun.h"

#include <algorithm>
#include <array>
#include <bit>

// A picture is tens of thousands of numbers of one to three digits. A loop over the digits is slow: the
// processor guesses where each number ends, and a wrong guess takes longer than reading the number. So
// nothing here is decided digit by digit. The text "12,7,255," is read like this:
//
//   1. Each of 64 characters becomes a bit, which says whether it is a comma: 001010001, the first one left.
//   2. The bits say how far it is to each comma: 2, 1 and 3 characters.
//   3. The low four bits of a digit are its value, and those of a comma are 0xC. So three characters make the
//      index of a table: 0x12C for "12,", 0x7C2 for "7,2", 0x255 for "255".
//   4. The table has the number and how many digits it takes: 12 takes 2, 7 takes 1, 255 takes 3. The text is
//      right if its comma is that far away.
//
// Eight characters make one word, so that one operation works on all eight. On machines of either byte order
// the first character is in the lowest bits.

namespace orvane {
namespace {

constexpr int wordSize = 8;
constexpr int blockSize = 64;

std::uint64_t wordAt(const char* characters) {
  std::array<char, wordSize> bytes;
  std::copy_n(characters, wordSize, bytes.begin());
  if constexpr (std::endian::native == std::endian::big) std::reverse(bytes.begin(), bytes.end());
  return std::bit_cast<std::uint64_t>(bytes);
}

/// Returns a bit for each character of a block, the lowest for the first: 1 for a comma. Returns 0 if there
/// is anything but commas (0x2C) and characters from '0' (0x30) to '?' (0x3F).
std::uint64_t commasAt(const char* block) {
  constexpr std::uint64_t each = 0x0101010101010101;  // Times a byte: that byte in all eight places.
  std::uint64_t commas = 0;
  std::uint64_t unexpected = 0;
  for (int at = 0; at < blockSize; at += wordSize) {
    // Turns a comma into 0x00, and '0' to '?' into 0x10 to 0x1F. So the bit 0x10 tells them apart.
    const std::uint64_t word = wordAt(block + at) ^ ',' * each;
    const std::uint64_t ones = ~word >> 4 & each;  // 0x01 for each comma, 0x00 for each digit.
    // Another character has a bit above 0x10, or a bit below it where 0x10 is missing.
    unexpected |= word & (0xE0 * each | 0x0F * ones);
    // Moves the eight ones side by side. "12,7,255" has 0x0000000100010000. The factor has the bits 7, 14 and
    // so on to 56, so the product is the sum of that word shifted by each. Its highest byte is 0b00010100.
    commas |= (ones * 0x0102040810204080 >> 56) << at;
  }
  return unexpected == 0 ? commas : 0;
}

struct Number {
  std::uint8_t value;
  std::uint8_t digits;
};

constexpr std::array<Number, 0x1000> numbers = [] {
  std::array<Number, 0x1000> made;
  made.fill({0, blockSize});  // Not a number, because no comma is so far away.
  for (unsigned value = 0; value < 256; ++value) {
    const auto byte = static_cast<std::uint8_t>(value);
    const unsigned ones = value % 10;
    const unsigned tens = value / 10 % 10;
    if (value > 99) {
      made[value / 100 << 8 | tens << 4 | ones] = {byte, 3};
    } else if (value > 9) {
      made[tens << 8 | ones << 4 | 0xC] = {byte, 2};
    } else {
      for (unsigned any = 0; any < 16; ++any) made[ones << 8 | 0xC << 4 | any] = {byte, 1};
    }
  }
  return made;
}();

Number numberAt(const char* characters) {
  // "12," is 0x2C3231 as a word, and 0x0C0201 by its low halves. The product is the sum of that shifted by
  // 28, 16 and 4, which leaves 0x12C at the top of 32 bits.
  const auto halves = static_cast<std::uint32_t>(wordAt(characters)) & 0x0F0F0F;
  return numbers[halves * 0x10010010 >> 20];
}

}  // namespace

void readByteRun(std::string_view text, std::size_t& position, Bytes& bytes) {
  const char* at = text.data() + position;
  const char* const end = text.data() + text.size();
  // The word of the last number may begin at the last character of the block.
  while (end - at >= blockSize + wordSize - 1) {
    const char* const block = at;
    std::array<std::uint8_t, blockSize> values;
    std::size_t count = 0;
    for (std::uint64_t commas = commasAt(block); commas != 0; commas &= commas - 1) {
      const char* const comma = block + std::countr_zero(commas);
      const Number number = numberAt(at);
      if (comma - at != number.digits) break;
      values[count++] = number.value;
      at = comma + 1;
    }
    if (count == 0) break;
    bytes.insert(bytes.end(), values.begin(), values.begin() + count);
  }
  position = static_cast<std::size_t>(at - text.data());
}

}  // namespace orvane
