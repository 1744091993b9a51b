// A stand-in for libdispatch. Its main queue is hostMainQueue(), and its global queue starts a thread for
// each function.

#include <dispatch/dispatch.h>
#include <functional>
#include <memory>
#include <thread>

#include "orvane/host/hostMainQueue.h"

struct dispatch_queue_s {
  bool isMain;
};

/// The group and its work share `notify`. The last of them to release it calls it.
struct dispatch_group_s {
  using Notify = std::function<void()>;

  std::shared_ptr<Notify> notify = {new Notify, [](Notify* notify) {
                                      if (*notify) (*notify)();
                                      delete notify;
                                    }};
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

static void submit(dispatch_queue_t queue, std::function<void()> work) {
  if (queue->isMain) {
    orvane::hostMainQueue().async(std::move(work));
  } else {
    std::thread(std::move(work)).detach();
  }
}

void dispatch_async_f(dispatch_queue_t queue, void* context, dispatch_function_t work) {
  submit(queue, [=] { work(context); });
}

dispatch_group_t dispatch_group_create() {
  return new dispatch_group_s;
}

void dispatch_group_async_f(dispatch_group_t group, dispatch_queue_t queue, void* context,
                            dispatch_function_t work) {
  submit(queue, [=, kept = group->notify] { work(context); });
}

/// May be called before or after the work ends, because the group itself shares `notify` until it is
/// released.
void dispatch_group_notify_f(dispatch_group_t group, dispatch_queue_t queue, void* context,
                             dispatch_function_t work) {
  *group->notify = [=] { dispatch_async_f(queue, context, work); };
}

void dispatch_release(dispatch_group_t group) {
  delete group;
}
