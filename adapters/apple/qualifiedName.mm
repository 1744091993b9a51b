#import "adapters/apple/qualifiedName.h"

#import <objc/runtime.h>
#include <string>

namespace orvane {

void registerQualifiedName(Class type) {
  const std::string name = std::string("Orvane.").append(class_getName(type));
  // None where another copy of the library has it.
  if (const Class made = objc_allocateClassPair(type, name.c_str(), 0)) objc_registerClassPair(made);
}

}  // namespace orvane
