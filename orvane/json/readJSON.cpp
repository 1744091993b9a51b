#include "orvane/json/readJSON.h"

#include <array>
#include <charconv>
#include <list>

#include "orvane/base/ascii.h"
#include "orvane/base/decodeUTF8.h"
#include "orvane/base/doubleString.h"
#include "orvane/json/readByteRun.h"

namespace orvane {
namespace {

constexpr std::size_t maximumDepth = 512;
constexpr std::size_t maximumValues = 1'000'000;

class Reader {
 public:
  explicit Reader(std::string_view text) noexcept : text_(text) {}

  std::optional<Value> document();

 private:
  // Those that return bool move past what they read, and return false if something else is there.

  char peek() const noexcept { return at_ < text_.size() ? text_[at_] : '\0'; }
  bool accept(char c) noexcept;
  bool accept(std::string_view word) noexcept;
  void skipSpace() noexcept;

  bool contents();
  bool element(Array& array);
  bool member(Map& map);
  bool isContainer() const noexcept { return peek() == '[' || peek() == '{'; }
  Value emptyContainer() const { return peek() == '[' ? Value(Array()) : Value(Map()); }
  bool open(Value& value);
  bool scalar(Value& value);
  bool digits() noexcept;
  bool number(Value& value);
  bool string(std::string& string);
  bool escape(std::string& string);
  std::optional<char32_t> fourHexDigits() noexcept;

