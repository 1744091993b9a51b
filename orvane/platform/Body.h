#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <utility>

#include "orvane/base/Value.h"

namespace orvane {

/// The bytes of a reply's body. A value type. Holds bytes of its own, or refers to memory that a platform
/// object owns and keeps that object alive, so that a session need not copy a body that it has received
/// already.
class Body {
 public:
  /// Makes an empty body.
  Body() noexcept = default;

  /// Takes over `bytes`. Makes no copy if they are moved in. Implicit, because bytes are a body.
  Body(Bytes bytes) noexcept : own_(std::move(bytes)) {}

  /// Refers to `bytes`, which belong to `owner`. The memory must exist and stay unchanged as long as `owner`
  /// does. The body and its copies share `owner`. The last of them releases it, on any thread, so the release
  /// must be safe there. Makes an empty body if `owner` is null.
  Body(std::span<const std::uint8_t> bytes, std::shared_ptr<const void> owner) noexcept
      : borrowed_(bytes), owner_(std::move(owner)) {}

  /// Returns the bytes, which are valid until the body is changed, moved or destroyed.
  ///@{
  const std::uint8_t* data() const noexcept { return owner_ ? borrowed_.data() : own_.data(); }
  std::size_t size() const noexcept { return owner_ ? borrowed_.size() : own_.size(); }
  bool empty() const noexcept { return size() == 0; }
  const std::uint8_t* begin() const noexcept { return data(); }
  const std::uint8_t* end() const noexcept { return data() + size(); }
  ///@}

 private:
  Bytes own_;
  // Counts only while there is an owner: a body that was moved from is empty.
  std::span<const std::uint8_t> borrowed_;
  std::shared_ptr<const void> owner_;
};

}  // namespace orvane
