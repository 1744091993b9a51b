// libdispatch: the main queue is the one that the tests run, the global one a thread for each task.

#include <dispatch/dispatch.h>
#include <thread>

#include "orvane/host/MainQueue.h"

struct dispatch_queue_s {
  bool isMain;
};

namespace orvane {

MainQueue& hostMainQueue() {
  static auto* const queue = new MainQueue;
  return *queue;
}

}  // namespace orvane

dispatch_queue_t dispatch_get_main_queue() {
  static dispatch_queue_s queue{true};
  return &queue;
}

dispatch_queue_t dispatch_get_global_queue(long, unsigned long) {
  static dispatch_queue_s queue{false};
  return &queue;
}

void dispatch_async_f(dispatch_queue_t queue, void* context, dispatch_function_t work) {
  const auto task = [=] { work(context); };
  if (queue->isMain) {
    orvane::hostMainQueue().async(task);
  } else {
    std::thread(task).detach();
  }
}
