#include "tools/signin/SignIn.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <fstream>
#include <nlohmann/json.hpp>
#include <random>
#include <system_error>
#include <utility>
#include <vector>

#include "orvane/await.h"
#include "orvane/host/hostMainQueue.h"
#include "tools/signin/PictureView.h"
#include "tools/signin/Terminal.h"
#include "tools/signin/printable.h"

namespace signin {
namespace {

/// Returns a number that belongs to no person, since no country has the code 999. It is random, so that
/// sign-ins at the same time do not take each other's code. The numbers that cause faults start with other
/// digits.
std::string someNumber() {
  std::random_device random;
  return "+9991" + std::to_string(std::uniform_int_distribution(10'000'000, 99'999'999)(random));
}

constexpr std::string_view numberOption = "--mobile";

/// How often a person may answer the same question before a refusal ends the sign-in.
constexpr int mostTries = 3;

/// How long the program waits for the submission after an accepted login.
constexpr std::chrono::seconds submissionLimit{5};

/// Time after which the terminal shows what the program is waiting for.
constexpr std::chrono::milliseconds patience{500};

/// Makes a call, runs the main queue until the call ends, and returns its outcome.
template <class T, class Finished>
orvane::Outcome<T> await(std::string_view whatFor, orvane::AwaitableCall<T, Finished> call) {
  orvane::Outcome<T> outcome;
  [](auto call, auto& outcome) -> orvane::Detached {
    outcome = co_await std::move(call);
    orvane::hostMainQueue().stop();
  }(std::move(call), outcome);
  if (!orvane::hostMainQueue().run(patience)) {
    Terminal::showWaiting(whatFor);
    orvane::hostMainQueue().run();
    Terminal::hideWaiting();
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

/// Returns a text message in a box, one sentence per line. The box is straight for ASCII only.
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

StepOutcome SignIn::run() {
  StepOutcome outcome = StepOutcome::success;
  const auto triesFor = [this](const auto& given) {
    return dependencies_.isInteractive && !given ? mostTries : 1;
  };
  int tries = triesFor(options_.mobile);
  do {
    mobile_ = answer({numberOption, "Mobile number: ", {}, options_.mobile});
    if (options_.includes(Step::picture)) outcome = requestPicture();
  } while (outcome == StepOutcome::refusal && --tries > 0);

  tries = options_.only ? 1 : triesFor(options_.captcha);
  while (options_.includes(Step::code) && outcome == StepOutcome::success) {
    outcome = requestCode();
    if (outcome != StepOutcome::refusal || --tries == 0) break;
    Terminal::print("Here is a new picture.\n");  // A misread one cannot be used again.
    outcome = requestPicture();
  }
  if (!options_.includes(Step::login) || outcome != StepOutcome::success) return outcome;
  tries = triesFor(options_.code);
  do {
    outcome = requestLogin();
  } while (outcome == StepOutcome::refusal && --tries > 0);
  return outcome;
}

StepOutcome SignIn::requestPicture() {
  dependencies_.report.begin(Step::picture);
  const auto picture = await("Waiting for the picture ...", orvane::requestPictureCode(manager_, mobile_));
  if (!picture) return fail(Step::picture, *picture.error);
  present(*picture);
  return succeed({.picture = options_.pictureFile});
}

StepOutcome SignIn::requestCode() {
  dependencies_.report.begin(Step::code);
  const std::string captcha =
      answer({"--captcha", "What does the picture say? ", "picture", options_.captcha});
  const auto sent =
      await("Waiting for the code to be sent ...", orvane::requestCode(manager_, mobile_, captcha));
  if (!sent) return fail(Step::code, *sent.error);
  Terminal::print("A text message with a code was sent to " + printable(mobile_) + ".\n");
  if (dependencies_.inspector) {
    if (const auto message = dependencies_.inspector->known("message", mobile_))
      Terminal::print(textBubble(printable(*message)));
  }
  return succeed();
}

StepOutcome SignIn::requestLogin() {
  dependencies_.report.begin(Step::login);
  const std::string code = answer({"--code", "Code in the text message: ", "code", options_.code});
  const auto login = await("Waiting for the login ...", orvane::requestLogin(manager_, mobile_, code));
  if (!login) return fail(Step::login, *login.error);
  Terminal::print("Signed in. The service says: " + printable(*login) + "\n");
  const StepOutcome outcome = succeed({.message = *login});
  if (!dependencies_.session.waitUntilIdle(patience)) {
    Terminal::showWaiting("Sending the device's facts ...");
    dependencies_.session.waitUntilIdle(submissionLimit);
    Terminal::hideWaiting();
  }
  return outcome;
}

StepOutcome SignIn::succeed(StepEnd stepEnd) const {
  stepEnd.code = 0;
  dependencies_.report.end(stepEnd);
  return stepEnd.outcome;
}

/// Reports why the call failed.
StepOutcome SignIn::fail(Step step, const orvane::Error& error) const {
  const orvane::ErrorKind kind = orvane::errorKind(error);
  const bool isRefusal = kind == orvane::ErrorKind::refused;
  const std::string message = orvane::errorMessage(error);
  // A trace is on standard error, too, and may be passed on to others.
  const std::string shown = options_.trace ? dependencies_.secrets.masked(message) : message;
  Terminal::complain(std::string(stepNames[static_cast<std::size_t>(step)]) + ": " + printable(shown) + " (" +
                     std::string(rawValue(kind)) + ", " + (isRefusal ? "" : printable(error.domain) + " ") +
                     std::to_string(error.code) + ")");
  const StepOutcome outcome = isRefusal ? StepOutcome::refusal : StepOutcome::network;
  dependencies_.report.end({outcome, error.domain, error.code, kind, message});
  return outcome;
}

/// Returns the option's value, else the answer of the person or of the development service.
std::string SignIn::answer(const Question& question) const {
  std::optional<std::string> text = question.given;
  const std::string option(question.option);
  if (!text && dependencies_.isInteractive) {
    text = Terminal::ask(question.text);
    if (!text) throw UsageError(option + ": missing, and the input has ended");
  } else if (!text) {
    text = question.fact.empty() ? someNumber() : dependencies_.inspector->known(question.fact, mobile_);
    if (!text) throw UsageError(option + ": missing, and the development service does not know it");
    Terminal::print(std::string(question.text) + printable(*text) + "\n");
  }
  if (!isUTF8(*text)) throw UsageError(option + ": not UTF-8");
  if (question.option == numberOption) {
    dependencies_.secrets.addNumber(*text);
  } else {
    dependencies_.secrets.add(*text);
  }
  return *text;
}

/// Saves or shows the picture.
void SignIn::present(const orvane::Bytes& picture) const {
  const std::string size = std::to_string(picture.size()) + " bytes";
  const std::optional<PictureView> view =
      viewPicture(picture, Terminal::outputColumns(), Terminal::outputPalette());
  if (options_.pictureFile) {
    save(picture);
    const bool isPrinted = dependencies_.pictureOutput != nullptr;
    Terminal::print("The picture (" + size + ") is " +
                    (isPrinted ? "on standard output" : "in " + *options_.pictureFile) + ".\n");
  } else if (view) {
    Terminal::print(view->lines);
    if (dependencies_.isInteractive && !view->isClear)
      Terminal::print("If you cannot read it, save it with --picture FILE.\n");
  }
  if (!view)
    Terminal::print("The picture (" + size +
                    ") cannot be shown: it is not a PNG file, is damaged, or is too large.\n");
}

void SignIn::save(const orvane::Bytes& picture) const {
  if (dependencies_.pictureOutput) {
    std::fwrite(picture.data(), 1, picture.size(), dependencies_.pictureOutput);
    std::fflush(dependencies_.pictureOutput);
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
