// The contract of every URL session. Each session is one row at the end.

#include <atomic>
#include <gtest/gtest.h>

#include "tests/support/AdapterUnderTest.h"
#include "tests/support/FakeSession.h"
#include "tests/support/LoopbackServer.h"
#include "tests/support/perform.h"

namespace orvane::test {
namespace {

/// A session, and a way to have `count` replies come for the requests that were started.
struct SessionUnderTest {
  virtual ~SessionUnderTest() = default;
  virtual void letCome(std::size_t count) = 0;
  /// Waits until most of that many replies have arrived and their handlers are due.
  virtual void awaitMost(std::size_t) {}

  std::shared_ptr<URLSession> session;
  URLRequest good{""};
  URLRequest failing{""};
};

struct FakeUnderTest final : SessionUnderTest {
  FakeUnderTest() { session = fake; }
  void letCome(std::size_t count) override {
    for (; count > 0; --count) {
      const bool fails = fake->requests[answered++].url() == "failing";
      if (fails) {
        fake->post({std::nullopt, std::nullopt, std::make_shared<const Error>()});
      } else {
        fake->post({Bytes(), HTTPResponse{200}, nullptr});
      }
    }
    if (!session) fake.reset();
  }
  std::shared_ptr<FakeSession> fake = std::make_shared<FakeSession>();
  std::size_t answered = 0;
};

struct SocketsUnderTest final : SessionUnderTest {
  SocketsUnderTest() {
    session = makeSession();
    good = URLRequest(server.url());
  }
  void letCome(std::size_t) override {}
  /// When the server has a request, all but the six latest replies have arrived.
  void awaitMost(std::size_t count) override {
    while (server.requests().size() < count) std::this_thread::yield();
  }
  LoopbackServer server{[](const auto&) { return LoopbackServer::Answer{reply("")}; }};
};

template <class T>
std::unique_ptr<SessionUnderTest> make() {
  auto made = std::make_unique<T>();
  made->failing = URLRequest("failing");
  return made;
}

class SessionContract : public testing::TestWithParam<std::unique_ptr<SessionUnderTest> (*)()> {
 protected:
  std::unique_ptr<SessionUnderTest> subject = GetParam()();
};

TEST_P(SessionContract, HandlersComeOnceInTheBackgroundOneAtATime) {
  constexpr std::size_t count = 20;
  std::atomic<std::size_t> calls = 0;
  std::atomic<bool> busy = false;
  std::promise<void> all;
  const auto caller = std::make_shared<const std::thread::id>(std::this_thread::get_id());
  for (std::size_t i = 0; i < count; ++i) {
    subject->session->startDataTask(subject->good, [&, caller](const DataTaskResult& result) {
      EXPECT_FALSE(busy.exchange(true));
      EXPECT_TRUE(result.body && result.response && !result.error);
      EXPECT_NE(*caller, std::this_thread::get_id());
      busy = false;
      if (++calls == count) all.set_value();
    });
  }
  subject->letCome(count);
  all.get_future().wait();
  std::future<TaskOutcome> last = start(*subject->session, subject->good);
  subject->letCome(1);
  EXPECT_NE(last.get().thread, std::this_thread::get_id());
  EXPECT_EQ(calls, count);
  EXPECT_EQ(caller.use_count(), 1);
}

TEST_P(SessionContract, AFailureHasAnErrorAlone) {
  std::future<TaskOutcome> failure = start(*subject->session, subject->failing);
  subject->letCome(1);
  const DataTaskResult result = failure.get().result;
  EXPECT_TRUE(result.error && !result.body && !result.response);
}

TEST_P(SessionContract, CancellingDropsAndReleasesTheHandlersThatHaveNotStarted) {
  constexpr std::size_t count = 20;
  const auto calls = std::make_shared<std::atomic<std::size_t>>();
  std::promise<void> cancelled;
  for (std::size_t i = 0; i < count; ++i) {
    subject->session->startDataTask(subject->good, [&cancelled, calls](const auto&) {
      if (++*calls == 1) cancelled.get_future().wait();
    });
  }
  subject->letCome(count);
  subject->awaitMost(count);
  subject->session->cancelAllOperations();
  cancelled.set_value();
  while (calls.use_count() > 1) std::this_thread::yield();
  EXPECT_LT(*calls, count);
}

TEST_P(SessionContract, ATaskOutlivesItsSession) {
  std::future<TaskOutcome> outcome = start(*subject->session, subject->good);
  subject->session.reset();
  subject->letCome(1);
  EXPECT_FALSE(outcome.get().result.error);
}

TEST_P(SessionContract, HandlersMayStartTasksAndCancel) {
  std::promise<void> done;
  subject->session->startDataTask(subject->good, [&](const auto&) {
    subject->session->cancelAllOperations();
    subject->session->startDataTask(subject->good, [&](const auto&) { done.set_value(); });
    subject->letCome(1);
  });
  subject->letCome(1);
  done.get_future().wait();
}

INSTANTIATE_TEST_SUITE_P(Fake, SessionContract, testing::Values(&make<FakeUnderTest>));
INSTANTIATE_TEST_SUITE_P(Adapter, SessionContract, testing::Values(&make<SocketsUnderTest>));

}  // namespace
}  // namespace orvane::test
