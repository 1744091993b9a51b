#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/devservice/HTTPReply.h"
#include "tools/devservice/HTTPRequest.h"
#include "tools/devservice/Inspection.h"
#include "tools/devservice/Limits.h"
#include "tools/devservice/Predictions.h"
#include "tools/devservice/RecentMap.h"
#include "tools/devservice/ReplyBody.h"
#include "tools/devservice/RequestedFault.h"
#include "tools/support/Members.h"

namespace devservice {

/// A text message that the service has sent.
struct TextMessage {
  std::uint64_t id;  ///< Counted from 1.
  std::chrono::system_clock::time_point time;
  std::string mobile;
  std::string text;
};

/// A fault for the calls whose mobile number does not ask for one.
struct FaultChoice {
  RequestedFault requested;
  /// The fault hits one call in `every`, until another choice is made. 0: only the next call.
  unsigned every = 0;
};

using TimePoint = std::chrono::steady_clock::time_point;

/// Returns the call whose path this is, or nullopt.
std::optional<Call> callAt(std::string_view path);

/// Returns 32 bits from the system's random source.
std::uint32_t systemRandom();

/// What the service needs from outside. The functions are called without a lock held, on the threads that
/// call the service, so they must be as thread-safe as its use requires.
struct Environment {
  /// Called once with each text message, before the call that sends it is answered.
  std::function<void(std::string_view mobile, std::string_view text)> deliver = [](std::string_view,
                                                                                   std::string_view) {};
  /// Returns the time that the lifetimes of pictures and codes are measured by.
  std::function<TimePoint()> now = std::chrono::steady_clock::now;
  /// Returns 32 random bits.
  std::function<std::uint32_t()> random = systemRandom;
};

/// The identity service without sockets: answers requests and keeps its state in memory. Thread-safe.
class IdentityService {
 public:
  explicit IdentityService(Environment environment = {}, Predictions predictions = {});

  /// Returns the reply to any request. A request that is not a call is refused.
  HTTPReply answer(const HTTPRequest& request);

  /// Returns what was chosen at the start.
  const Predictions& predictions() const { return predictions_; }

  /// Returns what the service knows of the mobile number. Returns nullopt if it has made no call, or was
  /// forgotten.
  std::optional<Inspection> inspect(std::string_view mobile) const;

  /// Returns the numbers that contain `text`, at most `most`, those with the latest calls first.
  std::vector<std::pair<std::string, Inspection>> recent(std::size_t most, std::string_view text = {}) const;

  /// Returns how many numbers the service knows.
  std::size_t size() const;

  /// Returns the last maxMessages text messages, the oldest first.
  std::vector<TextMessage> messages() const;

  /// Replaces the chosen fault.
  void chooseFault(const FaultChoice& choice);
  /// Returns the chosen fault, none after it has hit the next call.
  FaultChoice chosenFault() const;

  /// Forgets everything but the number of messages, so that their identifiers go on. Starts the random
  /// choices again if they have a seed.
  void forget();

 private:
  /// A text that the caller must send back before it expires.
  struct Secret {
    std::string text;
    TimePoint expires;
    int attemptsLeft;
  };

  struct Record {
    std::optional<Secret> picture;
    std::optional<Secret> code;
    std::optional<std::string> message;
    std::optional<std::uint64_t> messageId;
    std::optional<Drawing> drawing;
    std::optional<support::Members> facts;
    std::optional<std::string> clientId;
    bool signedIn = false;
    int wrongCodes = 0;        // In the current window.
    TimePoint firstWrongCode;  // Starts the window.
    Dates dates;
  };

  enum class Attempt { none, wrong, right };

  static Attempt attempt(std::optional<Secret>& secret, std::string_view text, TimePoint now);
  static Inspection view(const Record& record, TimePoint now);

  RequestedFault requestedFaultFor(std::string_view mobile, Call call);
  ReplyBody perform(Call call, const support::Members& members, std::optional<std::string_view> clientId);
  ReplyBody sendPicture(const std::string& mobile);
  ReplyBody sendCode(const std::string& mobile, std::string_view pictureText);
  ReplyBody login(const std::string& mobile, std::string_view code);
  ReplyBody submit(const support::Members& facts);

  std::uint32_t random();
  std::uint32_t below(std::uint32_t bound);
  std::string randomText(std::size_t length, std::string_view characters);

  const Environment environment_;
  const Predictions predictions_;
  mutable std::mutex mutex_;
  std::mt19937 seeded_{predictions_.seed.value_or(0)};  // Used if there is a seed.
  RecentMap<Record> records_{maxNumbers};
  std::deque<TextMessage> messages_;
  std::uint64_t messageCount_ = 0;
  FaultChoice choice_;
  unsigned missed_ = 0;  // Calls since the choice, or since it last hit one.
};

}  // namespace devservice
