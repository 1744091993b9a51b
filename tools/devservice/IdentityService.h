#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/devservice/Codes.h"
#include "tools/devservice/Faults.h"
#include "tools/devservice/Limits.h"
#include "tools/devservice/Message.h"
#include "tools/devservice/RecentMap.h"

namespace devservice {

/// What a picture is drawn from.
struct Drawing {
  std::string text;
  std::uint32_t seed;
};

struct TextMessage {
  std::uint64_t id;  ///< Counted from 1.
  std::chrono::system_clock::time_point time;
  std::string mobile;
  std::string text;
};

/// When something happened to a number last.
struct Dates {
  using Date = std::optional<std::chrono::system_clock::time_point>;
  Date call, picture, message, login, facts;
};

/// What the service knows of one mobile number.
struct Inspection {
  std::optional<std::string> picture;  ///< Text of the picture that waits to be read.
  std::optional<std::string> message;  ///< The last text message.
  std::optional<std::uint64_t> messageId;
  std::optional<std::string> code;      ///< The code that waits to be entered.
  std::optional<Drawing> drawing;       ///< The last picture, whether it waits or not.
  std::optional<Members> facts;         ///< The last submission, with its "mobile".
  std::optional<std::string> clientId;  ///< The client identifier in the last request, if it had one.
  bool signedIn = false;
  Dates dates;
};

/// The fault that was chosen for calls whose number demands none.
struct Choice {
  Demand demand;
  /// It hits one call in so many, until another choice; 0: the next call alone.
  unsigned every = 0;
};

using TimePoint = std::chrono::steady_clock::time_point;

/// 32 bits from the system's random source.
std::uint32_t systemRandom();

/// What the service draws on. All are called with no lock held, on the threads that call answer() or, the
/// clock alone, inspect(), so they have to be as safe as the service is.
struct Environment {
  /// Takes each text message, once, before the call that sends it is answered.
  std::function<void(std::string_view mobile, std::string_view text)> deliver = [](std::string_view,
                                                                                   std::string_view) {};
  /// The time that pictures and codes expire by.
  std::function<TimePoint()> now = std::chrono::steady_clock::now;
  /// 32 random bits.
  std::function<std::uint32_t()> random = systemRandom;
};

/// The identity service without its sockets: answers requests and keeps its state in memory.
/// Safe to use from several threads at once.
class IdentityService {
 public:
  explicit IdentityService(Environment environment = {});

  /// The reply to a request of any kind; every refusal is a reply.
  Reply answer(const Request& request);

  /// What is known of the number; nothing when it has made no call, or is forgotten.
  std::optional<Inspection> inspect(std::string_view mobile) const;

  /// What is known of the numbers used last that contain the text, the latest first.
  std::vector<std::pair<std::string, Inspection>> recent(std::size_t most, std::string_view text = {}) const;

  /// How many numbers are known.
  std::size_t size() const;

  /// The last text messages, the oldest first.
  std::vector<TextMessage> messages() const;

  void chooseFault(const Choice& choice);
  Choice chosenFault() const;

  /// Forgets all but how many messages there were.
  void forget();

 private:
  /// A text to be given back in time.
  struct Secret {
    std::string text;
    TimePoint expires;
    int attempts;  // left
  };

  struct Record {
    std::optional<Secret> picture;
    std::optional<Secret> code;
    std::optional<std::string> message;
    std::optional<std::uint64_t> messageId;
    std::optional<Drawing> drawing;
    std::optional<Members> facts;
    std::optional<std::string> clientId;
    bool signedIn = false;
    int wrongCodes = 0;        // since
    TimePoint firstWrongCode;  // this
    Dates dates;
  };

  enum class Attempt { none, wrong, right };

  static Attempt attempt(std::optional<Secret>& secret, std::string_view text, TimePoint now);
  static Inspection view(const Record& record, TimePoint now);

  Demand demandFor(std::string_view mobile, Call call);
  Envelope perform(Call call, const Members& members, std::optional<std::string_view> clientId);
  Envelope sendPicture(const std::string& mobile);
  Envelope sendCode(const std::string& mobile, std::string_view pictureText);
  Envelope login(const std::string& mobile, std::string_view code);
  Envelope submit(const Members& facts);

  std::uint32_t below(std::uint32_t bound) const;
  std::string randomText(std::size_t length, std::string_view characters) const;

  const Environment environment_;
  mutable std::mutex mutex_;
  RecentMap<Record> records_{maxNumbers};
  std::deque<TextMessage> messages_;
  std::uint64_t messageCount_ = 0;
  Choice choice_;
  unsigned missed_ = 0;  // calls since the choice, or since it hit
};

}  // namespace devservice
