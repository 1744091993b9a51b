#include "adapters/apple/AppleQueue.h"

#include <memory>

namespace orvane {

void AppleQueue::async(Task task) {
  dispatch_async_f(queue_, std::make_unique<Task>(std::move(task)).release(), [](void* context) {
    const std::unique_ptr<const Task> owned(static_cast<Task*>(context));
    (*owned)();
  });
}

}  // namespace orvane
