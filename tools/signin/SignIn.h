#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "orvane/orvane.h"
#include "tools/devservice/IdentityService.h"
#include "tools/signin/CountingSession.h"
#include "tools/signin/Options.h"
#include "tools/signin/Report.h"
#include "tools/signin/Secrets.h"

namespace signin {

/// A sign-in, or one call of it, from question to question: the conversation with the person, and with the
/// library. Runs the host's main queue, so it is for the main thread alone.
class SignIn {
 public:
  /// All of it has to outlive the sign-in; `service` is the embedded one, null without. `session` is the one
  /// that the library uses.
  SignIn(const Options& options, Answerer answerer, const devservice::IdentityService* service,
         const CountingSession& session, Secrets& secrets, Report& report);

  /// How the last of the calls ended; the error of one that did not succeed is on standard error. Throws
  /// UsageError when an answer does not come, is no UTF-8, or the picture cannot be saved.
  Outcome run();

 private:
  struct Question {
    std::string_view option;
    std::string_view text;
    const std::optional<std::string>& given;
  };

  Outcome requestPicture();
  Outcome requestCode();
  Outcome requestLogin();

  Outcome succeed(StepEnd stepEnd = {}) const;
  Outcome fail(std::string_view call, const orvane::Error& error) const;

  std::string answer(const Question& question, const std::string& fromService) const;
  std::string known(std::optional<std::string> devservice::Inspection::*fact) const;
  void present(const orvane::Bytes& picture) const;

  const Options& options_;
  const Answerer answerer_;
  const devservice::IdentityService* const service_;
  const CountingSession& session_;
  Secrets& secrets_;
  Report& report_;
  orvane::OrvaneManager& manager_ = orvane::OrvaneManager::shareManager();
  std::string mobile_;
};

}  // namespace signin
