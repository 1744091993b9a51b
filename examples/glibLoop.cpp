// A sign-in in GLib's main loop, which is also GTK's: nothing here holds it up.
#include <glib.h>

#include "orvane/host/MainQueue.h"

#include "developmentSession.h"

using namespace orvane;
static GMainLoop* const loop = g_main_loop_new(nullptr, FALSE);
static std::function<void(std::string answer)> answered;

static gboolean readAnswer(GIOChannel* input, GIOCondition, gpointer) {
  g_autofree char* line = nullptr;
  g_io_channel_read_line(input, &line, nullptr, nullptr, nullptr);
  std::exchange(answered, nullptr)(line ? g_strchomp(line) : "");
  return G_SOURCE_REMOVE;
}

/// Asks and returns; `then` is called from the loop.
static void ask(const char* question, std::function<void(std::string answer)> then) {
  static GIOChannel* const input = g_io_channel_unix_new(0);
  g_print("%s", question);
  answered = std::move(then);
  g_io_add_watch(input, GIOCondition(G_IO_IN | G_IO_HUP), readAnswer, nullptr);
}

/// Ends the loop after a failure, on whatever thread that is reported.
static bool failed(const ErrorPtr& error) {
  if (!error) return false;
  g_printerr("Sign-in failed: %s\n", description(*error).c_str());
  g_main_loop_quit(loop);
  return true;
}

int main(int argc, char** argv) {
  installPlatform({.sharedSession = developmentSession(argc, argv),
                   .mainQueue = std::make_shared<PostingQueue>(g_idle_add_once)});
  auto& manager = OrvaneManager::shareManager();
  ask("Mobile number: ", [&](std::string mobile) {
    manager.requestPictureCode(mobile, [&, mobile](auto picture, ErrorPtr error) {
      if (failed(error)) return;
      const auto size = static_cast<gssize>(picture->size());
      g_file_set_contents("picture.png", reinterpret_cast<const char*>(picture->data()), size, nullptr);
      ask("What does picture.png say? ", [&, mobile](std::string text) {
        manager.requestCode(mobile, text, [&, mobile](ErrorPtr error) {
          if (failed(error)) return;
          ask("The code in the text message: ", [&, mobile](std::string code) {
            manager.requestLogin(mobile, code, [](auto message, ErrorPtr error) {
              if (failed(error)) return;
              g_print("%s\n", message->c_str());
              g_main_loop_quit(loop);
            });
          });
        });
      });
    });
  });
  g_main_loop_run(loop);
}
