#pragma once

#include <gtest/gtest.h>
#include <string>

#include "orvane/platform/MainQueue.h"
#include "orvane/platform/Platform.h"
#include "tests/support/FakeSession.h"

namespace orvane::test {

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

/// The fakes that the platform consists of in a program without an adapter. A test runs the main
/// queue's work by runPending(), and leaves none.
FakeSession& fakeSession();
MainQueue& fakeMainQueue();
TestReadings::Facts& fakeFacts();

/// A test that finds the platform's fakes new.
class OnFakes : public testing::Test {
 protected:
  OnFakes();
};

}  // namespace orvane::test
