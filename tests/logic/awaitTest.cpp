#include <gtest/gtest.h>
#include <stdexcept>

#include "orvane/await.h"
#include "orvane/client/ErrorKind.h"
#include "orvane/network/NetworkTool.h"
#include "tests/support/TestPlatform.h"

namespace orvane::test {
namespace {

/// A manager that does with `finished` what the test wants, before requestCode returns.
struct Manager : OrvaneManager {
  explicit Manager(std::function<void(CodeFinished)> act) : act(std::move(act)) {}
  void requestCode(std::string, std::string, CodeFinished finished) override { act(std::move(finished)); }
  std::function<void(CodeFinished)> act;
};

/// A coroutine that its owner destroys.
struct Owned {
  struct promise_type {
    Owned get_return_object() {
      return {Handle(std::coroutine_handle<promise_type>::from_promise(*this).address())};
    }
    std::suspend_never initial_suspend() { return {}; }
    std::suspend_always final_suspend() noexcept { return {}; }
    void return_void() {}
    void unhandled_exception() { throw; }
  };
  struct Destroy {
    void operator()(void* address) const { std::coroutine_handle<>::from_address(address).destroy(); }
  };
  using Handle = std::unique_ptr<void, Destroy>;
  Handle handle;
};

/// What a coroutine leaves behind.
struct Trace {
  std::string said;
  std::thread::id thread;
  std::shared_ptr<int> alive = std::make_shared<int>();

  void say(const auto& value, const ErrorPtr& error) {
    said += value + (error ? description(*error) : "ok") + ";";
    thread = std::this_thread::get_id();
  }
  bool hasEnded() const { return alive.use_count() == 1; }
};

template <class Coroutine>
Coroutine signIn(OrvaneManager* manager, Trace& trace, [[maybe_unused]] std::shared_ptr<int> alive) {
  const std::string mobile = "+447700900123 is longer than a text kept in place";
  const auto picture = co_await requestPictureCode(*manager, mobile);
  trace.say(picture.value ? std::string(picture->begin(), picture->end()) + " " : "", picture.error);
  const auto sent = co_await requestCode(*manager, mobile, std::string("text of the pi") + "cture");
  trace.say(std::string(sent ? "sent " : ""), sent.error);
  const auto login = co_await requestLogin(*manager, mobile, "123456");
  trace.say(*login + " ", login.error);
}

template <class Coroutine>
Coroutine sendCode(OrvaneManager* manager, Trace& trace, [[maybe_unused]] std::shared_ptr<int> alive) {
  const auto sent = co_await requestCode(*manager, "1", "2");
  trace.say(std::string(), sent.error);
}

DataTaskResult reply(std::string_view body) {
  return {Bytes(body.begin(), body.end()), HTTPResponse{200}, nullptr};
}

TEST(Await, GoesOnOnTheMainQueueWithEachOutcome) {
  const auto lost = std::make_shared<const Error>(Error{"NSURLErrorDomain", -1005, {{"a", "b"}}});
  Trace trace;
  auto manager = std::make_unique<OrvaneManager>();
  signIn<Detached>(manager.get(), trace, trace.alive);
  const std::pair<DataTaskResult, std::string> steps[] = {
      {reply(R"({"code":0,"data":[104,105]})"), "hi ok;"},
      {{std::nullopt, std::nullopt, lost}, "hi ok;NSURLErrorDomain (-1005);"},
      {reply(R"({"code":5,"msg":"no"})"), "hi ok;NSURLErrorDomain (-1005);no no (1);"},
  };
  for (const auto& [result, said] : steps) {
    const std::string before = trace.said;
    if (said.ends_with("(1);")) manager.reset();  // The call does without it.
    fakeSession().post(result);
    EXPECT_EQ(trace.said, before);
    while (trace.said == before) fakeMainQueue().run();
    EXPECT_EQ(trace.said, said);
    EXPECT_EQ(trace.thread, std::this_thread::get_id());
  }
  EXPECT_TRUE(trace.hasEnded());
}

TEST(Await, GoesOnLaterWhereTheCallFailsAtOnce) {
  Trace trace;
  Manager failing([](const auto& finished) {
    finished(std::make_shared<const Error>(Error{"at once", 1, {}}));
  });
  sendCode<Detached>(&failing, trace, trace.alive);
  EXPECT_EQ(trace.said, "");
  fakeMainQueue().run();
  EXPECT_EQ(trace.said, "at once (1);");
  EXPECT_TRUE(trace.hasEnded());
}

TEST(Await, DestroysADetachedCoroutineWhoseCallIsDropped) {
  Trace trace;
  OrvaneManager::CodeFinished kept;
  Manager keeping([&](auto finished) { kept = std::move(finished); });
  sendCode<Detached>(&keeping, trace, trace.alive);
  EXPECT_FALSE(trace.hasEnded());
  kept = nullptr;
  EXPECT_TRUE(trace.hasEnded());

  Manager dropping([](const auto&) {});  // While the coroutine is being suspended.
  sendCode<Detached>(&dropping, trace, trace.alive);
  EXPECT_TRUE(trace.hasEnded());
  EXPECT_EQ(trace.said, "");
}

TEST(Await, LeavesAForeignCoroutineToItsOwner) {
  Trace trace;
  OrvaneManager::CodeFinished kept;
  Manager keeping([&](auto finished) { kept = std::move(finished); });
  const auto finishAfter = [&](auto act) {
    Owned coroutine = sendCode<Owned>(&keeping, trace, trace.alive);
    act(coroutine);
    if (kept) kept(nullptr);
    fakeMainQueue().run();
    return std::exchange(trace.said, "");
  };
  EXPECT_EQ(finishAfter([](Owned&) {}), "ok;");
  EXPECT_EQ(finishAfter([](Owned& coroutine) { coroutine.handle.reset(); }), "");
  EXPECT_EQ(finishAfter([&](Owned&) { kept = nullptr; }), "");
  EXPECT_TRUE(trace.hasEnded());
}

Detached failing() {
  co_await requestCode(OrvaneManager::shareManager(), "1", "2");
  throw std::runtime_error("out of the coroutine");
}

TEST(AwaitDeathTest, AnExceptionOutOfADetachedCoroutineEndsTheProcess) {
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  const auto fail = [] {
    failing();
    fakeSession().answer(R"({"code":0})");
    while (fakeMainQueue().run() > 0) continue;
  };
  EXPECT_DEATH(fail(), "out of the coroutine");
}

TEST(OnMainQueue, TakesEveryCallbackAndWhatCanOnlyBeMoved) {
  std::string said;
  auto add = [&said, word = std::make_unique<std::string>("data ")](const std::optional<Bytes>& data,
                                                                    const ErrorPtr& error) {
    said += *word + (data ? "there" : description(*error));
  };
  OrvaneManager().requestPictureCode("1", onMainQueue(std::move(add)));
  fakeSession().answer(DataTaskResult{std::nullopt, std::nullopt,
                                      std::make_shared<const Error>(Error{"lost", 2, {{"a", "b"}}})});
  EXPECT_EQ(said, "");
  fakeMainQueue().run();
  EXPECT_EQ(said, "data lost (2)");

  NetworkTool tool;
  tool.requestJSON(HTTPMethod::GET, "", std::nullopt,
                   onMainQueue([&](const auto&, const ErrorPtr& error) { said = message(*error); }));
  EXPECT_EQ(said, "data lost (2)");
  fakeMainQueue().run();
  EXPECT_EQ(said, "The request could not be sent.");
}

}  // namespace
}  // namespace orvane::test
