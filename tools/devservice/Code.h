#pragma once

#include <span>
#include <string_view>

namespace devservice {

/// The "code" of a reply: 0 for success, else the reason of the refusal.
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
  tooManyWaiting = 1012,
  noToken = 1013,
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

/// Returns every code with the text that "msg" starts with.
std::span<const CodeDescription> codeTable();

}  // namespace devservice
