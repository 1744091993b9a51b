// A sign-in in Asio's loop, as a coroutine.
#include <asio.hpp>
#include <fstream>
#include <iostream>

#include "orvane/host/MainQueue.h"

#include "developmentSession.h"

using namespace orvane;

static asio::awaitable<std::string> ask(auto& input, const char* question) {
  std::string line;
  std::cout << question << std::flush;
  co_await asio::async_read_until(input, asio::dynamic_buffer(line), '\n', asio::use_awaitable);
  co_return line.substr(0, line.find('\n'));
}

/// Makes a call. The coroutine goes on in its loop, with the call's result or with its error as exception.
template <class... Result, class Call>
static auto resultOf(Call call) {
  const auto start = [call](auto coroutine) {
    const auto waiting = std::make_shared<decltype(coroutine)>(std::move(coroutine));
    call([waiting](Result... result, ErrorPtr error) {
      const auto failure = error ? std::make_exception_ptr(std::runtime_error(description(*error))) : nullptr;
      asio::post(waiting->get_executor(), [=] { (*waiting)(failure, result...); });
    });
  };
  using Signature = void(std::exception_ptr, Result...);
  return asio::async_initiate<decltype(asio::use_awaitable), Signature>(start, asio::use_awaitable);
}

static asio::awaitable<void> signIn() {
  asio::posix::stream_descriptor input(co_await asio::this_coro::executor, STDIN_FILENO);
  OrvaneManager& manager = OrvaneManager::shareManager();
  const std::string mobile = co_await ask(input, "Mobile number: ");
  const auto picture = co_await resultOf<std::optional<Bytes>>(
      [&](auto finished) { manager.requestPictureCode(mobile, finished); });
  std::ofstream("picture.png", std::ios::binary) << std::string(picture->begin(), picture->end());
  const std::string text = co_await ask(input, "What does picture.png say? ");
  co_await resultOf([&](auto finished) { manager.requestCode(mobile, text, finished); });
  const std::string code = co_await ask(input, "The code in the text message: ");
  const auto message = co_await resultOf<std::optional<std::string>>(
      [&](auto finished) { manager.requestLogin(mobile, code, finished); });
  std::cout << *message << "\n";
}

int main(int argc, char** argv) {
  auto& loop = *new asio::io_context;  // Never destroyed: the library may post to it until the process ends.
  const auto post = [&](Task task) { asio::post(loop, std::move(task)); };
  installPlatform(
      {.sharedSession = developmentSession(argc, argv), .mainQueue = std::make_shared<PostingQueue>(post)});
  const auto work = asio::make_work_guard(loop);
  asio::co_spawn(loop, signIn(), [&](std::exception_ptr failure) {
    if (failure) std::rethrow_exception(failure);
    loop.stop();
  });
  loop.run();
}
