// swift-tools-version:5.5
import PackageDescription

// The framework that scripts/xcframework makes, as a package.
let package = Package(
  name: "Orvane",
  platforms: [.iOS(.v12), .macOS(.v10_14), .macCatalyst(.v14)],
  products: [.library(name: "Orvane", targets: ["Orvane"])],
  targets: [.binaryTarget(name: "Orvane", path: "build/Orvane.xcframework")]
)
