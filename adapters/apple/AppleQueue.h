#pragma once

#include <memory>

#include "orvane/platform/DispatchQueue.h"

namespace orvane {

/// Returns libdispatch's queue of this kind, which lives until the process ends. A group of one of them that
/// notifies the other is a group of libdispatch's.
///@{
std::shared_ptr<DispatchQueue> appleMainQueue();
std::shared_ptr<DispatchQueue> appleGlobalQueue();
///@}

}  // namespace orvane
