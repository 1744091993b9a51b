#pragma once

#include <concepts>
#include <functional>
#include <memory>
#include <utility>

#include "orvane/platform/Platform.h"

namespace orvane {

/// Returns a callback that queues a call of `finished`, with the callback's own arguments, on the main queue.
/// The callback itself may be called on any thread. Use it where `finished` or a completion must not run on
/// the session queue:
///
/// manager.requestCode(mobile, text, onMainQueue([form = weak_from_this()](ErrorPtr error) {
///   if (const auto open = form.lock()) open->show(error);
/// }));
///
/// `finished` must not be empty. It may have move-only captures, which are released with the last copy of the
/// callback, even if the callback is never called.
template <class Finished>
auto onMainQueue(Finished finished) {
  return [finished = std::make_shared<Finished>(std::move(finished))]<class... Results>(
      Results... results) requires std::invocable<Finished&, Results...> {
    platform().mainQueue->async([finished, ... results = std::move(results)]() mutable {
      std::invoke(*finished, std::move(results)...);
    });
  };
}

}  // namespace orvane
