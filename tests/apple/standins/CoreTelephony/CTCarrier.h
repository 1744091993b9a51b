#pragma once

#import <Foundation/Foundation.h>

@interface CTCarrier : NSObject
- (NSString*)carrierName;
@end
