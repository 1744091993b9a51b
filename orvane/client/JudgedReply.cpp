#include "orvane/client/JudgedReply.h"

#include <charconv>
#include <utility>

namespace orvane {
namespace {

/// Reads an optional sign and decimal digits whose value is at most 255; a minus only before zero.
std::optional<std::uint8_t> byteInString(std::string_view string) {
  const bool negative = string.starts_with('-');
  if (negative || string.starts_with('+')) string.remove_prefix(1);
  std::uint8_t byte = 0;
  const auto [end, error] = std::from_chars(string.data(), string.data() + string.size(), byte);
  if (error != std::errc() || end != string.data() + string.size() || (negative && byte != 0))
    return std::nullopt;
  return byte;
}

std::optional<std::uint8_t> byteInElement(const Value& element) {
  if (const std::string* string = element.string()) return byteInString(*string);
  const std::optional<std::string> decimal = element.numberAsString();
  return decimal ? byteInString(*decimal) : std::nullopt;
}

/// Returns the picture that an array of byte values holds: numbers from 0 to 255, or strings of such numbers.
/// Returns nullopt if an element is anything else. Moves the bytes out of `elements` if it has them packed.
/// Sets no limit: the session limits the reply, by default to 64 MiB on ordinary machines.
std::optional<Bytes> pictureBytes(Array& elements) {
  if (Bytes* ready = elements.bytes()) return std::move(*ready);
  Bytes bytes;
  bytes.reserve(elements.size());
  for (const Value& element : elements) {
    const std::optional<std::uint8_t> byte = byteInElement(element);
    if (!byte) return std::nullopt;
    bytes.push_back(*byte);
  }
  return bytes;
}

/// Reads a decoded reply. Keeps the first flaw that it meets: after it, everything that is read is empty.
class Reply {
 public:
  explicit Reply(std::optional<Value> result) : value_(std::move(result)) {
    if (!value_) {
      flaw_ = "there is no reply";
    } else if (!value_->map()) {
      flaw_ = "the reply is not a map";
    }
  }

  std::int64_t code() {
    const Value* const code = member("code", "the reply has no \"code\"");
    const std::optional<std::int64_t> integer = code ? code->numberAsInteger() : std::nullopt;
    if (!integer) note("the reply's \"code\" is not a number");
    return integer.value_or(0);
  }

  std::string msg() {
    const Value* const msg = member("msg", "the reply has no \"msg\"");
    const std::string* const message = msg ? msg->string() : nullptr;
    if (!message) note("the reply's \"msg\" is not a string");
    return message ? *message : std::string();
  }

  std::optional<Bytes> picture() {
    Value* const data = member("data", "the reply has no \"data\"");
    Array* const elements = data ? data->array() : nullptr;
    if (!elements) note("the reply's \"data\" is not an array");
    std::optional<Bytes> picture = elements ? pictureBytes(*elements) : std::nullopt;
    if (!picture) note("an element of the reply's \"data\" is not a byte");
    return picture;
  }

  std::string_view flaw() const { return flaw_; }

 private:
  /// Returns null, and notes `flaw`, if there is no such member. Returns null after any flaw.
  Value* member(std::string_view key, std::string_view flaw) {
    if (!flaw_.empty()) return nullptr;
    Map& members = *value_->map();
    const auto found = members.find(key);
    if (found != members.end()) return &found->second;
    flaw_ = flaw;
    return nullptr;
  }

  void note(std::string_view flaw) {
    if (flaw_.empty()) flaw_ = flaw;
  }

  std::optional<Value> value_;
  std::string_view flaw_;
};

ErrorPtr refusal(std::string message, std::int64_t code) {
  return std::make_shared<const Error>(Error{std::move(message), code, {}});
}

/// Returns the refusal in a reply to the picture or the SMS-code call, or null for a success or a flaw.
ErrorPtr refusalIn(Reply& reply) {
  const std::int64_t code = reply.code();
  if (code == 0) return nullptr;
  std::string message = reply.msg();
  return reply.flaw().empty() ? refusal(std::move(message), code) : nullptr;
}

}  // namespace

JudgedReply judgePictureCode(std::optional<Value> result, ErrorPtr error) {
  if (error) return {.error = std::move(error)};
  Reply reply(std::move(result));
  if (ErrorPtr refused = refusalIn(reply)) return {.error = std::move(refused)};
  std::optional<Bytes> picture = reply.picture();
  return {.picture = std::move(picture), .flaw = reply.flaw()};
}

JudgedReply judgeCode(std::optional<Value> result, ErrorPtr error) {
  if (error) return {.error = std::move(error)};
  Reply reply(std::move(result));
  ErrorPtr refused = refusalIn(reply);
  return {.error = std::move(refused), .flaw = reply.flaw()};
}

JudgedReply judgeLogin(std::optional<Value> result, ErrorPtr error) {
  // Reads the reply before the error, so that a failed transfer stops the process.
  Reply reply(std::move(result));
  std::string message = reply.msg();
  // Promised: this message, "network error", for a reply together with an error. NetworkTool never reports
  // both.
  if (error) return {.message = "网络错误", .error = std::move(error), .flaw = reply.flaw()};
  constexpr std::int64_t refusalCode = 1;  // The same for all refusals of a login.
  if (reply.code() != 0) error = refusal(message, refusalCode);
  return {.message = std::move(message), .error = std::move(error), .flaw = reply.flaw()};
}

}  // namespace orvane
