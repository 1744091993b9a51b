// Makes GNUstep's NSString as strict as Apple's.

#import <Foundation/Foundation.h>

#include "tests/apple/standins/standins.h"

#pragma clang diagnostic ignored "-Wobjc-protocol-method-implementation"

@implementation NSString (StandIn)

+ (instancetype)stringWithCharacters:(const unichar*)characters length:(NSUInteger)length {
  if (!characters) [NSException raise:NSInvalidArgumentException format:@"not even for no characters"];
  return [[[self alloc] initWithCharacters:characters length:length] autorelease];
}

@end

@implementation BrokenText
- (NSUInteger)length {
  return 5;
}
- (unichar)characterAtIndex:(NSUInteger)index {
  constexpr unichar units[] = {0xD83D, 0xD83D, 0xDE00, 0xDE00, 'a'};
  return units[index];
}
@end
