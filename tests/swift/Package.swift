// swift-tools-version:6.0
import PackageDescription

// An application's package, which depends on the library's. tests/swift/run writes the code of docs/ios.md to
// .build/document.
let signIn: Target.Dependency = .product(name: "OrvaneSignIn", package: "Orvane")
let package = Package(
  name: "Application",
  dependencies: [.package(name: "Orvane", path: "../..")],
  targets: [
    .executableTarget(name: "signIn", dependencies: [signIn], path: "signIn"),
    .target(name: "SwiftUI", path: "SwiftUI"),
    .target(name: "Application", dependencies: [signIn, "SwiftUI"], path: ".build/document/Application"),
    .testTarget(name: "ApplicationTests", dependencies: ["Application"], path: ".build/document/Tests"),
  ]
)
