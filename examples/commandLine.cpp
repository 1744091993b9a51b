// Signs in on the command line, with callbacks. The README has the same program as a coroutine. Like the
// other examples, it takes the service's address as its argument, such as http://127.0.0.1:8080.
#include <fstream>
#include <iostream>

#include "orvane/host/HostSession.h"
#include "orvane/host/hostMainQueue.h"
#include "orvane/orvane.h"

#include "readLine.h"

using namespace orvane;

static std::string ask(const char* question) {
  std::cout << question << std::flush;
  return readLine();
}

int main(int argc, char** argv) {
  const std::string address = argc > 1 ? argv[1] : std::string(serviceBaseURL());
  const auto session = std::make_shared<HostSession>();
  installPlatform({.sharedSession = std::make_shared<ReaddressedSession>(session, address),
                   .failureWords = errorMessage});
  OrvaneManager& manager = OrvaneManager::shareManager();
  const std::string mobile = ask("Mobile number: ");
  int status = 1;

  const auto failed = [](const ErrorPtr& error) {
    if (!error) return false;
    std::cerr << "Sign-in failed: " << errorMessage(*error) << "\n";
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
    manager.requestLogin(mobile, ask("The code in the text message: "), onMainQueue(loggedIn));
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
