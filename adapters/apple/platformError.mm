#import "orvane/apple/platformError.h"

#import "adapters/apple/platformString.h"
#import "adapters/apple/retained.h"

namespace orvane {

namespace {

/// The key of the cause in the user information of a failure in the application's words.
NSString* const causeKey = @"OrvaneCause";

NSDictionary* wordsAndCause(const Error& error) {
  return @{
    NSLocalizedDescriptionKey : platformString(error.domain),
    causeKey : platformError(error.cause),
  };
}

}  // namespace

ErrorPtr makeError(NSError* error) {
  if (!error) return nullptr;
  Map userInfo;
  NSDictionary* const entries = [error userInfo];
  for (id key in entries) {
    const id value = [entries objectForKey:key];
    const Class string = [NSString class];
    if ([key isKindOfClass:string] && [value isKindOfClass:string]) userInfo.emplace(utf8(key), utf8(value));
  }
  return std::make_shared<const Error>(Error{utf8([error domain]), [error code], std::move(userInfo),
                                             retained(error), makeError([entries objectForKey:causeKey])});
}

NSError* platformError(const ErrorPtr& error) {
  if (!error) return nil;
  if (error->platformError) return objectIn<NSError>(error->platformError);
  NSMutableDictionary* const userInfo = [NSMutableDictionary dictionary];
  if (error->cause) [userInfo addEntriesFromDictionary:wordsAndCause(*error)];
  for (const auto& [key, value] : error->userInfo) {
    if (const std::string* string = value.string())
      [userInfo setObject:platformString(*string) forKey:platformString(key)];
  }
  return [NSError errorWithDomain:platformString(error->domain)
                             code:static_cast<NSInteger>(error->code)
                         userInfo:[userInfo count] > 0 ? userInfo : nil];
}

}  // namespace orvane
