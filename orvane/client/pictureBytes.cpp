#include "orvane/client/pictureBytes.h"

#include <charconv>
#include <string_view>

namespace orvane {
namespace {

/// Reads an optional sign and decimal digits whose value is at most 255; a minus only before zero.
std::optional<std::uint8_t> byteInString(std::string_view string) {
  const bool negative = string.starts_with('-');
  if (negative || string.starts_with('+')) string.remove_prefix(1);
  std::uint8_t byte = 0;
  const auto [end, error] = std::from_chars(string.data(), string.data() + string.size(), byte);
  if (error != std::errc() || end != string.data() + string.size() || (negative && byte != 0))
    return std::nullopt;
  return byte;
}

std::optional<std::uint8_t> byteInElement(const Value& element) {
  if (const std::string* string = element.string()) return byteInString(*string);
  const std::optional<std::string> decimal = element.numberAsString();
  return decimal ? byteInString(*decimal) : std::nullopt;
}

}  // namespace

std::optional<Bytes> pictureBytes(Array& elements) {
  if (Bytes* ready = elements.bytes()) return std::move(*ready);
  Bytes bytes;
  bytes.reserve(elements.size());
  for (const Value& element : elements) {
    const std::optional<std::uint8_t> byte = byteInElement(element);
    if (!byte) return std::nullopt;
    bytes.push_back(*byte);
  }
  return bytes;
}

}  // namespace orvane