  std::string_view text_;
  std::size_t at_ = 0;
  // The containers whose ends have not been read, the innermost last. They do not move: nothing is added to a
  // container while one inside it is open.
  std::array<Value*, maximumDepth> open_;
  std::size_t depth_ = 0;
  std::size_t values_ = 1;  // The values read so far, with the one at top level. Not those kept as bytes.
  std::list<Value> duplicates_;  // The values of repeated keys, which are read and then dropped.
};

bool Reader::accept(char c) noexcept {
  return accept(std::string_view(&c, 1));
}

bool Reader::accept(std::string_view word) noexcept {
  if (!text_.substr(at_).starts_with(word)) return false;
  at_ += word.size();
  return true;
}

void Reader::skipSpace() noexcept {
  while (at_ < text_.size() &&
         (text_[at_] == ' ' || text_[at_] == '\n' || text_[at_] == '\r' || text_[at_] == '\t'))
    ++at_;
}

std::optional<Value> Reader::document() {
  accept("\xEF\xBB\xBF");
  skipSpace();
  if (!isContainer()) return std::nullopt;
  Value root = emptyContainer();
  if (!open(root) || !contents()) return std::nullopt;
  skipSpace();
  if (at_ != text_.size()) return std::nullopt;
  return root;
}

/// Reads until no container is open.
bool Reader::contents() {
  bool first = true;  // Nothing has been read of the innermost container.
  while (depth_ > 0) {
    Value& innermost = *open_[depth_ - 1];
    Array* const array = innermost.array();
    skipSpace();
    if (accept(array ? ']' : '}')) {
      --depth_;
      first = false;
      continue;
    }
    if (!first && !accept(',')) return false;
    skipSpace();
    const std::size_t depth = depth_;
    if (!(array ? element(*array) : member(*innermost.map()))) return false;
    first = depth_ > depth;
  }
  return true;
}

bool Reader::element(Array& array) {
  Bytes* const bytes = array.bytes();
  if (bytes) {
    readByteRun(text_, at_, *bytes);
    skipSpace();
  }
  Value value;
  const bool isScalar = !isContainer();
  if (isScalar && !scalar(value)) return false;
  const std::int64_t* const integer = value.integer();
  // An element that is not a byte value turns those before it from bytes into values.
  if (!bytes || !integer || !std::in_range<std::uint8_t>(*integer)) values_ += bytes ? bytes->size() + 1 : 1;
  if (values_ > maximumValues) return false;
  if (!isScalar) return open(array.pushContainer(emptyContainer()));
  array.push_back(std::move(value));
  return true;
}

bool Reader::member(Map& map) {
  if (++values_ > maximumValues) return false;
  std::string key;
  if (!string(key)) return false;
  skipSpace();
  if (!accept(':')) return false;
  skipSpace();
  const auto [place, isNew] = map.try_emplace(std::move(key));
  Value& value = isNew ? place->second : duplicates_.emplace_back();
  if (!isContainer()) return scalar(value);
  value = emptyContainer();
  return open(value);
}

bool Reader::open(Value& value) {
  if (depth_ == maximumDepth) return false;
  ++at_;
  open_[depth_++] = &value;
  return true;
}

bool Reader::scalar(Value& value) {
  switch (peek()) {
    case '"':
      value = std::string();
      return string(*value.string());
    case 't':
      value = true;
      return accept("true");
    case 'f':
      value = false;
      return accept("false");
    case 'n':
      return accept("null");
    default:
      return number(value);
  }
}

bool Reader::digits() noexcept {
  const std::size_t start = at_;
  while (isDigit(peek())) ++at_;
  return at_ != start;
}

bool Reader::number(Value& value) {
  const std::size_t start = at_;
  accept('-');
  if (!accept('0') && !digits()) return false;
  const std::size_t integerEnd = at_;
  if (accept('.') && !digits()) return false;
  if (accept('e') || accept('E')) {
    if (!accept('+')) accept('-');
    if (!digits()) return false;
  }
  const std::string_view number = text_.substr(start, at_ - start);
  if (at_ == integerEnd) {
    std::int64_t integer = 0;
    if (std::from_chars(number.data(), number.data() + number.size(), integer).ec == std::errc()) {
      value = integer;
      return true;
    }
  }
  const std::optional<double> nearest = readDouble(number);
  if (!nearest) return false;
  value = *nearest;
  return true;
}

bool Reader::string(std::string& string) {
  if (!accept('"')) return false;
  std::size_t run = at_;  // Where the characters begin that are still to be appended.
  while (at_ < text_.size()) {
    const auto c = static_cast<unsigned char>(text_[at_]);
    if (c >= 0x80) {
      if (!decodeUTF8(text_, at_)) return false;
    } else if (c < 0x20) {
      return false;
    } else if (c != '"' && c != '\\') {
      ++at_;
    } else {
      string.append(text_, run, at_ - run);
      ++at_;
      if (c == '"') return true;
      if (!escape(string)) return false;
      run = at_;
    }
  }
  return false;
}

/// Reads what follows a backslash.
bool Reader::escape(std::string& string) {
  constexpr std::string_view letters = "\"\\/bfnrt";
  constexpr std::string_view characters = "\"\\/\b\f\n\r\t";
  const char letter = peek();
  ++at_;
  if (const std::size_t which = letters.find(letter); which != letters.npos) {
    string.push_back(characters[which]);
    return true;
  }
  if (letter != 'u') return false;
  const std::optional<char32_t> unit = fourHexDigits();
  if (!unit || (*unit >= 0xDC00 && *unit <= 0xDFFF)) return false;
  if (*unit < 0xD800 || *unit > 0xDBFF) {
    appendUTF8(string, *unit);
    return true;
  }
  // The first half of a pair of surrogates, which are one code point together.
  if (!accept("\\u")) return false;
  const std::optional<char32_t> low = fourHexDigits();
  if (!low || *low < 0xDC00 || *low > 0xDFFF) return false;
  appendUTF8(string, 0x10000 + ((*unit - 0xD800) << 10 | (*low - 0xDC00)));
  return true;
}

std::optional<char32_t> Reader::fourHexDigits() noexcept {
  std::uint32_t unit = 0;
  const std::string_view four = text_.substr(at_, 4);
  const auto [end, error] = std::from_chars(four.data(), four.data() + four.size(), unit, 16);
  if (error != std::errc() || end != four.data() + 4) return std::nullopt;
  at_ += 4;
  return unit;
}

}  // namespace

std::optional<Value> readJSON(std::string_view text) {
  return Reader(text).document();
}

}  // namespace orvane
