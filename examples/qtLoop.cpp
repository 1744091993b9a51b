// Signs in with Qt's event loop, as a coroutine. No call blocks the loop.
#include <QCoreApplication>
#include <QSaveFile>
#include <QSocketNotifier>
#include <iostream>

#include "orvane/await.h"
#include "orvane/host/HostSession.h"
#include "orvane/orvane.h"
#include "orvane/platform/PostingQueue.h"

#include "readLine.h"

using namespace orvane;

/// Asks a question on standard output. Awaiting it yields the answer. A program with windows would show a
/// field and a button instead.
class Answer {
 public:
  explicit Answer(const char* question) { std::cout << question << std::flush; }

  bool await_ready() const { return false; }
  void await_suspend(std::coroutine_handle<> coroutine) {
    QObject::connect(&input_, &QSocketNotifier::activated, &input_, [this, coroutine] {
      input_.setEnabled(false);
      // Resumes later, since the coroutine destroys the notifier, which is still in its signal here.
      QMetaObject::invokeMethod(
          QCoreApplication::instance(), [coroutine] { coroutine.resume(); }, Qt::QueuedConnection);
    });
  }
  std::string await_resume() const { return readLine(); }

 private:
  QSocketNotifier input_{STDIN_FILENO, QSocketNotifier::Read};
};

static void fail(const ErrorPtr& error) {
  std::cerr << "Sign-in failed: " << errorMessage(*error) << "\n";
  QCoreApplication::exit(1);
}

static Detached signIn() {
  OrvaneManager& manager = OrvaneManager::shareManager();
  const std::string mobile = co_await Answer("Mobile number: ");
  const auto picture = co_await requestPictureCode(manager, mobile);
  if (!picture) co_return fail(picture.error);
  QSaveFile file("picture.png");
  if (file.open(QIODevice::WriteOnly)) {
    file.write(reinterpret_cast<const char*>(picture->data()), static_cast<qint64>(picture->size()));
    file.commit();
  }
  const std::string text = co_await Answer("What does picture.png say? ");
  const auto sent = co_await requestCode(manager, mobile, text);
  if (!sent) co_return fail(sent.error);
  const std::string code = co_await Answer("The code in the text message: ");
  const auto login = co_await requestLogin(manager, mobile, code);
  if (!login) co_return fail(login.error);
  std::cout << *login << "\n";
  QCoreApplication::quit();
}

int main(int argc, char** argv) {
  QCoreApplication application(argc, argv);
  const auto queue = std::make_shared<PostingQueue>([&application](Work work) {
    QMetaObject::invokeMethod(&application, std::move(work), Qt::QueuedConnection);
  });
  const std::string address = argc > 1 ? argv[1] : std::string(serviceBaseURL());
  const auto session = std::make_shared<HostSession>();
  installPlatform({.sharedSession = std::make_shared<ReaddressedSession>(session, address),
                   .mainQueue = queue,
                   .failureWords = errorMessage});
  QMetaObject::invokeMethod(
      &application, [] { signIn(); }, Qt::QueuedConnection);
  const int status = QCoreApplication::exec();
  session->waitUntilIdle(std::chrono::seconds(10));  // Until the report about the device is sent.
  queue->close();                                    // Before the loop ends.
  return status;
}
