#pragma once

#import <Foundation/Foundation.h>

namespace orvane {

/// Registers an empty subclass of `type` with the object runtime, under the name that the class has in
/// Swift's module: "Orvane." and its own name. Called by the `load` method of `type`.
void registerQualifiedName(Class type);

}  // namespace orvane
