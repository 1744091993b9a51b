#include "tools/signin/SignIn.h"

#include <cerrno>
#include <chrono>
#include <fstream>
#include <nlohmann/json.hpp>
#include <system_error>
#include <tuple>
#include <utility>

#include "orvane/host/MainQueue.h"
#include "tools/signin/PictureView.h"
#include "tools/signin/Terminal.h"
#include "tools/signin/printable.h"
#include "tools/signin/textBubble.h"

namespace signin {
namespace {

using orvane::Bytes;
using orvane::ErrorPtr;
using orvane::Value;

/// From the numbers that are reserved for stories, so nobody's.
constexpr std::string_view someNumber = "+447700900123";

/// How long an accepted login's submission may take to leave.
constexpr std::chrono::seconds submissionLimit{5};

/// How long one waits without being told what for.
constexpr std::chrono::milliseconds patience{500};

/// Makes a call, runs the main queue until `finished` was called, on whatever thread, and returns what with.
template <class... Results, class Call>
std::tuple<Results...> await(std::string_view whatFor, Call call) {
  std::optional<std::tuple<Results...>> results;
  call([&results](Results... come) {
    results.emplace(std::move(come)...);
    orvane::hostMainQueue().stop();
  });
  if (!orvane::hostMainQueue().run(patience)) {
    showWaiting(whatFor);
    orvane::hostMainQueue().run();
    hideWaiting();
  }
  return *std::move(results);
}

std::string inWords(const Value& value) {
  if (value.text()) return *value.text();
  if (value.boolean()) return *value.boolean() ? "true" : "false";
  if (value.array()) return std::to_string(value.array()->size()) + " elements";
  if (value.map()) return std::to_string(value.map()->size()) + " members";
  return value.decimalText().value_or("nothing");
}

bool isUTF8(const std::string& text) {
  try {
    nlohmann::json(text).dump();
    return true;
  } catch (const nlohmann::json::type_error&) {
    return false;
  }
}

void save(const Bytes& bytes, const std::string& path) {
  std::ofstream file(path, std::ios::binary);
  file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  if (!file.flush())
    throw UsageError("--picture: cannot write " + path + ": " + std::system_category().message(errno));
}

}  // namespace

SignIn::SignIn(const Options& options, Answerer answerer, const devservice::IdentityService* service,
               const CountingSession& session, Secrets& secrets, Report& report)
    : options_(options),
      answerer_(answerer),
      service_(service),
      session_(session),
      secrets_(secrets),
      report_(report) {}

Outcome SignIn::run() {
  constexpr std::pair<Call, Outcome (SignIn::*)()> steps[] = {{Call::picture, &SignIn::requestPicture},
                                                              {Call::code, &SignIn::requestCode},
                                                              {Call::login, &SignIn::requestLogin}};
  mobile_ = answer({"--mobile", "Mobile number: ", options_.mobile}, std::string(someNumber));
  Outcome outcome = Outcome::success;
  for (const auto& [call, request] : steps) {
    if (!options_.includes(call) || outcome != Outcome::success) continue;
    report_.begin(call);
    outcome = (this->*request)();
  }
  return outcome;
}

Outcome SignIn::requestPicture() {
  const auto [picture, error] = await<std::optional<Bytes>, ErrorPtr>(
      "Waiting for the picture ...",
      [this](auto finished) { manager_.requestPictureCode(mobile_, std::move(finished)); });
  if (error) return fail("requestPictureCode", *error);
  present(*picture);
  return succeed({.picture = options_.pictureFile});
}

Outcome SignIn::requestCode() {
  const std::string captcha = answer({"--captcha", "What does the picture say? ", options_.captcha},
                                     known(&devservice::Inspection::picture));
  const auto [error] = await<ErrorPtr>("Waiting for the code to be sent ...", [&](auto finished) {
    manager_.requestCode(mobile_, captcha, std::move(finished));
  });
  if (error) return fail("requestCode", *error);
  print("A text message with a code was sent to " + printable(mobile_) + ".\n");
  if (const std::string message = known(&devservice::Inspection::message); !message.empty()) {
    print(textBubble(message));
  }
  return succeed();
}

Outcome SignIn::requestLogin() {
  const std::string code =
      answer({"--code", "Code in the text message: ", options_.code}, known(&devservice::Inspection::code));
  const auto [message, error] = await<std::optional<std::string>, ErrorPtr>(
      "Waiting for the login ...",
      [&](auto finished) { manager_.requestLogin(mobile_, code, std::move(finished)); });
  if (error) return fail("requestLogin", *error);
  print("Signed in. The service says: " + printable(*message) + "\n");
  const Outcome outcome = succeed({.message = *message});
  if (!session_.waitUntilIdle(patience)) {
    showWaiting("Sending the device's facts ...");
    session_.waitUntilIdle(submissionLimit);
    hideWaiting();
  }
  return outcome;
}

Outcome SignIn::succeed(StepEnd stepEnd) const {
  stepEnd.code = 0;
  report_.end(stepEnd);
  return stepEnd.outcome;
}

/// Says why the call failed.
Outcome SignIn::fail(std::string_view call, const orvane::Error& error) const {
  std::string text = std::string(call) + ": " + printable(description(error));
  for (const auto& [key, value] : error.userInfo) {
    text.append("\n  ").append(printable(key)).append(": ").append(printable(inWords(value)));
  }
  complain(text);

  // Only a refusal comes without user information.
  StepEnd stepEnd{error.userInfo.empty() ? Outcome::refusal : Outcome::network, error.domain, error.code};
  if (stepEnd.outcome == Outcome::refusal) stepEnd.message = error.domain;
  for (const char* key : {"NSLocalizedDescription", "error"}) {
    if (const auto found = error.userInfo.find(key); found != error.userInfo.end()) {
      stepEnd.message = inWords(found->second);
    }
  }
  report_.end(stepEnd);
  return stepEnd.outcome;
}

/// What the option gives, else what the person or the service answers.
std::string SignIn::answer(const Question& question, const std::string& fromService) const {
  std::optional<std::string> text = question.given;
  if (!text && answerer_ == Answerer::person) {
    text = ask(question.text);
    if (!text) throw UsageError(std::string(question.option) + ": missing, and the input has ended");
  } else if (!text) {
    text = fromService;
    print(std::string(question.text) + fromService + "\n");
  }
  if (!isUTF8(*text)) throw UsageError(std::string(question.option) + ": not UTF-8");
  secrets_.add(*text);
  return *text;
}

/// What the embedded service knows of the number; empty without it.
std::string SignIn::known(std::optional<std::string> devservice::Inspection::*fact) const {
  const auto inspection = service_ ? service_->inspect(mobile_) : std::nullopt;
  return inspection ? (*inspection.*fact).value_or("") : "";
}

/// Saves or shows the picture.
void SignIn::present(const Bytes& picture) const {
  const std::string size = std::to_string(picture.size()) + " bytes";
  const std::optional<std::string> view = viewPicture(picture, outputColumns(), outputPalette());
  if (options_.pictureFile) {
    save(picture, *options_.pictureFile);
    print("The picture, " + size + ", is in " + *options_.pictureFile + ".\n");
  } else if (view) {
    print(*view);
  }
  if (!view) print("What came as picture, " + size + ", is nothing that can be drawn.\n");
}

}  // namespace signin
