// swift-tools-version:6.0
import Foundation
import PackageDescription

// The library from source, without CMake.
//   OrvaneSignIn   the sign-in for Swift, on Apple's systems and on Linux
//   Orvane         the classes for Objective-C, on Apple's systems

// The service's address, if the application gives none at run time: http:// and a host name.
let baseURL = Context.environment["ORVANE_BASE_URL"] ?? "http://identity.orvane.example"
precondition(
  baseURL.range(of: #"^http://[A-Za-z0-9]+((\.|-+)[A-Za-z0-9]+)*\z"#, options: .regularExpression) != nil,
  "ORVANE_BASE_URL is \"\(baseURL)\"; it must be http:// and a host name, without a port or a path.")

#if os(Linux)
let adapter = "adapters/host"
let linked: [LinkerSetting] = [.linkedLibrary("curl"), .linkedLibrary("utf8proc")]
let products: [Product] = []
let targets: [Target] = []
#else
let adapter = "adapters/apple"
let linked: [LinkerSetting] = [
  .linkedFramework("UIKit", .when(platforms: [.iOS, .macCatalyst])),
  .linkedFramework("CoreTelephony", .when(platforms: [.iOS, .macCatalyst])),
]
let products: [Product] = [.library(name: "Orvane", targets: ["Orvane"])]
let targets: [Target] = [
  .target(
    name: "Orvane", dependencies: ["OrvaneC"], path: "bindings",
    exclude: ["c", "objc/CMakeLists.txt", "objc/framework", "objc/framework.cmake", "swift"],
    sources: ["objc"], resources: [.copy("PrivacyInfo.xcprivacy")], publicHeadersPath: "objc/include",
    cxxSettings: [.headerSearchPath(".."), .headerSearchPath("../adapters/apple/include")])
]
#endif

// What the target at the root leaves out. SwiftPM warns of a folder that is not there.
let excluded = [
  "CMakeLists.txt", "\(adapter)/CMakeLists.txt", "bench", "bindings/PrivacyInfo.xcprivacy",
  "bindings/c/CMakeLists.txt", "bindings/objc", "bindings/swift", "build", "cmake", "docs", "examples",
  "fuzz", "orvane/CMakeLists.txt", "orvane/installed-headers.txt", "scripts", "tests", "tools",
].filter { FileManager.default.fileExists(atPath: "\(Context.packageDirectory)/\($0)") }

let package = Package(
  name: "Orvane",
  platforms: [.iOS(.v13), .macOS(.v10_15), .macCatalyst(.v14)],
  products: products + [.library(name: "OrvaneSignIn", targets: ["OrvaneSignIn"])],
  targets: targets + [
    // The whole library with its interface for C. Its path is the root, from which it includes its headers:
    // in targets for each folder, SwiftPM would make modules of the C++ headers.
    .target(
      name: "OrvaneC", path: ".", exclude: excluded, sources: ["orvane", adapter, "bindings/c"],
      publicHeadersPath: "bindings/c/include",
      cxxSettings: [
        .headerSearchPath("."), .headerSearchPath("\(adapter)/include"),
        .define("ORVANE_BASE_URL", to: "\"\(baseURL)\""), .define("ORVANE_VERSION", to: "\"1.0\""),
      ],
      linkerSettings: linked),
    .target(
      name: "OrvaneSignIn", dependencies: ["OrvaneC"], path: "bindings", exclude: ["c", "objc"],
      sources: ["swift"], resources: [.copy("PrivacyInfo.xcprivacy")]),
    .testTarget(name: "OrvaneSignInTests", dependencies: ["OrvaneSignIn"], path: "tests/swift/unit"),
  ],
  cxxLanguageStandard: .cxx20
)
