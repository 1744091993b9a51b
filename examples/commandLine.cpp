// Signs in on the command line, with callbacks. The README has the same program as a coroutine.
#include <fstream>
#include <iostream>

#include "orvane/host/hostMainQueue.h"

#include "developmentSession.h"
#include "readLine.h"

using namespace orvane;

static std::string ask(const char* question) {
  std::cout << question << std::flush;
  return readLine();
}

int main(int argc, char** argv) {
  const auto session = developmentSession(argc, argv);
  installPlatform({.sharedSession = session});
  OrvaneManager& manager = OrvaneManager::shareManager();
  const std::string mobile = ask("Mobile number: ");
  int status = 1;

  const auto failed = [](const ErrorPtr& error) {
    if (!error) return false;
    std::cerr << "Sign-in failed: " << message(*error) << "\n";
    hostMainQueue().stop();
    return true;
  };
  const auto loggedIn = [&](std::optional<std::string> words, ErrorPtr error) {
    if (failed(error)) return;
    std::cout << *words << "\n";
    status = 0;
    hostMainQueue().stop();
  };
  const auto codeSent = [&](ErrorPtr error) {
    if (failed(error)) return;
    // A login always reports on the main queue; the other calls do so with onMainQueue().
    manager.requestLogin(mobile, ask("The code in the text message: "), loggedIn);
  };
  const auto pictureCame = [&](std::optional<Bytes> picture, ErrorPtr error) {
    if (failed(error)) return;
    std::ofstream("picture.png", std::ios::binary) << std::string(picture->begin(), picture->end());
    manager.requestCode(mobile, ask("What does picture.png say? "), onMainQueue(codeSent));
  };
  manager.requestPictureCode(mobile, onMainQueue(pictureCame));
  hostMainQueue().run();                             // Until stop() is called.
  session->waitUntilIdle(std::chrono::seconds(10));  // Until the report about the device is sent.
  return status;
}
