import Foundation
import OrvaneSignIn

#if canImport(FoundationNetworking)
  import FoundationNetworking
#endif

/// What becomes of the picture, the code and the login that a fault of the development service hits.
let outcomes = """
  01  success       success       success
  02  noConnection  noConnection  noConnection
  03  noConnection  noConnection  noConnection
  04  noConnection  noConnection  noConnection
  05  notReadable   notReadable   notReadable
  06  notReadable   notReadable   notReadable
  07  success       success       success
  08  refused       refused       refused
  09  notReadable   notReadable   notReadable
  10  success       success       notReadable
  11  notReadable   success       success
  12  notReadable   notReadable   notReadable
  13  success       success       notReadable
  14  notReadable   success       success
  15  notReadable   success       success
  16  notReadable   notReadable   notReadable
  17  success       success       success
  """

/// Signs in at the development service whose address is the argument, and meets each of its faults.
@main struct SignIn {
  let client: PhoneSignInClient
  let address: URL

  static func main() async throws {
    guard let address = URL(string: CommandLine.arguments.last ?? "") else { fail("There is no address") }
    let client = PhoneSignInClient(address: address) { "Words for \($0.kind)" }
    let program = SignIn(client: client, address: address)
    await program.meetFaults()
    try await program.makeManyCalls()
    try await program.cancel()
  }

  func meetFaults() async {
    for row in outcomes.split(separator: "\n") {
      let columns = row.split(separator: " ")
      for call in 1...3 {
        // The late reply comes after 10 ms.
        let mobile = "+99900000\(call)\(columns[0])" + (columns[0] == "01" ? "0001" : "")
        let (made, outcome) = await signIn(mobile)
        let expected = columns[call] == "success" ? "3 success" : "\(call - 1) \(columns[call])"
        if "\(made) \(outcome)" != expected { fail("\(mobile): \(made) \(outcome), not \(expected)") }
      }
    }
    print("Each call met \(outcomes.split(separator: "\n").count) faults")
  }

  /// Returns how many calls succeeded, and the kind of the error that ended the sign-in.
  func signIn(_ mobile: String) async -> (made: Int, outcome: String) {
    var made = 0
    do {
      guard try await !client.pictureCode(for: mobile).isEmpty else { fail("An empty picture") }
      made = 1
      try await client.sendCode(to: mobile, pictureText: known(mobile)?.picture ?? "")
      made = 2
      let message = try await client.logIn(mobile, code: known(mobile)?.code ?? "")
      return (3, message.isEmpty ? "no message" : "success")
    } catch let error as SignInError {
      // Only a login has the application's words for each failure.
      if made == 2, error.kind != .refused, error.message != "Words for \(error.kind)" { fail(error.message) }
      return (made, "\(error.kind)")
    } catch {
      return (made, "\(error)")
    }
  }

  func makeManyCalls() async throws {
    let count = 1000
    let pictures = try await withThrowingTaskGroup(of: Data.self) { group in
      for number in 0..<count {
        group.addTask { try await client.pictureCode(for: "+44770090\(1000 + number)") }
      }
      return try await group.reduce(into: []) { $0.append($1) }
    }
    if pictures.count != count || pictures.contains(Data()) { fail("\(pictures.count) pictures") }
    print("\(count) calls at once")
  }

  /// Cancels a call that the service never answers, and one that was not made yet.
  func cancel() async throws {
    let held = Task { await signIn("+99900000118") }
    while try await known("+99900000118") == nil {}
    held.cancel()
    let early = Task {
      withUnsafeCurrentTask { $0?.cancel() }
      return await signIn("+447700900123")
    }
    for task in [held, early] {
      let outcome = await task.value.outcome
      if outcome != "CancellationError()" { fail("A cancelled call ended with \(outcome)") }
    }
    if try await known("+447700900123") != nil { fail("A call was made that was cancelled before") }
    print("Two calls cancelled")
  }

  struct Known: Decodable {
    let picture: String?
    let code: String?
  }

  /// Returns what the service knows of a number that has made a call.
  func known(_ mobile: String) async throws -> Known? {
    let url = URL(string: "\(address)/inspect?mobile=\(mobile)")!
    let (body, response) = try await URLSession.shared.data(from: url)
    return (response as? HTTPURLResponse)?.statusCode == 404
      ? nil : try JSONDecoder().decode(Known.self, from: body)
  }
}

func fail(_ words: String) -> Never {
  print(words)
  exit(1)
}
