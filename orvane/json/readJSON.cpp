#include "orvane/json/readJSON.h"

#include <array>
#include <bit>
#include <charconv>
#include <cstring>
#include <list>

#include "orvane/base/decodeUTF8.h"
#include "orvane/base/writeReal.h"

namespace orvane {
namespace {

constexpr std::size_t maximumDepth = 512;

constexpr bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

// Characters are read as words, the first of them in the lowest bits.
static_assert(std::endian::native == std::endian::little);
template <class Word>
Word wordAt(const char* characters) {
  Word word = 0;
  std::memcpy(&word, characters, sizeof(word));
  return word;
}

struct Block {
  static constexpr int size = 64;

  std::uint64_t commas = 0;     ///< A bit for each, the lowest for the first character.
  std::uint64_t strangers = 0;  ///< Zero where there is nothing but commas and characters from '0' to '?'.

  explicit Block(const char* characters) {
    constexpr std::uint64_t each = 0x0101010101010101U;
    for (int at = 0; at < size; at += 8) {
      const auto word = wordAt<std::uint64_t>(characters + at);
      const std::uint64_t others = word ^ ',' * each;
      const std::uint64_t here = ~(((others & 0x7F * each) + 0x7F * each) | others) >> 7 & each;
      commas |= (here * 0x0102040810204080U >> 56) << at;  // The product gathers the eight bits at its top.
      strangers |= ((word ^ '0' * each) & 0xF0 * each) ^ here << 4;
    }
  }
};

// Looks up a number from 0 to 255 by the low four bits of its first three characters. A shorter number has a
// comma after it. An entry holds the value and, above it, the number of digits; 255 digits mean "not a
// number".
constexpr int lengthShift = 8;
constexpr auto byteTexts = [] {
  constexpr unsigned comma = ',' & 15;
  std::array<std::uint16_t, 1 << 12> texts{};
  for (auto& text : texts) text = 255 << lengthShift;
  for (unsigned byte = 0; byte < 256; ++byte) {
    const unsigned hundreds = byte / 100;
    const unsigned tens = byte / 10 % 10;
    const unsigned ones = byte % 10;
    const auto text = [byte](unsigned length) {
      return static_cast<std::uint16_t>(length << lengthShift | byte);
    };
    if (byte > 99) {
      texts[hundreds << 8 | tens << 4 | ones] = text(3);
    } else if (byte > 9) {
      texts[tens << 8 | ones << 4 | comma] = text(2);
    } else {
      for (unsigned any = 0; any < 16; ++any) texts[ones << 8 | comma << 4 | any] = text(1);
    }
  }
  return texts;
}();

/// Reads one character more.
unsigned byteTextAt(const char* characters) {
  const std::uint64_t halves = wordAt<std::uint32_t>(characters) & 0x0F0F0FU;
  return byteTexts[(halves << 24 | halves << 12 | halves) >> 16 & 0xFFFU];
}

class Reader {
 public:
  explicit Reader(std::string_view text) noexcept : text_(text) {}

  std::optional<Value> document();

 private:
  /// A container whose end has not come yet; one of the two is set. It stays where it is: nothing is added to
  /// it while a container inside it is open.
  struct Open {
    Array* array;
    Map* map;
  };

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
  void byteRun(Bytes& bytes);
  bool digits() noexcept;
  bool number(Value& value);
  bool string(std::string& string);
  bool escape(std::string& string);
  std::optional<char32_t> fourHexDigits() noexcept;

  std::string_view text_;
  std::size_t at_ = 0;
  std::array<Open, maximumDepth> open_;  // The innermost last.
  std::size_t depth_ = 0;
  std::list<Value> duplicates_;  // the values of keys that came before
};

bool Reader::accept(char c) noexcept {
  if (at_ == text_.size() || text_[at_] != c) return false;
  ++at_;
  return true;
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
  bool first = true;
  while (depth_ > 0) {
    const auto [array, map] = open_[depth_ - 1];
    skipSpace();
    if (accept(array ? ']' : '}')) {
      --depth_;
      first = false;
      continue;
    }
    if (!first && !accept(',')) return false;
    skipSpace();
    const std::size_t depth = depth_;
    if (!(array ? element(*array) : member(*map))) return false;
    first = depth_ > depth;
  }
  return true;
}

bool Reader::element(Array& array) {
  if (Bytes* bytes = array.bytes()) {
    byteRun(*bytes);
    skipSpace();
  }
  Value value;
  if (!isContainer()) {
    if (!scalar(value)) return false;
    array.push_back(std::move(value));
    return true;
  }
  return open(array.pushContainer(emptyContainer()));
}

bool Reader::member(Map& map) {
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
  open_[depth_++] = {value.array(), value.map()};
  return true;
}

bool Reader::scalar(Value& value) {
  switch (peek()) {
    case '"':
      return string(*(value = std::string()).text());
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

/// The fast way through the byte values of a picture: takes numbers from 0 to 255 as long as each is followed
/// by a comma, many at a time, and stops before those among which there is anything else.
void Reader::byteRun(Bytes& bytes) {
  constexpr int readBeyond = 3;
  const char* at = text_.data() + at_;
  const char* const end = text_.data() + text_.size();
  std::array<std::uint8_t, 512> batch;
  std::size_t size = 0;
  while (end - at >= Block::size + readBeyond) {
    const Block block(at);
    if (block.strangers != 0 || block.commas == 0) break;
    const char* number = at;
    std::size_t count = 0;
    unsigned differences = 0;
    for (std::uint64_t commas = block.commas; commas != 0; commas &= commas - 1) {
      const char* const comma = at + std::countr_zero(commas);
      const unsigned text = byteTextAt(number);
      differences |= text ^ static_cast<unsigned>(comma - number) << lengthShift;
      batch[size + count++] = static_cast<std::uint8_t>(text);
      number = comma + 1;
    }
    if (differences >> lengthShift != 0) break;
    at = number;
    size += count;
    if (size + Block::size > batch.size()) {
      bytes.insert(bytes.end(), batch.begin(), batch.begin() + size);
      size = 0;
    }
  }
  bytes.insert(bytes.end(), batch.begin(), batch.begin() + size);
  at_ = static_cast<std::size_t>(at - text_.data());
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
  const std::optional<double> real = readReal(number);
  if (!real) return false;
  value = *real;
  return true;
}

bool Reader::string(std::string& string) {
  if (!accept('"')) return false;
  std::size_t run = at_;
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

/// What follows a backslash.
bool Reader::escape(std::string& string) {
  constexpr std::string_view letters = "\"\\/bfnrt";
  constexpr std::string_view meanings = "\"\\/\b\f\n\r\t";
  const char letter = peek();
  ++at_;
  if (const std::size_t which = letters.find(letter); which != letters.npos) {
    string.push_back(meanings[which]);
    return true;
  }
  if (letter != 'u') return false;
  const std::optional<char32_t> unit = fourHexDigits();
  if (!unit || (*unit >= 0xDC00 && *unit <= 0xDFFF)) return false;
  if (*unit < 0xD800 || *unit > 0xDBFF) {
    appendUTF8(string, *unit);
    return true;
  }
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
