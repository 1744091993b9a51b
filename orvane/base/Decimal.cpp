#include "orvane/base/Decimal.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>

// The method is Raffaello Giulietti's: "The Schubfach way to render doubles".

namespace orvane {
namespace {

/// A power of ten times a power of two, rounded down to 128 bits with the highest one set, plus one in the
/// lowest.
struct Significand {
  std::uint64_t high = 0;
  std::uint64_t low = 0;
};

/// A power of five times a power of two, from 1/2 to 1. Holds the bits after the binary point, the lowest
/// limb first.
class Power {
 public:
  constexpr void multiplyByFive() {
    std::uint64_t carry = 0;
    for (std::uint32_t& limb : limbs_) {
      carry += std::uint64_t{limb} * 5;
      limb = static_cast<std::uint32_t>(carry);
      carry >>= 32;
    }
    const int excess = 64 - std::countl_zero(carry);
    for (std::size_t at = size; at-- > 0;) {
      const std::uint64_t both = carry << 32 | limbs_[at];
      carry = limbs_[at];
      limbs_[at] = static_cast<std::uint32_t>(both >> excess);
    }
  }

  constexpr void divideByFive() {
    std::uint64_t remainder = 0;
    for (std::size_t at = size; at-- > 0;) {
      remainder = remainder << 32 | limbs_[at];
      limbs_[at] = static_cast<std::uint32_t>(remainder / 5);
      remainder %= 5;
    }
    const int missing = std::countl_zero(limbs_.back());
    for (std::size_t at = size; at-- > 1;)
      limbs_[at] =
          limbs_[at] << missing | static_cast<std::uint32_t>(std::uint64_t{limbs_[at - 1]} << missing >> 32);
    limbs_.front() <<= missing;
  }

  constexpr Significand significand() const {
    const auto both = [this](std::size_t at) { return std::uint64_t{limbs_[at]} << 32 | limbs_[at - 1]; };
    return {both(size - 1), both(size - 3) + 1};
  }

 private:
  static constexpr std::size_t size = 24;  // The greatest power, of 753 bits, fits.

  std::array<std::uint32_t, size> limbs_ = [] {
    std::array<std::uint32_t, size> half{};
    half.back() = 1U << 31;
    return half;
  }();
};

constexpr int leastPower = -292;
constexpr int greatestPower = 324;
constexpr auto powersOfTen = [] {
  std::array<Significand, greatestPower - leastPower + 1> powers;
  Power up;
  for (std::size_t at = -leastPower; at < powers.size(); up.multiplyByFive()) powers[at++] = up.significand();
  Power down;
  for (std::size_t at = -leastPower; at > 0; powers[--at] = down.significand()) down.divideByFive();
  return powers;
}();

struct Product {
  std::uint64_t high = 0;
  std::uint64_t low = 0;
};

Product product(std::uint64_t a, std::uint64_t b) noexcept {
  constexpr std::uint64_t lowHalf = 0xFFFFFFFFU;
  const std::uint64_t low = (a & lowHalf) * (b & lowHalf);
  const std::uint64_t middle = (a >> 32) * (b & lowHalf) + (low >> 32);
  const std::uint64_t other = (a & lowHalf) * (b >> 32) + (middle & lowHalf);
  return {(a >> 32) * (b >> 32) + (middle >> 32) + (other >> 32), other << 32 | (low & lowHalf)};
}

/// Returns the integer part of `power`, taken as a number from 1/2 to 1, times `factor`. Where that leaves a
/// fraction, the lowest bit is set as well.
std::uint64_t roundedToOdd(const Significand& power, std::uint64_t factor) noexcept {
  const Product high = product(power.high, factor);
  const std::uint64_t fraction = high.low + product(power.low, factor).high;
  const std::uint64_t integer = high.high + (fraction < high.low ? 1 : 0);
  return integer | (fraction > 1 ? 1 : 0);
}

// The logarithms are close enough for all exponents of a double.
constexpr int floorLog2OfPowerOfTen(int power) {
  return power * 1741647 >> 19;
}
constexpr int floorLog10OfPowerOfTwo(int power) {
  return power * 1262611 >> 22;
}
/// Of three quarters of the power.
constexpr int floorLog10OfLessThanPowerOfTwo(int power) {
  return (power * 1262611 - 524031) >> 22;
}

}  // namespace

Decimal withoutFinalZeros(Decimal decimal) noexcept {
  if (decimal.digits == 0) return {};
  while (decimal.digits % 10 == 0) {
    decimal.digits /= 10;
    ++decimal.exponent;
  }
  return decimal;
}

Decimal shortestDecimal(double real) noexcept {
  constexpr int fractionBits = 52;
  constexpr std::uint64_t hiddenBit = std::uint64_t{1} << fractionBits;
  constexpr int leastExponent = -1074;
  const auto bits = std::bit_cast<std::uint64_t>(real);
  const std::uint64_t fraction = bits & (hiddenBit - 1);
  const int biased = static_cast<int>(bits >> fractionBits & 0x7FF);
  const std::uint64_t significand = biased == 0 ? fraction : fraction | hiddenBit;
  const int exponent = leastExponent + std::max(biased - 1, 0);
  if (significand == 0) return {};

  // Below a power of two, doubles are half as far apart.
  const bool isLowerNeighbourNear = fraction == 0 && biased > 1;
  // What reads back as the number, in quarters of its last binary place: from `lowerEnd` to `upperEnd`. A tie
  // goes to the even neighbour, so that the ends themselves belong to even numbers alone.
  const std::uint64_t number = significand * 4;
  const std::uint64_t lowerEnd = number - (isLowerNeighbourNear ? 1 : 2);
  const std::uint64_t upperEnd = number + 2;
  const std::uint64_t endsOutside = significand % 2;

  // The same, in quarters of the greatest decimal place that is no wider than what reads back.
  const int place =
      isLowerNeighbourNear ? floorLog10OfLessThanPowerOfTwo(exponent) : floorLog10OfPowerOfTwo(exponent);
  const int shift = exponent + floorLog2OfPowerOfTen(-place) + 1;
  const Significand& power = powersOfTen[static_cast<std::size_t>(-place - leastPower)];
  const std::uint64_t least = roundedToOdd(power, lowerEnd << shift) + endsOutside;
  const std::uint64_t scaled = roundedToOdd(power, number << shift);
  const std::uint64_t greatest = roundedToOdd(power, upperEnd << shift) - endsOutside;

  // At most one multiple of the next place reads back. It has a digit less.
  const std::uint64_t tens = scaled / 40;
  const bool isTensInside = least <= tens * 40;
  const bool isNextTensInside = tens * 40 + 40 <= greatest;
  if (isTensInside != isNextTensInside)
    return withoutFinalZeros({tens + (isNextTensInside ? 1 : 0), place + 1});

  const std::uint64_t ones = scaled / 4;
  const bool isInside = least <= ones * 4;
  const bool isNextInside = ones * 4 + 4 <= greatest;
  const std::uint64_t middle = ones * 4 + 2;
  const bool isNextNearer = scaled > middle || (scaled == middle && ones % 2 != 0);
  const bool up = isInside != isNextInside ? isNextInside : isNextNearer;
  return withoutFinalZeros({ones + (up ? 1 : 0), place});
}

}  // namespace orvane
