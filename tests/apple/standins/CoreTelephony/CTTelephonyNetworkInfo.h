#pragma once

#import <CoreTelephony/CTCarrier.h>

@interface CTTelephonyNetworkInfo : NSObject
- (CTCarrier*)subscriberCellularProvider;
@end
