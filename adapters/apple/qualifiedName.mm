#import "adapters/apple/qualifiedName.h"

#import <objc/runtime.h>
#include <string>

namespace orvane {

void registerQualifiedName(Class type) {
  const std::string name = std::string("Orvane.").append(class_getName(type));
  objc_registerClassPair(objc_allocateClassPair(type, name.c_str(), 0));
}

}  // namespace orvane
