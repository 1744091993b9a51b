#pragma once

#include <deque>
#include <gtest/gtest.h>
#include <mutex>
#include <string>

#include "orvane/platform/Platform.h"
#include "tests/support/FakeSession.h"

namespace orvane::test {

/// Runs its tasks when the test calls run().
class ManualQueue final : public DispatchQueue {
 public:
  void async(Task task) override {
    const std::lock_guard lock(mutex_);
    tasks_.push_back(std::move(task));
  }

  /// Runs the tasks that wait, and returns their number.
  std::size_t run() {
    std::deque<Task> tasks;
    {
      const std::lock_guard lock(mutex_);
      tasks.swap(tasks_);
    }
    for (Task& task : tasks) task();
    return tasks.size();
  }

  void clear() { tasks_.clear(); }

 private:
  std::mutex mutex_;
  std::deque<Task> tasks_;
};

/// Gives readings that a test may change.
struct TestReadings final : DeviceReadings {
  struct Facts {
    std::string machine = "iPhone8,1";
    std::string version = "9.3.1";
    std::optional<std::string> vendor = {};
    std::optional<std::string> carrier = {};
    ScreenBounds bounds = {};
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

/// The fakes behind the platform of a program without adapter. Each test OnFakes has a session of its own.
FakeSession& fakeSession();
ManualQueue& fakeMainQueue();
TestReadings::Facts& fakeFacts();

/// A test that finds the platform's fakes new.
class OnFakes : public testing::Test {
 protected:
  OnFakes();
};

}  // namespace orvane::test
