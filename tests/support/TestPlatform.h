#pragma once

#include <deque>
#include <gtest/gtest.h>
#include <mutex>
#include <string>

#include "orvane/platform/Platform.h"
#include "tests/support/FakeSession.h"

namespace orvane::test {

/// Runs nothing by itself: the test says when.
class ManualQueue final : public DispatchQueue {
 public:
  void async(Task task) override {
    const std::lock_guard lock(mutex_);
    tasks_.push_back(std::move(task));
  }

  /// Runs what waits, and returns how many tasks that were.
  std::size_t run() {
    std::deque<Task> tasks;
    {
      const std::lock_guard lock(mutex_);
      tasks.swap(tasks_);
    }
    for (Task& task : tasks) task();
    return tasks.size();
  }

 private:
  std::mutex mutex_;
  std::deque<Task> tasks_;
};

/// Readings that a test may change.
struct TestReadings final : DeviceReadings {
  struct Facts {
    std::string machine = "iPhone8,1";
    std::string version = "9.3.1";
    std::optional<std::string> vendor;
    std::optional<std::string> carrier;
    ScreenBounds bounds;
    double scale = 2;
    int scaleReads = 0;
  };

  std::string machine() const override { return facts.machine; }
  std::string systemVersion() const override { return facts.version; }
  std::string model() const override { return "word"; }
  std::optional<std::string> identifierForVendor() const override { return facts.vendor; }
  std::optional<std::string> carrierName() const override { return facts.carrier; }
  ScreenBounds screenBounds() const override { return facts.bounds; }
  double screenScale() const override {
    ++facts.scaleReads;
    return facts.scale;
  }

  mutable Facts facts;
};

/// The platform that the logic's tests run on, where no adapter is linked.
FakeSession& fakeSession();
ManualQueue& fakeMainQueue();
TestReadings& fakeReadings();

/// A test that finds the platform's fakes as good as new.
class OnFakes : public testing::Test {
 protected:
  OnFakes() {
    fakeSession().forget();
    fakeReadings().facts = {};
  }
};

}  // namespace orvane::test
