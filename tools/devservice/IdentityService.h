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

#include "tools/devservice/Demand.h"
#include "tools/devservice/HTTPReply.h"
#include "tools/devservice/HTTPRequest.h"
#include "tools/devservice/Inspection.h"
#include "tools/devservice/Limits.h"
#include "tools/devservice/Members.h"
#include "tools/devservice/RecentMap.h"
#include "tools/devservice/ReplyBody.h"

namespace devservice {

struct TextMessage {
  std::uint64_t id;  ///< Counted from 1.
  std::chrono::system_clock::time_point time;
  std::string mobile;
  std::string text;
};

/// The fault that was chosen for calls whose number demands none.
struct FaultChoice {
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
  HTTPReply answer(const HTTPRequest& request);

  /// What is known of the number; nothing when it has made no call, or is forgotten.
  std::optional<Inspection> inspect(std::string_view mobile) const;

  /// What is known of the numbers used last that contain the text, the latest first.
  std::vector<std::pair<std::string, Inspection>> recent(std::size_t most, std::string_view text = {}) const;

  /// How many numbers are known.
  std::size_t size() const;

  /// The last text messages, the oldest first.
  std::vector<TextMessage> messages() const;

  void chooseFault(const FaultChoice& choice);
  FaultChoice chosenFault() const;

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
  ReplyBody perform(Call call, const Members& members, std::optional<std::string_view> clientId);
  ReplyBody sendPicture(const std::string& mobile);
  ReplyBody sendCode(const std::string& mobile, std::string_view pictureText);
  ReplyBody login(const std::string& mobile, std::string_view code);
  ReplyBody submit(const Members& facts);

  std::uint32_t below(std::uint32_t bound) const;
  std::string randomText(std::size_t length, std::string_view characters) const;

  const Environment environment_;
  mutable std::mutex mutex_;
  RecentMap<Record> records_{maxNumbers};
  std::deque<TextMessage> messages_;
  std::uint64_t messageCount_ = 0;
  FaultChoice choice_;
  unsigned missed_ = 0;  // calls since the choice, or since it hit
};

}  // namespace devservice
