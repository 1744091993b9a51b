// Makes GNUstep's NSString as strict as Apple's.

#import <Foundation/Foundation.h>

#pragma clang diagnostic ignored "-Wobjc-protocol-method-implementation"

@implementation NSString (StandIn)

+ (instancetype)stringWithCharacters:(const unichar*)characters length:(NSUInteger)length {
  if (!characters) [NSException raise:NSInvalidArgumentException format:@"not even for no characters"];
  return [[[self alloc] initWithCharacters:characters length:length] autorelease];
}

@end
