#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include "orvane/base/Export.h"

namespace orvane {

class Value;

/// An integer type of any size, except bool.
template <class T>
concept Integer = std::integral<T> && !std::same_as<T, bool>;

/// A byte buffer.
using Bytes = std::vector<std::uint8_t>;
/// Values by name, ordered by the bytes of their names.
using Map = std::map<std::string, Value, std::less<>>;

/// A sequence of values. As long as every element is an integer from 0 to 255, each takes one byte: so a
/// picture passes through the library as plain bytes.
class ORVANE_API Array {
 public:
  class Iterator;

  /// Makes an array that is empty, or holds the given elements or bytes, or what another array holds.
  ///@{
  Array() noexcept = default;
  Array(std::initializer_list<Value> values);
  explicit Array(Bytes bytes) noexcept;
  Array(const Array& other) = default;
  Array(Array&& other) noexcept = default;
  ///@}
  /// Safe if `other` is nested inside this array.
  Array& operator=(Array other) noexcept;

  /// Returns the number of elements.
  std::size_t size() const noexcept;
  /// Returns true if there are no elements.
  bool empty() const noexcept { return size() == 0; }

  /// Returns the element at `index`, which must be below size().
  const Value& operator[](std::size_t index) const noexcept;

  /// Iterates over the elements in order.
  ///@{
  Iterator begin() const noexcept;
  Iterator end() const noexcept;
  ///@}

  /// Returns the elements as bytes if every one is an integer from 0 to 255, as in an empty array; else null.
  ///@{
  const Bytes* bytes() const noexcept;
  Bytes* bytes() noexcept;
  ///@}

  /// Appends `value`.
  void push_back(Value value);

  /// Appends `container`, an array or a map, and returns a reference to it, valid until the next append.
  Value& pushContainer(Value container);

 private:
  friend class Value;

  void unpack();

  Bytes bytes_;                // All elements, or none.
  std::vector<Value> values_;  // The elements, once one of them is not a byte.
};

/// A JSON value: null, a boolean, an integer, a floating-point number, a string, an array or a map. A value
/// type: copies are deep. May nest to any depth, since copying and destroying do not recurse.
class ORVANE_API Value {
 public:
  /// Makes a value of the argument's kind. An integer that does not fit std::int64_t becomes a
  /// floating-point number, and a null pointer becomes null.
  ///@{
  Value() noexcept = default;
  Value(std::nullptr_t) noexcept {}
  template <std::same_as<bool> T>
  Value(T boolean) noexcept : data_(boolean) {}
  template <Integer T>
  Value(T integer) noexcept
      : data_(std::in_range<std::int64_t>(integer) ? Data(static_cast<std::int64_t>(integer))
                                                   : Data(static_cast<double>(integer))) {}
  template <std::floating_point T>
  Value(T number) noexcept : data_(static_cast<double>(number)) {}
  Value(std::string string) noexcept : data_(std::move(string)) {}
  Value(std::string_view string) : data_(std::string(string)) {}
  Value(const char* string) : data_(string ? Data(std::string(string)) : Data()) {}
  Value(Array array) : data_(std::make_unique<Array>(std::move(array))) {}
  Value(Map map) : data_(std::make_unique<Map>(std::move(map))) {}
  ///@}

  /// Copies deeply. A value that was moved from is null.
  ///@{
  Value(const Value& other);
  Value(Value&& other) noexcept : data_(std::move(other.data_)) { other.data_.emplace<std::monostate>(); }
  Value& operator=(Value other) noexcept;
  ///@}
  ~Value();

  /// Returns true if the value is null.
  bool isNull() const noexcept { return std::holds_alternative<std::monostate>(data_); }

  /// Returns a pointer to the content if the value is of that kind, else null.
  ///@{
  const bool* boolean() const noexcept { return std::get_if<bool>(&data_); }
  const std::int64_t* integer() const noexcept { return std::get_if<std::int64_t>(&data_); }
  const double* floating() const noexcept { return std::get_if<double>(&data_); }
  const std::string* string() const noexcept { return std::get_if<std::string>(&data_); }
  const Array* array() const noexcept { return content<Array>(); }
  const Map* map() const noexcept { return content<Map>(); }
  std::string* string() noexcept { return std::get_if<std::string>(&data_); }
  Array* array() noexcept { return content<Array>(); }
  Map* map() noexcept { return content<Map>(); }
  ///@}

  /// Returns a number as an integer, or nullopt if the value is not a number; a boolean is not one. A
  /// floating-point number is truncated toward zero and clamped to the range of std::int64_t; not-a-number
  /// becomes 0.
  std::optional<std::int64_t> numberAsInteger() const noexcept;

  /// Returns a number in decimal, or nullopt if the value is not a number. A floating-point number has up to
  /// 16 significant digits and no trailing zeros: 137.0 is "137", 12.5 is "12.5".
  std::optional<std::string> numberAsString() const;

 private:
  using Data = std::variant<std::monostate, bool, std::int64_t, double, std::string, std::unique_ptr<Array>,
                            std::unique_ptr<Map>>;

  template <class Container>
  Container* content() const noexcept {
    auto* box = std::get_if<std::unique_ptr<Container>>(&data_);
    return box ? box->get() : nullptr;
  }
  bool isContainer() const noexcept { return array() || map(); }
  void copyShallow(const Value& other, std::vector<std::pair<const Value*, Value*>>& deeper);
  void moveContainersTo(std::vector<Value>& pending);

  Data data_;
};

/// Iterates over the elements of an array in order.
class Array::Iterator {
 public:
  /// The members of a standard input iterator.
  ///@{
  using value_type = Value;
  using difference_type = std::ptrdiff_t;

  Iterator() noexcept = default;
  Iterator(const Array& array, std::size_t index) noexcept : array_(&array), index_(index) {}

  const Value& operator*() const noexcept { return (*array_)[index_]; }
  Iterator& operator++() noexcept {
    ++index_;
    return *this;
  }
  Iterator operator++(int) noexcept {
    Iterator before = *this;
    ++index_;
    return before;
  }
  bool operator==(const Iterator&) const noexcept = default;
  ///@}

 private:
  const Array* array_ = nullptr;
  std::size_t index_ = 0;
};

inline Array::Array(Bytes bytes) noexcept : bytes_(std::move(bytes)) {}
inline Array& Array::operator=(Array other) noexcept {
  bytes_.swap(other.bytes_);
  values_.swap(other.values_);
  return *this;
}
inline const Bytes* Array::bytes() const noexcept {
  return values_.empty() ? &bytes_ : nullptr;
}
inline Bytes* Array::bytes() noexcept {
  return values_.empty() ? &bytes_ : nullptr;
}
inline std::size_t Array::size() const noexcept {
  return values_.empty() ? bytes_.size() : values_.size();
}
inline Array::Iterator Array::begin() const noexcept {
  return {*this, 0};
}
inline Array::Iterator Array::end() const noexcept {
  return {*this, size()};
}

}  // namespace orvane
