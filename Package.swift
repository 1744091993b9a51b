// swift-tools-version:5.5
import PackageDescription

// A package with the framework that scripts/xcframework makes.
let package = Package(
  name: "Orvane",
  platforms: [.iOS(.v12), .macOS(.v10_14), .macCatalyst(.v14)],
  products: [.library(name: "Orvane", targets: ["Orvane"])],
  targets: [.binaryTarget(name: "Orvane", path: "build/Orvane.xcframework")]
)
