#include "tools/devservice/IdentityService.h"

#include <algorithm>
#include <boost/beast/core/string.hpp>
#include <iterator>
#include <random>
#include <span>
#include <utility>

#include "tools/devservice/countsFromOne.h"
#include "tools/devservice/drawPicture.h"
#include "tools/devservice/glyphStrokes.h"
#include "tools/devservice/makeReply.h"
#include "tools/support/Json.h"

namespace devservice {
namespace {

using Names = std::span<const std::string_view>;

constexpr std::string_view pictureMembers[] = {"mobile"};
constexpr std::string_view codeMembers[] = {"mobile", "captcha"};
constexpr std::string_view loginMembers[] = {"mobile", "verificationCode"};
constexpr std::string_view factMembers[] = {"mobile", "deviceModel", "carrier", "deviceName", "IMEI", "IMSI"};

struct Route {
  std::string_view path;
  Call call;
  Names members;
};

constexpr Route routes[] = {
    {"/tenant/verify/captcha", Call::picture, pictureMembers},
    {"/tenant/getVerifyCode", Call::code, codeMembers},
    {"/tenant/submitVerifyCode", Call::login, loginMembers},
    {"/tenant/submitMobileInformation", Call::submission, factMembers},
};
static_assert(countsFromOne(routes, &Route::call) && std::size(routes) == std::size(callNames));

bool isMobileNumber(std::string_view text) {
  if (text.starts_with('+')) text.remove_prefix(1);
  return text.size() >= 5 && text.size() <= 15 &&
         std::ranges::all_of(text, [](char c) { return c >= '0' && c <= '9'; });
}

bool isJsonType(std::string_view contentType) {
  std::string_view type = contentType.substr(0, contentType.find(';'));
  while (type.ends_with(' ') || type.ends_with('\t')) type.remove_suffix(1);
  return boost::beast::iequals(type, "application/json");
}

/// Returns the name of the first header field that is wrong, or an empty string.
std::string_view wrongHeader(const HTTPRequest& request) {
  if (!isJsonType(request.header("Content-Type").value_or(""))) return "Content-Type";
  if (request.header("XRAPI-VERSION") != "1.0") return "XRAPI-VERSION";
  if (request.header("XRAPI-DEVICE-TYPE") != "1") return "XRAPI-DEVICE-TYPE";
  if (request.header("XRAPI-CLIENT-ID").value_or("").size() > maxTextSize) return "XRAPI-CLIENT-ID";
  return {};
}

/// Copies the object's members to `members`. Returns the name of the first member that is wrong, or an empty
/// string.
std::string takeMembers(const nlohmann::json& object, Names names, support::Members& members) {
  for (const std::string_view name : names) {
    const auto found = object.find(name);
    if (found == object.end() || !found->is_string()) return std::string(name);
    const auto& text = found->get_ref<const std::string&>();
    if (text.size() > maxTextSize) return std::string(name);
    members.emplace(name, text);
  }
  for (const auto& member : object.items()) {
    if (!members.contains(member.key())) return member.key();
  }
  return {};
}

}  // namespace

std::optional<Call> callAt(std::string_view path) {
  const auto route = std::ranges::find(routes, path, &Route::path);
  return route == std::end(routes) ? std::nullopt : std::optional(route->call);
}

std::uint32_t systemRandom() {
  return std::random_device{}();
}

IdentityService::IdentityService(Environment environment, Predictions predictions)
    : environment_(std::move(environment)), predictions_(std::move(predictions)) {}

HTTPReply IdentityService::answer(const HTTPRequest& request) {
  const auto route = std::ranges::find(routes, request.path, &Route::path);
  if (route == std::end(routes)) return makeRefusal(404, Code::unknownPath);
  if (request.method != "POST") return refuseMethod("POST");
  if (request.body.size() > maxBodySize) return makeRefusal(413, Code::tooLarge);
  if (const auto name = wrongHeader(request); !name.empty()) return makeRefusal(200, Code::badHeader, name);

  const nlohmann::json object = support::parsed(request.body);
  if (!object.is_object()) return makeRefusal(200, Code::malformedBody);
  support::Members members;
  if (const auto name = takeMembers(object, route->members, members); !name.empty()) {
    return makeRefusal(200, Code::badMember, name);
  }
  const std::string& mobile = members.find("mobile")->second;
  if (!isMobileNumber(mobile)) return makeRefusal(200, Code::badNumber, mobile);

  const RequestedFault requested = requestedFaultFor(mobile, route->call);
  if (requested.fault && !requested.fault->corrupt) return makeReply(ReplyBody::refusal(Code::demanded));
  return makeReply(perform(route->call, members, request.header("XRAPI-CLIENT-ID")), requested);
}

std::optional<Inspection> IdentityService::inspect(std::string_view mobile) const {
  const TimePoint now = environment_.now();
  const std::lock_guard lock(mutex_);
  const Record* record = records_.find(mobile);
  return record ? std::optional(view(*record, now)) : std::nullopt;
}

std::vector<std::pair<std::string, Inspection>> IdentityService::recent(std::size_t most,
                                                                        std::string_view text) const {
  std::vector<std::pair<std::string, Inspection>> known;
  const TimePoint now = environment_.now();
  const std::lock_guard lock(mutex_);
  for (const auto& [mobile, record] : records_.entries()) {
    if (known.size() == most) break;
    if (mobile.find(text) != mobile.npos) known.emplace_back(mobile, view(record, now));
  }
  return known;
}

std::size_t IdentityService::size() const {
  const std::lock_guard lock(mutex_);
  return records_.entries().size();
}

std::vector<TextMessage> IdentityService::messages() const {
  const std::lock_guard lock(mutex_);
  return {messages_.begin(), messages_.end()};
}

void IdentityService::chooseFault(const FaultChoice& choice) {
  const std::lock_guard lock(mutex_);
  choice_ = choice;
  missed_ = 0;
}

FaultChoice IdentityService::chosenFault() const {
  const std::lock_guard lock(mutex_);
  return choice_;
}

void IdentityService::forget() {
  const std::lock_guard lock(mutex_);
  records_.clear();
  messages_.clear();
  choice_ = {};
  seeded_.seed(predictions_.seed.value_or(0));
}

/// Returns what the number demands, else the chosen fault if it hits this call.
RequestedFault IdentityService::requestedFaultFor(std::string_view mobile, Call call) {
  if (const RequestedFault requested = requestedFaultOf(mobile, call); requested.fault) return requested;
  const std::lock_guard lock(mutex_);
  if (choice_.every == 0) return std::exchange(choice_, {}).requested;
  if (++missed_ < choice_.every) return {};
  missed_ = 0;
  return choice_.requested;
}

ReplyBody IdentityService::perform(Call call, const support::Members& members,
                                   std::optional<std::string_view> clientId) {
  const std::string& mobile = members.find("mobile")->second;
  {
    const std::lock_guard lock(mutex_);
    Record& record = records_.touch(mobile);
    record.clientId = clientId;
    record.dates.call = std::chrono::system_clock::now();
  }
  switch (call) {
    case Call::picture:
      return sendPicture(mobile);
    case Call::code:
      return sendCode(mobile, members.find("captcha")->second);
    case Call::login:
      return login(mobile, members.find("verificationCode")->second);
    case Call::submission:
      return submit(members);
  }
  return ReplyBody::refusal(Code::unknownPath);
}

ReplyBody IdentityService::sendPicture(const std::string& mobile) {
  const std::string text =
      predictions_.pictureText ? *predictions_.pictureText : randomText(4 + below(2), alphabet);
  const std::uint32_t seed = random();
  auto picture = drawPicture(text, seed);
  const TimePoint now = environment_.now();
  const std::lock_guard lock(mutex_);
  Record& record = records_.touch(mobile);
  record.picture = Secret{text, now + secretLifetime, 1};
  record.drawing = Drawing{text, seed};
  record.dates.picture = record.dates.call;
  return {Code::success, "picture sent", std::move(picture)};
}

ReplyBody IdentityService::sendCode(const std::string& mobile, std::string_view pictureText) {
  const std::string code = predictions_.code ? *predictions_.code : randomText(6, "0123456789");
  const std::string message = "Orvane: your sign-in code is " + code + ". It is good for 5 minutes.";
  const TimePoint now = environment_.now();
  {
    const std::lock_guard lock(mutex_);
    Record& record = records_.touch(mobile);
    switch (attempt(record.picture, pictureText, now)) {
      case Attempt::none:
        return ReplyBody::refusal(Code::noPicture);
      case Attempt::wrong:
        return ReplyBody::refusal(Code::wrongPictureText);
      case Attempt::right:
        break;
    }
    record.code = Secret{code, now + secretLifetime, codeAttempts};
    record.message = message;
    record.messageId = ++messageCount_;
    record.dates.message = std::chrono::system_clock::now();
    if (messages_.size() == maxMessages) messages_.pop_front();
    messages_.push_back({messageCount_, *record.dates.message, mobile, message});
  }
  environment_.deliver(mobile, message);
  return {Code::success, "code sent", {}};
}

ReplyBody IdentityService::login(const std::string& mobile, std::string_view code) {
  const TimePoint now = environment_.now();
  const std::lock_guard lock(mutex_);
  Record& record = records_.touch(mobile);
  if (now >= record.firstWrongCode + wrongCodesWindow) record.wrongCodes = 0;
  if (record.wrongCodes == maxWrongCodes) return ReplyBody::refusal(Code::tooManyWrongCodes);
  switch (attempt(record.code, code, now)) {
    case Attempt::none:
      return ReplyBody::refusal(Code::noCode);
    case Attempt::wrong:
      if (record.wrongCodes++ == 0) record.firstWrongCode = now;
      return ReplyBody::refusal(Code::wrongCode);
    case Attempt::right:
      break;
  }
  record.signedIn = true;
  record.dates.login = std::chrono::system_clock::now();
  return {Code::success, "welcome", {}};
}

ReplyBody IdentityService::submit(const support::Members& facts) {
  const std::lock_guard lock(mutex_);
  Record& record = records_.touch(facts.find("mobile")->second);
  if (!record.signedIn) return ReplyBody::refusal(Code::notSignedIn);
  record.facts = facts;
  record.dates.facts = std::chrono::system_clock::now();
  return {Code::success, "recorded", {}};
}

/// Compares the text with the secret and uses up one attempt. Resets the secret if the text is right or no
/// attempt is left.
IdentityService::Attempt IdentityService::attempt(std::optional<Secret>& secret, std::string_view text,
                                                  TimePoint now) {
  if (!secret || now >= secret->expires) return Attempt::none;
  const bool right = boost::beast::iequals(secret->text, text);
  if (right || --secret->attemptsLeft == 0) secret.reset();
  return right ? Attempt::right : Attempt::wrong;
}

Inspection IdentityService::view(const Record& record, TimePoint now) {
  const auto live = [now](const std::optional<Secret>& secret) {
    return secret && now < secret->expires ? std::optional(secret->text) : std::nullopt;
  };
  return {.picture = live(record.picture),
          .message = record.message,
          .messageId = record.messageId,
          .code = live(record.code),
          .drawing = record.drawing,
          .facts = record.facts,
          .clientId = record.clientId,
          .signedIn = record.signedIn,
          .dates = record.dates};
}

/// Returns 32 bits: random, or the next that follow from the seed.
std::uint32_t IdentityService::random() {
  if (!predictions_.seed) return environment_.random();
  const std::lock_guard lock(mutex_);
  return static_cast<std::uint32_t>(seeded_());
}

/// Returns a number from 0 to bound - 1. Its bias, bound / 2^32, is negligible: the largest bound is 22.
std::uint32_t IdentityService::below(std::uint32_t bound) {
  return static_cast<std::uint32_t>(std::uint64_t{random()} * bound >> 32);
}

std::string IdentityService::randomText(std::size_t length, std::string_view characters) {
  std::string text(length, ' ');
  for (char& c : text) c = characters[below(static_cast<std::uint32_t>(characters.size()))];
  return text;
}

}  // namespace devservice
