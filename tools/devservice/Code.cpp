#include "tools/devservice/Code.h"

namespace devservice {
namespace {

constexpr CodeDescription table[] = {
    {Code::success, "success"},
    {Code::malformedBody, "the body is not a JSON object"},
    {Code::badHeader, "a header is missing, too long or has the wrong value"},
    {Code::badMember, "a member is missing, unknown, too long or not a string"},
    {Code::badNumber, "not a mobile number"},
    {Code::tooLarge, "the request is too large"},
    {Code::unknownPath, "no such path"},
    {Code::wrongMethod, "wrong method"},
    {Code::notLocal, "only for callers on this machine"},
    {Code::malformedRequest, "the request is not understood"},
    {Code::otherHost, "as a proxy this service answers for its own hosts alone"},
    {Code::unknownNumber, "this number has made no call"},
    {Code::noPicture, "no picture to be read: none sent, used up or expired"},
    {Code::wrongPictureText, "that is not the picture's text"},
    {Code::noCode, "no code to be entered: none sent, used up or expired"},
    {Code::wrongCode, "that is not the code"},
    {Code::tooManyWrongCodes, "too many wrong codes for this number: wait for an hour"},
    {Code::notSignedIn, "this number has not signed in"},
    {Code::demanded, "refused as the number demands"},
};

}  // namespace

std::span<const CodeDescription> codeTable() {
  return table;
}

}  // namespace devservice
