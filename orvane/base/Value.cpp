#include "orvane/base/Value.h"

#include <array>
#include <cmath>

#include "orvane/base/doubleString.h"

namespace orvane {
namespace {

/// The values 0 to 255, to which references to the elements of packed arrays refer.
const std::array<Value, 256>& byteValues() {
  // Never destroyed, since values may be read while the process ends.
  static const auto* const values = [] {
    auto* made = new std::array<Value, 256>;
    for (std::size_t byte = 0; byte < made->size(); ++byte) (*made)[byte] = byte;
    return made;
  }();
  return *values;
}

}  // namespace

Array::Array(std::initializer_list<Value> values) {
  for (const Value& value : values) push_back(value);
}

const Value& Array::operator[](std::size_t index) const noexcept {
  return values_.empty() ? byteValues()[bytes_[index]] : values_[index];
}

void Array::push_back(Value value) {
  if (values_.empty()) {
    const std::int64_t* integer = value.integer();
    if (integer && *integer >= 0 && *integer <= 255) {
      bytes_.push_back(static_cast<std::uint8_t>(*integer));
      return;
    }
    unpack();
  }
  values_.push_back(std::move(value));
}

Value& Array::pushContainer(Value container) {
  if (values_.empty()) unpack();
  return values_.emplace_back(std::move(container));
}

void Array::unpack() {
  values_.reserve(bytes_.size() + 1);
  values_.assign(bytes_.begin(), bytes_.end());
  bytes_ = Bytes();
}

Value::Value(const Value& other) {
  std::vector<std::pair<const Value*, Value*>> deeper;
  copyShallow(other, deeper);
  while (!deeper.empty()) {
    const auto [from, to] = deeper.back();
    deeper.pop_back();
    to->copyShallow(*from, deeper);
  }
}

Value& Value::operator=(Value other) noexcept {
  // Safe if the argument is nested inside this value: by now `other` is a value of its own.
  data_ = std::move(other.data_);
  return *this;
}

/// Copies `other` except for the containers directly inside it: appends each of those to `deeper`, with the
/// value that its copy belongs into.
void Value::copyShallow(const Value& other, std::vector<std::pair<const Value*, Value*>>& deeper) {
  const auto copyInto = [&deeper](Value& to, const Value& from) {
    if (from.isContainer()) {
      deeper.emplace_back(&from, &to);
    } else {
      to.copyShallow(from, deeper);
    }
  };
  if (const Array* from = other.array()) {
    auto copy = std::make_unique<Array>(from->bytes_);
    copy->values_.resize(from->values_.size());
    for (std::size_t i = 0; i < from->values_.size(); ++i) copyInto(copy->values_[i], from->values_[i]);
    data_ = std::move(copy);
  } else if (const Map* from = other.map()) {
    auto copy = std::make_unique<Map>();
    for (const auto& [key, value] : *from) copyInto(copy->try_emplace(copy->end(), key)->second, value);
    data_ = std::move(copy);
  } else if (const std::string* from = other.string()) {
    data_ = *from;
  } else if (const bool* from = other.boolean()) {
    data_ = *from;
  } else if (const std::int64_t* from = other.integer()) {
    data_ = *from;
  } else if (const double* from = other.floating()) {
    data_ = *from;
  }
}

Value::~Value() {
  if (!isContainer()) return;
  std::vector<Value> pending;
  moveContainersTo(pending);
  while (!pending.empty()) {
    Value inner = std::move(pending.back());
    pending.pop_back();
    inner.moveContainersTo(pending);
  }
}

void Value::moveContainersTo(std::vector<Value>& pending) {
  const auto take = [&pending](Value& value) {
    if (value.isContainer()) pending.push_back(std::move(value));
  };
  if (Array* elements = array()) {
    for (Value& value : elements->values_) take(value);
  } else if (Map* members = map()) {
    for (auto& [key, value] : *members) take(value);
  }
}

std::optional<std::int64_t> Value::numberAsInteger() const noexcept {
  using Limits = std::numeric_limits<std::int64_t>;
  if (const std::int64_t* number = integer()) return *number;
  const double* number = floating();
  if (!number) return std::nullopt;
  if (std::isnan(*number)) return 0;
  // 2^63 is exact as a double; the greatest std::int64_t, one less, is not.
  constexpr double bound = 9223372036854775808.0;
  if (*number >= bound) return Limits::max();
  if (*number < -bound) return Limits::min();
  return static_cast<std::int64_t>(*number);
}

std::optional<std::string> Value::numberAsString() const {
  if (const std::int64_t* number = integer()) return std::to_string(*number);
  if (const double* number = floating()) return writeDouble(*number, 16);
  return std::nullopt;
}

}  // namespace orvane
