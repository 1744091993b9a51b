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

/// Records what a coroutine gets, and that it has ended.
struct Record {
  std::string said;
  std::shared_ptr<int> alive = std::make_shared<int>();

  bool hasEnded() const { return alive.use_count() == 1; }
};

template <class Coroutine>
Coroutine sendCode(OrvaneManager* manager, Record& record, [[maybe_unused]] std::shared_ptr<int> alive) {
  const auto sent = co_await requestCode(*manager, "1", "2");
  record.said += sent ? "ok" : errorDescription(*sent.error);
}

template <class Coroutine>
Coroutine trySendingCode(OrvaneManager* manager, Record& record,
                         [[maybe_unused]] std::shared_ptr<int> alive) {
  try {
    co_await requestCode(*manager, "1", "2");
  } catch (const std::runtime_error& error) {
    record.said += error.what();
  }
}

class AwaitTest : public OnFakes {};
using AwaitDeathTest = AwaitTest;

TEST_F(AwaitTest, GoesOnOnTheMainQueueAlsoWithoutTheManager) {
  Record record;
  auto manager = std::make_unique<OrvaneManager>();
  sendCode<Detached>(manager.get(), record, record.alive);
  manager.reset();
  fakeSession().answer(R"({"code":0})");
  fakeMainQueue().runPending();
  EXPECT_EQ(record.said, "");
  fakeMainQueue().runPending();
  EXPECT_EQ(record.said, "ok");
  EXPECT_TRUE(record.hasEnded());
}

TEST_F(AwaitTest, GoesOnLaterWhereTheCallFailsAtOnce) {
  TestManager failing([](const auto& finished) { finished(failed({"at once", 1, {}}).error); });
  Record record;
  sendCode<Detached>(&failing, record, record.alive);
  EXPECT_EQ(record.said, "");
  fakeMainQueue().runPending();
  EXPECT_EQ(record.said, "at once (1)");
  EXPECT_TRUE(record.hasEnded());
}

TEST_F(AwaitTest, DestroysADetachedCoroutineWhoseCallIsDroppedOnTheMainQueue) {
  Record record;
  CodeFinished kept;
  TestManager keeping([&](auto finished) { kept = std::move(finished); });
  sendCode<Detached>(&keeping, record, record.alive);
  EXPECT_FALSE(record.hasEnded());
  std::thread([&] { kept = nullptr; }).join();
  EXPECT_FALSE(record.hasEnded());
  fakeMainQueue().runPending();
  EXPECT_TRUE(record.hasEnded());

  TestManager dropping([](const auto&) {});  // While the coroutine is being suspended.
  sendCode<Detached>(&dropping, record, record.alive);
  fakeMainQueue().runPending();
  EXPECT_TRUE(record.hasEnded());
  EXPECT_EQ(record.said, "");
}

TEST_F(AwaitTest, LeavesAForeignCoroutineToItsOwner) {
  Record record;
  CodeFinished kept;
  TestManager keeping([&](auto finished) { kept = std::move(finished); });
  const auto finishAfter = [&](auto act) {
    Owned coroutine = sendCode<Owned>(&keeping, record, record.alive);
    act(coroutine);
    if (kept) kept(nullptr);
    fakeMainQueue().runPending();
    if (coroutine.handle) coroutine.handle.destroy();
    return std::exchange(record.said, "");
  };
  EXPECT_EQ(finishAfter([](Owned&) {}), "ok");
  EXPECT_EQ(finishAfter([](Owned& coroutine) { std::exchange(coroutine.handle, nullptr).destroy(); }), "");
  EXPECT_EQ(finishAfter([&](Owned&) { kept = nullptr; }), "");
  EXPECT_TRUE(record.hasEnded());
}

/// What a session may have done with a handler before it throws.
void drop(CodeFinished, CodeFinished&) {}
void keep(CodeFinished finished, CodeFinished& kept) {
  kept = std::move(finished);
}
void call(CodeFinished finished, CodeFinished&) {
  finished(nullptr);
}

TEST_F(AwaitDeathTest, AnExceptionOfTheSessionReachesTheCoroutine) {
  for (const auto act : {drop, keep, call}) {
    Record record;
    CodeFinished kept;
    TestManager throwing([&](auto finished) {
      act(std::move(finished), kept);
      throw std::runtime_error("no thread to be had");
    });
    EXPECT_DEATH(sendCode<Detached>(&throwing, record, record.alive), "no thread to be had");

    trySendingCode<Detached>(&throwing, record, record.alive);
    EXPECT_EQ(std::exchange(record.said, ""), "no thread to be had");
    EXPECT_TRUE(record.hasEnded());
    const Owned owned = trySendingCode<Owned>(&throwing, record, record.alive);
    EXPECT_EQ(record.said, "no thread to be had");
    if (kept) kept(nullptr);
    kept = nullptr;
    fakeMainQueue().runPending();  // Finds nothing to resume or destroy.
    owned.handle.destroy();
    EXPECT_TRUE(record.hasEnded());
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
