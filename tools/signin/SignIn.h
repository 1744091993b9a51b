#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "orvane/orvane.h"
#include "tools/signin/InspectClient.h"
#include "tools/signin/ObservedSession.h"
#include "tools/signin/Options.h"
#include "tools/signin/Report.h"
#include "tools/signin/Secrets.h"
#include "tools/signin/Step.h"
#include "tools/signin/StepEnd.h"

namespace signin {

/// A sign-in, or one call of it, from question to question: the conversation with the person, and with the
/// library. Runs the host's main queue, so it is for the main thread alone.
class SignIn {
 public:
  /// Where the sign-in has its means from. All of it has to outlive the sign-in.
  struct Means {
    const Options& options;
    bool hasPerson;            ///< Asks a person for what no option gives, else the inspector.
    InspectClient* inspector;  ///< Null where there is none; then nothing is missing, or there is a person.
    ObservedSession& session;  ///< The one that the library uses.
    Secrets& secrets;
    Report& report;
    std::FILE* pictureOutput;  ///< Where --picture - goes.
  };

  explicit SignIn(const Means& means) : means_(means), options_(means.options) {}

  /// Returns how the last of the calls ended; the error of one that did not succeed is on standard error. Throws
  /// UsageError when an answer does not come, is not UTF-8, or the picture cannot be saved.
  StepOutcome run();

 private:
  struct Question {
    std::string_view option;
    std::string_view text;
    std::string_view fact;  // What the inspector calls it.
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

  const Means means_;
  const Options& options_;
  orvane::OrvaneManager& manager_ = orvane::OrvaneManager::shareManager();
  std::string mobile_;
};

}  // namespace signin
