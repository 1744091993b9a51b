#pragma once

#include <concepts>
#include <functional>
#include <memory>
#include <utility>

#include "orvane/platform/Platform.h"

namespace orvane {

/// Returns a callback that calls `finished` with its own arguments on the main queue, later, on whatever thread it is
/// called itself. For a `finished` or a completion that must not run on the session's background queue:
///
///     manager.requestCode(mobile, text, onMainQueue([this](ErrorPtr error) { show(error); }));
///
/// `finished` must not be empty. It is called at most once and may have captures that can only be moved. They are
/// released with the last copy of the callback, and where a call is dropped without `finished` having been called.
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
