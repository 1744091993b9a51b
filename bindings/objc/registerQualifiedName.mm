#import "bindings/objc/registerQualifiedName.h"

#import <objc/runtime.h>
#include <string>

namespace orvane {

void registerQualifiedName(Class type) {
  const std::string name = std::string("Orvane.").append(class_getName(type));
  // Null if another copy of the library in this process has registered the name.
  if (const Class made = objc_allocateClassPair(type, name.c_str(), 0)) objc_registerClassPair(made);
}

}  // namespace orvane
