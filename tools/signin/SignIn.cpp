#include "tools/signin/SignIn.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <fstream>
#include <nlohmann/json.hpp>
#include <system_error>
#include <utility>
#include <vector>

#include "orvane/await.h"
#include "orvane/host/hostMainQueue.h"
#include "tools/signin/PictureView.h"
#include "tools/signin/Terminal.h"

namespace signin {
namespace {

/// From the numbers that are reserved for stories, so nobody's.
constexpr const char* someNumber = "+447700900123";

/// How often a person may answer a question that the service refuses.
constexpr int mostTries = 3;

/// How long an accepted login's submission may take to leave.
constexpr std::chrono::seconds submissionLimit{5};

/// How long one waits without being told what for.
constexpr std::chrono::milliseconds patience{500};

/// Makes a call, runs the main queue until it is over, and returns what it came to.
template <class T, class Finished>
orvane::Outcome<T> await(std::string_view whatFor, orvane::AwaitableCall<T, Finished> call) {
  orvane::Outcome<T> outcome;
  [](auto call, auto& outcome) -> orvane::Detached {
    outcome = co_await std::move(call);
    orvane::hostMainQueue().stop();
  }(std::move(call), outcome);
  if (!orvane::hostMainQueue().run(patience)) {
    showWaiting(whatFor);
    orvane::hostMainQueue().run();
    hideWaiting();
  }
  return outcome;
}

bool isUTF8(const std::string& text) {
  try {
    nlohmann::json(text).dump();
    return true;
  } catch (const nlohmann::json::type_error&) {
    return false;
  }
}

/// A text message as a phone shows it, in a box, one sentence per line. Only ASCII comes out straight.
std::string textBubble(std::string_view text) {
  std::vector<std::string_view> lines;
  for (std::size_t end = text.find(". "); end != text.npos; end = text.find(". ")) {
    lines.push_back(text.substr(0, end + 1));
    text.remove_prefix(end + 2);
  }
  lines.push_back(text);
  const std::size_t width = std::ranges::max(lines, {}, &std::string_view::size).size();
  std::string edge;
  for (std::size_t i = 0; i < width + 2; ++i) edge.append("─");

  std::string box = "  ╭" + edge + "╮\n";
  for (const std::string_view line : lines) {
    box.append("  │ ").append(line).append(width - line.size(), ' ').append(" │\n");
  }
  return box + "  ╰" + edge + "╯\n";
}

}  // namespace

Outcome SignIn::run() {
  mobile_ = answer({"--mobile", "Mobile number: ", {}, options_.mobile});
  Outcome outcome = Outcome::success;
  const auto isAsked = [this](const auto& given) { return means_.hasPerson && !given; };
  // A misread picture is asked again with a new one.
  for (int tries = isAsked(options_.captcha) && !options_.only ? mostTries : 1; tries > 0; --tries) {
    if (options_.includes(Call::picture)) outcome = requestPicture();
    if (outcome != Outcome::success) return outcome;
    if (options_.includes(Call::code)) outcome = requestCode();
    if (outcome != Outcome::refusal) break;
    if (tries > 1) print("Here is a new picture.\n");
  }
  if (!options_.includes(Call::login) || outcome != Outcome::success) return outcome;
  int tries = isAsked(options_.code) ? mostTries : 1;
  do {
    outcome = requestLogin();
  } while (outcome == Outcome::refusal && --tries > 0);
  return outcome;
}

Outcome SignIn::requestPicture() {
  means_.report.begin(Call::picture);
  const auto picture = await("Waiting for the picture ...", orvane::requestPictureCode(manager_, mobile_));
  if (!picture) return fail(Call::picture, *picture.error);
  present(*picture);
  return succeed({.picture = options_.pictureFile});
}

Outcome SignIn::requestCode() {
  means_.report.begin(Call::code);
  const std::string captcha =
      answer({"--captcha", "What does the picture say? ", "picture", options_.captcha});
  const auto sent =
      await("Waiting for the code to be sent ...", orvane::requestCode(manager_, mobile_, captcha));
  if (!sent) return fail(Call::code, *sent.error);
  print("A text message with a code was sent to " + printable(mobile_) + ".\n");
  if (means_.inspector) {
    if (const auto message = means_.inspector->known("message", mobile_)) print(textBubble(*message));
  }
  return succeed();
}

Outcome SignIn::requestLogin() {
  means_.report.begin(Call::login);
  const std::string code = answer({"--code", "Code in the text message: ", "code", options_.code});
  const auto login = await("Waiting for the login ...", orvane::requestLogin(manager_, mobile_, code));
  if (!login) return fail(Call::login, *login.error);
  print("Signed in. The service says: " + printable(*login) + "\n");
  const Outcome outcome = succeed({.message = *login});
  if (!means_.session.waitUntilIdle(patience)) {
    showWaiting("Sending the device's facts ...");
    means_.session.waitUntilIdle(submissionLimit);
    hideWaiting();
  }
  return outcome;
}

Outcome SignIn::succeed(StepEnd stepEnd) const {
  stepEnd.code = 0;
  means_.report.end(stepEnd);
  return stepEnd.outcome;
}

/// Says why the call failed.
Outcome SignIn::fail(Call call, const orvane::Error& error) const {
  const orvane::ErrorKind kind = orvane::kind(error);
  const bool isRefusal = kind == orvane::ErrorKind::refused;
  const std::string message = orvane::message(error);
  complain(std::string(callNames[static_cast<std::size_t>(call)]) + ": " + printable(message) + " (" +
           std::string(rawValue(kind)) + ", " + (isRefusal ? "" : printable(error.domain) + " ") +
           std::to_string(error.code) + ")");
  const Outcome outcome = isRefusal ? Outcome::refusal : Outcome::network;
  means_.report.end({outcome, error.domain, error.code, kind, message});
  return outcome;
}

/// Returns what the option gives, else what the person or the development service answers.
std::string SignIn::answer(const Question& question) const {
  std::optional<std::string> text = question.given;
  const std::string option(question.option);
  if (!text && means_.hasPerson) {
    text = ask(question.text);
    if (!text) throw UsageError(option + ": missing, and the input has ended");
  } else if (!text) {
    text = question.fact.empty() ? someNumber : means_.inspector->known(question.fact, mobile_);
    if (!text) throw UsageError(option + ": missing, and the development service does not know it");
    print(std::string(question.text) + printable(*text) + "\n");
  }
  if (!isUTF8(*text)) throw UsageError(option + ": not UTF-8");
  means_.secrets.add(*text);
  return *text;
}

/// Saves or shows the picture.
void SignIn::present(const orvane::Bytes& picture) const {
  const std::string size = std::to_string(picture.size()) + " bytes";
  const std::optional<PictureView> view = viewPicture(picture, outputColumns(), outputPalette());
  if (options_.pictureFile) {
    save(picture);
    const bool isPrinted = means_.pictureOutput != nullptr;
    print("The picture, " + size + ", is " +
          (isPrinted ? "on standard output" : "in " + *options_.pictureFile) + ".\n");
  } else if (view) {
    print(view->lines);
    if (means_.hasPerson && !view->isClear)
      print("If that cannot be read: --picture FILE saves the picture.\n");
  }
  if (!view) print("What came as picture, " + size + ", is nothing that can be drawn.\n");
}

void SignIn::save(const orvane::Bytes& picture) const {
  if (means_.pictureOutput) {
    std::fwrite(picture.data(), 1, picture.size(), means_.pictureOutput);
    std::fflush(means_.pictureOutput);
    return;
  }
  const std::string& path = *options_.pictureFile;
  std::ofstream file(path, std::ios::binary);
  file.write(reinterpret_cast<const char*>(picture.data()), static_cast<std::streamsize>(picture.size()));
  if (!file.flush()) {
    throw UsageError("--picture: cannot write " + path + ": " + std::system_category().message(errno));
  }
}

}  // namespace signin
