#pragma once

#include <Block.h>
#include <memory>

namespace orvane {

/// Keeps a copy of a block, which may have been on the stack, and releases it with the last copy of this
/// object. Does nothing when called if it was made from nil.
template <class Block>
class KeptBlock {
 public:
  explicit KeptBlock(Block block) {
    if (block) block_.reset(_Block_copy((__bridge const void*)block), _Block_release);
  }

  template <class... Arguments>
  auto operator()(Arguments... arguments) const {
    using Result = decltype(((__bridge Block)block_.get())(arguments...));
    return block_ ? ((__bridge Block)block_.get())(arguments...) : Result();
  }

 private:
  std::shared_ptr<void> block_;
};

}  // namespace orvane
