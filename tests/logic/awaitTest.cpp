#include <gtest/gtest.h>
#include <stdexcept>

#include "orvane/await.h"
#include "orvane/client/ErrorKind.h"
#include "orvane/network/NetworkTool.h"
#include "tests/support/TestPlatform.h"

namespace orvane::test {
namespace {

using CodeFinished = OrvaneManager::CodeFinished;

/// Hands `finished` to the test.
struct TestManager : OrvaneManager {
  explicit TestManager(std::function<void(CodeFinished)> act) : act(std::move(act)) {}
  void requestCode(std::string, std::string, CodeFinished finished) override { act(std::move(finished)); }
  const std::function<void(CodeFinished)> act;
};

/// A coroutine that its owner destroys.
struct Owned {
  struct promise_type {
    Owned get_return_object() { return {std::coroutine_handle<promise_type>::from_promise(*this)}; }
    std::suspend_never initial_suspend() { return {}; }
    std::suspend_always final_suspend() noexcept { return {}; }
    void return_void() {}
    void unhandled_exception() { throw; }
  };
  std::coroutine_handle<> handle;
};

/// What a coroutine has said.
using Record = std::shared_ptr<std::string>;

template <class Coroutine>
Coroutine sendCode(OrvaneManager* manager, Record record) {
  const auto sent = co_await requestCode(*manager, "1", "2");
  *record += sent ? "ok" : errorDescription(*sent.error);
}

template <class Coroutine>
Coroutine trySendingCode(OrvaneManager* manager, Record record) {
  try {
    co_await requestCode(*manager, "1", "2");
  } catch (const std::runtime_error& error) {
    *record += error.what();
  }
}

class AwaitTest : public OnFakes {
 protected:
  /// Returns true if no coroutine shares the record any more.
  bool hasEnded() const { return record.use_count() == 1; }

  const Record record = std::make_shared<std::string>();
  CodeFinished kept;
  TestManager keeping{[this](auto finished) { kept = std::move(finished); }};
};
using AwaitDeathTest = AwaitTest;

TEST_F(AwaitTest, GoesOnOnTheMainQueueAlsoWithoutTheManager) {
  auto manager = std::make_unique<OrvaneManager>();
  sendCode<Detached>(manager.get(), record);
  manager.reset();
  fakeSession().answer(R"({"code":0})");
  fakeMainQueue().runPending();
  EXPECT_EQ(*record, "");
  fakeMainQueue().runPending();
  EXPECT_EQ(*record, "ok");
  EXPECT_TRUE(hasEnded());
}

TEST_F(AwaitTest, GoesOnLaterWhereTheCallFailsAtOnce) {
  TestManager failing([](const auto& finished) { finished(failed({"at once", 1, {}}).error); });
  sendCode<Detached>(&failing, record);
  EXPECT_EQ(*record, "");
  fakeMainQueue().runPending();
  EXPECT_EQ(*record, "at once (1)");
  EXPECT_TRUE(hasEnded());
}

TEST_F(AwaitTest, DestroysADetachedCoroutineWhoseCallIsDroppedOnTheMainQueue) {
  sendCode<Detached>(&keeping, record);
  EXPECT_FALSE(hasEnded());
  std::thread([&] { kept = nullptr; }).join();
  EXPECT_FALSE(hasEnded());
  fakeMainQueue().runPending();
  EXPECT_TRUE(hasEnded());

  TestManager dropping([](const auto&) {});  // While the coroutine is being suspended.
  sendCode<Detached>(&dropping, record);
  fakeMainQueue().runPending();
  EXPECT_TRUE(hasEnded());
  EXPECT_EQ(*record, "");
}

TEST_F(AwaitTest, LeavesAForeignCoroutineToItsOwner) {
  const auto finishAfter = [&](auto act) {
    Owned coroutine = sendCode<Owned>(&keeping, record);
    act(coroutine);
    if (kept) kept(nullptr);
    fakeMainQueue().runPending();
    if (coroutine.handle) coroutine.handle.destroy();
    return std::exchange(*record, "");
  };
  EXPECT_EQ(finishAfter([](Owned&) {}), "ok");
  EXPECT_EQ(finishAfter([](Owned& coroutine) { std::exchange(coroutine.handle, nullptr).destroy(); }), "");
  EXPECT_EQ(finishAfter([&](Owned&) { kept = nullptr; }), "");
  EXPECT_TRUE(hasEnded());
}

TEST_F(AwaitDeathTest, AnExceptionOfTheSessionReachesTheCoroutine) {
  // The session may have dropped, kept or called its handler before it throws.
  const std::function<void(CodeFinished)> acts[] = {[](const auto&) {},
                                                    [this](auto finished) { kept = std::move(finished); },
                                                    [](const auto& finished) { finished(nullptr); }};
  for (const auto& act : acts) {
    TestManager throwing([&](auto finished) {
      act(std::move(finished));
      throw std::runtime_error("no thread to be had");
    });
    EXPECT_DEATH(sendCode<Detached>(&throwing, record), "no thread to be had");

    trySendingCode<Detached>(&throwing, record);
    EXPECT_EQ(std::exchange(*record, ""), "no thread to be had");
    EXPECT_TRUE(hasEnded());
    const Owned owned = trySendingCode<Owned>(&throwing, record);
    EXPECT_EQ(std::exchange(*record, ""), "no thread to be had");
    if (kept) kept(nullptr);
    kept = nullptr;
    fakeMainQueue().runPending();  // Finds nothing to resume or destroy.
    owned.handle.destroy();
    EXPECT_TRUE(hasEnded());
  }
}

TEST_F(AwaitTest, OnMainQueueDefersACallbackWithCapturesThatOnlyMove) {
  std::string said;
  auto say = [&said, word = std::make_unique<std::string>("failed: ")](const auto&, const ErrorPtr& error) {
    said = *word + errorMessage(*error);
  };
  NetworkTool().requestJSON(HTTPMethod::GET, "", std::nullopt, onMainQueue(std::move(say)));
  EXPECT_EQ(said, "");
  fakeMainQueue().runPending();
  EXPECT_EQ(said, "failed: The request could not be sent.");
}

}  // namespace
}  // namespace orvane::test
