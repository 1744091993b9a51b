#pragma once

#import <Foundation/Foundation.h>

namespace orvane {

/// Makes `type` known to the object runtime under its module-qualified name, "Orvane." and its own, too: as an empty
/// subclass. For its `load`.
void registerQualifiedName(Class type);

}  // namespace orvane
