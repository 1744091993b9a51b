// What an application may write: in Objective-C and in Objective-C++, with and without automatic reference counting.

#ifdef __cplusplus
#import "orvane/apple/AppleError.h"
#import "orvane/apple/AppleSession.h"
#include "orvane/orvane.h"
#endif

#import <Orvane/Orvane.h>

void useOrvane(void);
void useOrvane(void) {
  OrvaneManager* manager = OrvaneManager.shareManager;
  manager.clientId = nil;
  [manager setAppClientId:[NSString stringWithFormat:@"%f %s", OrvaneVersionNumber, OrvaneVersionString]];
  [[[OrvaneManager class] new] requestPictureCode:@""
                                         finished:^(NSData* _Nullable data, NSError* _Nullable error) {
                                           NSLog(@"%@ %@", data, error);
                                         }];
  [manager requestCode:@""
            codeNumber:[OVDeviceInfoTool getcarrierName]
              finished:^(NSError* _Nullable error) {
                NSLog(@"%@", error);
              }];
  [manager requestLogin:@""
                   code:@""
               finished:^(NSString* _Nullable message, NSError* _Nullable error) {
                 NSLog(@"%@ %@", message, error);
               }];
}
