#include "tools/devservice/Code.h"

namespace devservice {
namespace {

constexpr CodeDescription table[] = {
    {Code::success, "success"},
    {Code::malformedBody, "the body is not a JSON object"},
    {Code::badHeader, "a header field is missing, too long or has the wrong value"},
    {Code::badMember, "a member is missing, unknown, too long or not a string"},
    {Code::badNumber, "not a mobile number"},
    {Code::tooLarge, "the request is too large"},
    {Code::unknownPath, "no such path"},
    {Code::wrongMethod, "wrong method"},
    {Code::notLocal, "answered only for callers on this machine"},
    {Code::malformedRequest, "the request is malformed"},
    {Code::otherHost, "this service answers only for its own hosts"},
    {Code::unknownNumber, "this number has made no call"},
    {Code::tooManyWaiting, "too many requests are waiting already"},
    {Code::noToken, "the token is missing or wrong"},
    {Code::noPicture, "there is no picture to read: not requested, already used, or expired"},
    {Code::wrongPictureText, "that is not the picture's text"},
    {Code::noCode, "there is no code to enter: not requested, already used, or expired"},
    {Code::wrongCode, "that is not the code"},
    {Code::tooManyWrongCodes, "too many wrong codes for this number: try again in an hour"},
    {Code::notSignedIn, "this number has not signed in"},
    {Code::demanded, "refused on demand"},
};

}  // namespace

std::span<const CodeDescription> codeTable() {
  return table;
}

}  // namespace devservice
