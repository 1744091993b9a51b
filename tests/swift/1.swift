import Orvane
import SwiftUI

struct SignInView: View {
  @State private var mobile = ""
  @State private var picture: UIImage?
  @State private var captcha = ""
  @State private var code = ""
  @State private var status = ""

  var body: some View {
    Form {
      TextField("Mobile number", text: $mobile).textContentType(.telephoneNumber).keyboardType(.phonePad)
      Button("Show the picture") { attempt { try await showPicture() } }
      if let picture { Image(uiImage: picture) }
      TextField("What the picture says", text: $captcha)
      Button("Send the code") { attempt { try await sendCode() } }
      TextField("Code", text: $code).textContentType(.oneTimeCode).keyboardType(.numberPad)
      Button("Sign in") { attempt { try await logIn() } }
      Text(status)
    }
  }

  private func showPicture() async throws {
    captcha = ""
    picture = UIImage(data: try await OrvaneManager.shareManager.requestPictureCode(mobile))
  }

  private func sendCode() async throws {
    do {
      try await OrvaneManager.shareManager.requestCode(mobile, codeNumber: captcha)
      status = "The code is on its way."
    } catch where isRefusal(error) {
      status = words(for: error)
      try await showPicture()
    }
  }

  private func logIn() async throws {
    status = try await OrvaneManager.shareManager.requestLogin(mobile, code: code)
  }

  private func attempt(_ step: @escaping @MainActor () async throws -> Void) {
    Task { @MainActor in
      do { try await step() } catch { status = words(for: error) }
    }
  }
}
