// Signs in with GLib's main loop, which is also GTK's. No call blocks the loop.
#include <glib-unix.h>
#include <iostream>

#include "orvane/host/HostSession.h"
#include "orvane/orvane.h"
#include "orvane/platform/PostingQueue.h"

#include "readLine.h"

using namespace orvane;
static GMainLoop* const loop = g_main_loop_new(nullptr, FALSE);
static std::function<void(std::string answer)> answered;
static int status = 1;

static gboolean readAnswer(int, GIOCondition, gpointer) {
  std::exchange(answered, nullptr)(readLine());
  return G_SOURCE_REMOVE;
}

/// Asks a question and returns. The loop calls `then` with the answer.
static void ask(const char* question, std::function<void(std::string answer)> then) {
  std::cout << question << std::flush;
  answered = std::move(then);
  g_unix_fd_add(STDIN_FILENO, GIOCondition(G_IO_IN | G_IO_HUP), readAnswer, nullptr);
}

static bool failed(const ErrorPtr& error) {
  if (!error) return false;
  g_printerr("Sign-in failed: %s\n", errorMessage(*error).c_str());
  g_main_loop_quit(loop);
  return true;
}

int main(int argc, char** argv) {
  const std::string address = argc > 1 ? argv[1] : std::string(serviceBaseURL());
  const auto session = std::make_shared<HostSession>();
  installPlatform({.sharedSession = std::make_shared<ReaddressedSession>(session, address),
                   .mainQueue = std::make_shared<PostingQueue>(g_idle_add_once),
                   .failureWords = errorMessage});
  auto& manager = OrvaneManager::shareManager();
  std::string mobile;

  const auto loggedIn = [](std::optional<std::string> words, ErrorPtr error) {
    if (failed(error)) return;
    g_print("%s\n", words->c_str());
    status = 0;
    g_main_loop_quit(loop);
  };
  const auto codeSent = [&](ErrorPtr error) {
    if (failed(error)) return;
    ask("The code in the text message: ",
        [&](std::string code) { manager.requestLogin(mobile, code, onMainQueue(loggedIn)); });
  };
  const auto pictureCame = [&](std::optional<Bytes> picture, ErrorPtr error) {
    if (failed(error)) return;
    const auto size = static_cast<gssize>(picture->size());
    g_file_set_contents("picture.png", reinterpret_cast<const char*>(picture->data()), size, nullptr);
    ask("What does picture.png say? ",
        [&](std::string text) { manager.requestCode(mobile, text, onMainQueue(codeSent)); });
  };
  ask("Mobile number: ", [&](std::string answer) {
    mobile = answer;
    manager.requestPictureCode(mobile, onMainQueue(pictureCame));
  });
  g_main_loop_run(loop);
  session->waitUntilIdle(std::chrono::seconds(10));  // Until the report about the device is sent.
  return status;
}
