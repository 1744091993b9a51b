// What an application may write: in Objective-C and Objective-C++, with and without automatic reference
// counting.

#ifdef __cplusplus
#import "orvane/apple/platformError.h"
#import "orvane/apple/AppleSession.h"
#include "orvane/orvane.h"
#endif

#import <Orvane/Orvane.h>

void useOrvane(void);
void useOrvane(void) {
  void (^finished)(id, NSError*) = ^(id answer, NSError* error) {
    NSLog(@"%@ %@", answer, error);
  };
  OrvaneManager* manager = OrvaneManager.shareManager;
  manager.clientId = nil;
  [manager setAppClientId:[NSString stringWithFormat:@"%f %s", OrvaneVersionNumber, OrvaneVersionString]];
  [OVSession useSession:NSURLSession.sharedSession address:nil failureWords:nil];
  [[[OrvaneManager class] new] requestPictureCode:@"" finished:finished];
  [manager requestCode:@""
            codeNumber:[OVDeviceInfoTool getcarrierName]
              finished:^(NSError* _Nullable error) {
                finished(nil, error);
              }];
  [manager requestLogin:@"" code:@"" finished:finished];
}
