#include "orvane/json/writeJSON.h"

#include <cmath>
#include <string_view>

#include "orvane/base/ascii.h"
#include "orvane/base/decodeUTF8.h"
#include "orvane/base/doubleString.h"

namespace orvane {
namespace {

constexpr std::size_t usualSize = 128;

class Writer {
 public:
  Writer() { out_.reserve(usualSize); }

  std::optional<Bytes> write(const Map& map) {
    open(map);
    return rest();
  }
  std::optional<Bytes> write(const Value& value) { return begin(value) ? rest() : std::nullopt; }

 private:
  /// A container that is not written completely yet. Either `array` or `map` is set.
  struct Open {
    const Array* array;
    const Map* map;
    std::size_t nextElement;
    Map::const_iterator nextMember;

    bool isDone() const { return array ? nextElement == array->size() : nextMember == map->end(); }
    bool isFresh() const { return array ? nextElement == 0 : nextMember == map->begin(); }
  };

  void append(char c) { out_.push_back(static_cast<std::uint8_t>(c)); }
  void append(std::string_view text) { out_.insert(out_.end(), text.begin(), text.end()); }
  void open(const Array& array);
  void open(const Map& map);
  std::optional<Bytes> rest();
  bool begin(const Value& value);
  bool string(std::string_view text);
  void escape(char c);

  Bytes out_;
  std::vector<Open> open_;
};

void Writer::open(const Array& array) {
  append('[');
  open_.push_back({&array, nullptr, 0, {}});
}

void Writer::open(const Map& map) {
  append('{');
  open_.push_back({nullptr, &map, 0, map.begin()});
}

/// Writes until no container is open. Returns all that was written.
std::optional<Bytes> Writer::rest() {
  while (!open_.empty()) {
    Open& innermost = open_.back();
    if (innermost.isDone()) {
      append(innermost.array ? ']' : '}');
      open_.pop_back();
      continue;
    }
    if (!innermost.isFresh()) append(',');
    const Value* next = nullptr;
    if (innermost.array) {
      next = &(*innermost.array)[innermost.nextElement++];
    } else {
      if (!string(innermost.nextMember->first)) return std::nullopt;
      append(':');
      next = &(innermost.nextMember++)->second;
    }
    if (!begin(*next)) return std::nullopt;
  }
  return std::move(out_);
}

/// Writes a scalar, or the opening bracket of a container.
bool Writer::begin(const Value& value) {
  if (const Array* array = value.array()) {
    open(*array);
  } else if (const Map* map = value.map()) {
    open(*map);
  } else if (const std::string* characters = value.string()) {
    return string(*characters);
  } else if (const bool* boolean = value.boolean()) {
    append(*boolean ? "true" : "false");
  } else if (const std::int64_t* integer = value.integer()) {
    append(std::to_string(*integer));
  } else if (const double* number = value.floating()) {
    if (!std::isfinite(*number)) return false;
    append(writeDouble(*number));
  } else {
    append("null");
  }
  return true;
}

bool Writer::string(std::string_view text) {
  append('"');
  std::size_t run = 0;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t start = at;
    if (!decodeUTF8(text, at)) return false;
    const char c = text[start];
    if (static_cast<unsigned char>(c) >= 0x20 && c != '"' && c != '\\') continue;
    append(text.substr(run, start - run));
    escape(c);
    run = at;
  }
  append(text.substr(run));
  append('"');
  return true;
}

void Writer::escape(char c) {
  constexpr std::string_view characters = "\"\\\b\f\n\r\t";
  constexpr std::string_view letters = "\"\\bfnrt";
  append('\\');
  if (const std::size_t which = characters.find(c); which != characters.npos) {
    append(letters[which]);
  } else {
    append("u00");
    append(lowerHexDigits[static_cast<unsigned char>(c) >> 4]);
    append(lowerHexDigits[static_cast<unsigned char>(c) & 15]);
  }
}

}  // namespace

std::optional<Bytes> writeJSON(const Map& map) {
  return Writer().write(map);
}

std::optional<Bytes> writeJSON(const Value& value) {
  return Writer().write(value);
}

}  // namespace orvane
