// Signs in with an Asio event loop, as an asio::awaitable coroutine.
#include <asio.hpp>
#include <fstream>
#include <iostream>

#include "orvane/await.h"
#include "orvane/host/HostSession.h"
#include "orvane/orvane.h"
#include "orvane/platform/PostingQueue.h"

#include "readLine.h"

using namespace orvane;

/// Asks a question. The loop runs on until there is an answer.
static asio::awaitable<std::string> ask(asio::posix::stream_descriptor& input, const char* question) {
  std::cout << question << std::flush;
  co_await input.async_wait(input.wait_read, asio::use_awaitable);
  co_return readLine();
}

/// Makes a call of orvane/await.h awaitable in an asio::awaitable coroutine. A failed call throws there a
/// std::runtime_error with the error's message.
template <class Call>
static auto forAsio(Call call) {
  using Result = decltype(call.await_resume());
  const auto start = [](auto handler, Call call) -> Detached {
    auto waiting = std::move(handler);
    Result outcome = co_await std::move(call);
    const auto failure =
        outcome ? nullptr : std::make_exception_ptr(std::runtime_error(errorMessage(*outcome.error)));
    std::move(waiting)(failure, std::move(outcome));
  };
  using Signature = void(std::exception_ptr, Result);
  return asio::async_initiate<decltype(asio::use_awaitable), Signature>(start, asio::use_awaitable,
                                                                        std::move(call));
}

static asio::awaitable<void> signIn() {
  asio::posix::stream_descriptor input(co_await asio::this_coro::executor, STDIN_FILENO);
  OrvaneManager& manager = OrvaneManager::shareManager();
  const std::string mobile = co_await ask(input, "Mobile number: ");
  const auto picture = co_await forAsio(requestPictureCode(manager, mobile));
  std::ofstream("picture.png", std::ios::binary) << std::string(picture->begin(), picture->end());
  const std::string text = co_await ask(input, "What does picture.png say? ");
  co_await forAsio(requestCode(manager, mobile, text));
  const std::string code = co_await ask(input, "The code in the text message: ");
  const auto login = co_await forAsio(requestLogin(manager, mobile, code));
  std::cout << *login << "\n";
}

int main(int argc, char** argv) {
  asio::io_context loop;
  const auto queue = std::make_shared<PostingQueue>([&](Work work) { asio::post(loop, std::move(work)); });
  const std::string address = argc > 1 ? argv[1] : std::string(serviceBaseURL());
  const auto session = std::make_shared<HostSession>();
  installPlatform({.sharedSession = std::make_shared<ReaddressedSession>(session, address),
                   .mainQueue = queue,
                   .failureWords = errorMessage});
  const auto guard = asio::make_work_guard(loop);
  int status = 0;
  asio::co_spawn(loop, signIn(), [&](std::exception_ptr failure) {
    try {
      if (failure) std::rethrow_exception(failure);
    } catch (const std::exception& error) {
      std::cerr << "Sign-in failed: " << error.what() << "\n";
      status = 1;
    }
    loop.stop();
  });
  loop.run();
  session->waitUntilIdle(std::chrono::seconds(10));  // Until the report about the device is sent.
  queue->close();                                    // Before the loop ends.
  return status;
}
