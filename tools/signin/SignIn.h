#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "orvane/orvane.h"
#include "tools/devservice/IdentityService.h"
#include "tools/signin/CountingSession.h"
#include "tools/signin/Options.h"
#include "tools/signin/Secrets.h"

namespace signin {

/// A sign-in, or one call of it, from question to question: the conversation with the person, and with the
/// library. Runs the host's main queue, so it is for the main thread alone.
class SignIn {
 public:
  /// All of it has to outlive the sign-in; `service` is the embedded one, null without. `session` is the one
  /// that the library uses.
  SignIn(const Options& options, Answerer answerer, const devservice::IdentityService* service,
         const CountingSession& session, Secrets& secrets);

  /// Whether all calls succeeded; the error of the one that did not is on standard error. Throws UsageError
  /// when an answer does not come, is no UTF-8, or the picture cannot be saved.
  bool run();

 private:
  struct Question {
    std::string_view option;
    std::string_view text;
    const std::optional<std::string>& given;
  };

  bool requestPicture();
  bool requestCode();
  bool requestLogin();

  std::string answer(const Question& question, const std::string& fromService) const;
  std::string known(std::optional<std::string> devservice::Inspection::*fact) const;
  void present(const orvane::Bytes& picture) const;

  const Options& options_;
  const Answerer answerer_;
  const devservice::IdentityService* const service_;
  const CountingSession& session_;
  Secrets& secrets_;
  orvane::OrvaneManager& manager_ = orvane::OrvaneManager::shareManager();
  std::string mobile_;
};

}  // namespace signin
