// swift-tools-version:6.0
import PackageDescription

// An application's package, which depends on the library's.
let signIn: Target.Dependency = .product(name: "OrvaneSignIn", package: "Orvane")
let package = Package(
  name: "Application",
  dependencies: [.package(name: "Orvane", path: "../..")],
  targets: [
    .executableTarget(name: "signIn", dependencies: [signIn], path: "signIn"),
  ]
)
