#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace devservice {

/// The "code" of a reply: zero or the reason of the refusal.
enum class Code : int {
  success = 0,
  malformedBody = 1001,
  badHeader = 1002,
  badMember = 1003,
  badNumber = 1004,
  tooLarge = 1005,
  unknownPath = 1006,
  wrongMethod = 1007,
  notLocal = 1008,
  malformedRequest = 1009,
  otherHost = 1010,
  unknownNumber = 1011,
  noPicture = 2001,
  wrongPictureText = 2002,
  noCode = 3001,
  wrongCode = 3002,
  tooManyWrongCodes = 3003,
  notSignedIn = 4001,
  demanded = 4321,
};

struct CodeDescription {
  Code code;
  std::string_view text;
};

/// Every code with the text that "msg" starts with.
std::span<const CodeDescription> codeTable();

/// The members of a reply's JSON object.
struct Envelope {
  Code code = Code::success;
  std::string msg;
  std::optional<std::vector<std::uint8_t>> data;  ///< Sent as an array of numbers, or as null.
};

/// The refusal for that reason; the detail, if any, tells the developer which header or member it is about.
Envelope refusal(Code reason, std::string_view detail = {});

}  // namespace devservice
