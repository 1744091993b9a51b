#pragma once

#include <Block.h>
#include <memory>

namespace orvane {

/// A block, copied off the stack and released with the last copy of this. Calling nothing does nothing.
template <class Block>
class KeptBlock {
 public:
  explicit KeptBlock(Block block) {
    if (block) block_.reset((void*)Block_copy(block), [](void* copied) { Block_release(copied); });
  }

  template <class... Arguments>
  void operator()(Arguments... arguments) const {
    if (block_) ((Block)block_.get())(arguments...);
  }

 private:
  std::shared_ptr<void> block_;
};

}  // namespace orvane
