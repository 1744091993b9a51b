#include "tools/signin/Report.h"

#include <atomic>
#include <csignal>
#include <iterator>
#include <unistd.h>

#include "tools/support/Json.h"

namespace signin {
namespace {

std::atomic<const Report*> opened = nullptr;

std::string line(const std::optional<Step>& step, const StepEnd& stepEnd) {
  using support::Json, support::orNull;
  constexpr const char* outcomes[] = {"success", "refusal",     "usage",  "network",
                                      "fault",   "interrupted", "aborted"};
  static_assert(std::size(outcomes) == static_cast<std::size_t>(StepOutcome::aborted) + 1);
  Json object;
  object["step"] = step ? Json(stepNames[static_cast<std::size_t>(*step)]) : Json();
  object["outcome"] = outcomes[static_cast<std::size_t>(stepEnd.outcome)];
  object["domain"] = orNull(stepEnd.domain);
  object["code"] = orNull(stepEnd.code);
  object["kind"] = stepEnd.kind ? Json(rawValue(*stepEnd.kind)) : Json();
  object["message"] = orNull(stepEnd.message);
  if (stepEnd.picture) object["picture"] = *stepEnd.picture;
  // In ASCII, since JSON allows U+007F to U+009F as they are, and they control a terminal.
  return object.dump(-1, ' ', true, Json::error_handler_t::replace) + "\n";
}

}  // namespace

void Report::open(std::FILE* lines) {
  lines_ = lines;
  opened = this;
  struct sigaction action = {};
  action.sa_handler = handleSignal;
  sigaction(SIGABRT, &action, nullptr);
}

void Report::begin(Step step) {
  const std::lock_guard lock(mutex_);
  step_ = step;
  abortionLine_ = line(step, {StepOutcome::aborted});
}

void Report::end(const StepEnd& stepEnd) {
  const std::lock_guard lock(mutex_);
  abortionLine_.clear();
  if (!lines_) return;
  const std::string text = line(step_, stepEnd);
  std::fwrite(text.data(), 1, text.size(), lines_);
  std::fflush(lines_);
  step_.reset();
  if (stepEnd.outcome == StepOutcome::interrupted) lines_ = nullptr;
}

void Report::handleSignal(int) {
  const Report& report = *opened;
  const std::string& text = report.abortionLine_;
  if (text.empty()) return;
  [[maybe_unused]] const auto written = write(fileno(report.lines_), text.data(), text.size());
}

}  // namespace signin
