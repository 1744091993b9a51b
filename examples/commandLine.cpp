// A sign-in on the command line, one step after the other.
#include <fstream>
#include <iostream>
#include <tuple>

#include "orvane/host/MainQueue.h"

#include "developmentSession.h"

using namespace orvane;

static std::string ask(const char* question) {
  std::string answer;
  std::cout << question << std::flush;
  std::getline(std::cin, answer);
  return answer;
}

/// Makes a call and runs the main queue until it is over. What `finished` was called with.
template <class... Results, class Call>
static std::tuple<Results...> resultsOf(Call call) {
  std::tuple<Results...> results;
  call([&](Results... come) {
    results = {std::move(come)...};
    hostMainQueue().stop();
  });
  hostMainQueue().run();
  return results;
}

static int fail(const Error& error) {
  std::cerr << "Sign-in failed: " << description(error) << "\n";
  return 1;
}

int main(int argc, char** argv) {
  installPlatform({.sharedSession = developmentSession(argc, argv)});
  OrvaneManager& manager = OrvaneManager::shareManager();

  const std::string mobile = ask("Mobile number: ");
  const auto [picture, noPicture] = resultsOf<std::optional<Bytes>, ErrorPtr>(
      [&](auto finished) { manager.requestPictureCode(mobile, finished); });
  if (noPicture) return fail(*noPicture);
  std::ofstream("picture.png", std::ios::binary) << std::string(picture->begin(), picture->end());

  const std::string text = ask("What does picture.png say? ");
  const auto [noCode] =
      resultsOf<ErrorPtr>([&](auto finished) { manager.requestCode(mobile, text, finished); });
  if (noCode) return fail(*noCode);

  const std::string code = ask("The code in the text message: ");
  const auto [message, noLogin] = resultsOf<std::optional<std::string>, ErrorPtr>(
      [&](auto finished) { manager.requestLogin(mobile, code, finished); });
  if (noLogin) return fail(*noLogin);
  std::cout << *message << "\n";
}
