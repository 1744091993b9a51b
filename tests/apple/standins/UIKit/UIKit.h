#pragma once

#import <Foundation/Foundation.h>

typedef NSRect CGRect;

@interface UIDevice : NSObject
+ (UIDevice*)currentDevice;
- (NSString*)systemVersion;
- (NSString*)model;
- (NSUUID*)identifierForVendor;
@end

@interface UIScreen : NSObject
+ (UIScreen*)mainScreen;
- (CGRect)bounds;
- (CGFloat)scale;
@end
