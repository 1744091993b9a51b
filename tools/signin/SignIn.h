#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "orvane/orvane.h"
#include "tools/signin/InspectClient.h"
#include "tools/signin/ObservedSession.h"
#include "tools/signin/Options.h"
#include "tools/signin/Report.h"
#include "tools/signin/Step.h"
#include "tools/signin/StepEnd.h"
#include "tools/support/Secrets.h"

namespace signin {

/// A sign-in or one step of it: asks for the values, makes the calls, and shows the outcomes. Runs the host's
/// main queue, so it must be used on the main thread.
class SignIn {
 public:
  /// What the sign-in works with. All of it must outlive the sign-in.
  struct Dependencies {
    const Options& options;
    bool isInteractive;        ///< True if a person answers for missing options, else `inspector` does.
    InspectClient* inspector;  ///< May be null if no option is missing or there is a person.
    ObservedSession& session;  ///< The session that the library uses.
    support::Secrets& secrets;
    Report& report;
    std::FILE* pictureOutput;  ///< The file for --picture -, else null.
  };

  explicit SignIn(const Dependencies& dependencies)
      : dependencies_(dependencies), options_(dependencies.options) {}

  /// Returns how the last call ended. Writes a failed call's error to standard error. Throws UsageError if
  /// there is no answer, an answer is not UTF-8, or the picture cannot be saved.
  StepOutcome run();

 private:
  struct Question {
    std::string_view option;
    std::string_view text;
    std::string_view fact;  // The answer's name in the reply of /inspect; empty if it has none.
    const std::optional<std::string>& given;
  };

  StepOutcome requestPicture();
  StepOutcome requestCode();
  StepOutcome requestLogin();

  StepOutcome succeed(StepEnd stepEnd = {}) const;
  StepOutcome fail(Step step, const orvane::Error& error) const;

  std::string answer(const Question& question) const;
  void present(const orvane::Bytes& picture) const;
  void save(const orvane::Bytes& picture) const;

  const Dependencies dependencies_;
  const Options& options_;
  orvane::OrvaneManager& manager_ = orvane::OrvaneManager::shareManager();
  std::string mobile_;
};

}  // namespace signin
