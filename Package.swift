// swift-tools-version:6.0
import Foundation
import PackageDescription

// The library from source, for Swift. Builds without CMake.

// The service's address, if the application does not give one at run time.
let baseURL = Context.environment["ORVANE_BASE_URL"] ?? "http://identity.orvane.example"

#if os(Linux)
let adapter = "adapters/host"
let linked: [LinkerSetting] = [.linkedLibrary("curl"), .linkedLibrary("utf8proc")]
#else
let adapter = "adapters/apple"
let linked: [LinkerSetting] = [
  .linkedFramework("UIKit", .when(platforms: [.iOS, .macCatalyst])),
  .linkedFramework("CoreTelephony", .when(platforms: [.iOS, .macCatalyst])),
]
#endif

/// What a native target leaves out of the whole checkout. A folder that is not there would be warned of.
let excluded = [
  "CMakeLists.txt", "bench", "build", "cmake", "docs", "examples", "fuzz", "orvane/CMakeLists.txt",
  "orvane/installed-headers.txt", "scripts", "tests", "tools", "\(adapter)/CMakeLists.txt",
  "bindings/c/CMakeLists.txt", "bindings/swift",
].filter { FileManager.default.fileExists(atPath: "\(Context.packageDirectory)/\($0)") }

/// A target of C++ and Objective-C++. Its path is the root, from which the sources include headers.
func native(
  _ name: String, dependencies: [Target.Dependency] = [], sources: [String], headers: String
) -> Target {
  .target(
    name: name, dependencies: dependencies, path: ".", exclude: excluded, sources: sources,
    publicHeadersPath: headers,
    cxxSettings: [
      .headerSearchPath("."), .headerSearchPath("\(adapter)/include"),
      .define("ORVANE_BASE_URL", to: "\"\(baseURL)\""), .define("ORVANE_VERSION", to: "\"1.0\""),
    ],
    linkerSettings: linked)
}

let package = Package(
  name: "Orvane",
  platforms: [.iOS(.v13), .macOS(.v10_15), .macCatalyst(.v14)],
  products: [.library(name: "OrvaneSignIn", targets: ["OrvaneSignIn"])],
  targets: [
    native("OrvaneC", sources: ["orvane", adapter, "bindings/c"], headers: "bindings/c/include"),
    .target(name: "OrvaneSignIn", dependencies: ["OrvaneC"], path: "bindings/swift"),
  ],
  cxxLanguageStandard: .cxx20
)
