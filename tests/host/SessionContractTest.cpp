// The contract of every URL session, tested with the linked adapter's.

#include <atomic>
#include <gtest/gtest.h>

#include "orvane/host/HostSession.h"
#include "tests/support/AdapterUnderTest.h"
#include "tests/support/LoopbackServer.h"
#include "tests/support/perform.h"

namespace orvane::test {
namespace {

class SessionContract : public testing::Test {
 protected:
  LoopbackServer server{[](const auto&) { return LoopbackServer::Answer{reply("")}; }};
  const URLRequest good{server.url()};
  std::shared_ptr<URLSession> session = makeSession(std::make_shared<HostSession>());
};

TEST_F(SessionContract, HandlersComeOnceInTheBackgroundOneAtATime) {
  constexpr int count = 20;
  std::atomic<int> calls = 0;
  std::atomic<bool> busy = false;
  std::promise<void> all;
  session->startDataTask(good, nullptr);
  const auto caller = std::make_shared<const std::thread::id>(std::this_thread::get_id());
  for (int i = 0; i < count; ++i) {
    session->startDataTask(good, [&, caller](const DataTaskResult& result) {
      EXPECT_FALSE(busy.exchange(true));
      EXPECT_TRUE(result.body && result.response && !result.error);
      EXPECT_NE(*caller, std::this_thread::get_id());
      busy = false;
      if (++calls == count) all.set_value();
    });
  }
  all.get_future().wait();
  perform(*session, good);  // A handler that is called twice has been by now.
  EXPECT_EQ(calls, count);
  EXPECT_EQ(caller.use_count(), 1);
}

TEST_F(SessionContract, AFailureHasAnErrorAlone) {
  const DataTaskResult result = start(*session, URLRequest("failing")).get().result;
  EXPECT_TRUE(result.error && !result.body && !result.response);
}

TEST_F(SessionContract, CancellingDropsAndReleasesTheHandlersThatHaveNotStarted) {
  const auto calls = std::make_shared<std::atomic<int>>();
  std::promise<void> begun, allStarted, cancelled;
  const URLRequest failing("failing");
  session->startDataTask(failing, [&](const auto&) {
    begun.set_value();
    allStarted.get_future().wait();
  });
  begun.get_future().wait();
  for (int i = 0; i < 20; ++i) {
    session->startDataTask(failing, [&cancelled, calls](const auto&) {
      if (++*calls == 1) cancelled.get_future().wait();
    });
  }
  allStarted.set_value();
  while (*calls == 0) std::this_thread::yield();
  while (calls.use_count() > 2) session->cancelAllOperations();  // The first has started, and is kept.
  cancelled.set_value();
  while (calls.use_count() > 1) std::this_thread::yield();
  EXPECT_EQ(*calls, 1);
}

TEST_F(SessionContract, ATaskOutlivesItsSession) {
  std::future<TaskOutcome> outcome = start(*session, good);
  session.reset();
  EXPECT_FALSE(outcome.get().result.error);
}

TEST_F(SessionContract, HandlersMayStartTasksAndCancel) {
  std::promise<void> done;
  session->startDataTask(good, [&](const auto&) {
    session->cancelAllOperations();
    session->startDataTask(good, [&](const auto&) { done.set_value(); });
  });
  done.get_future().wait();
}

}  // namespace
}  // namespace orvane::test
