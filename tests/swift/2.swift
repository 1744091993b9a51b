import Orvane
import UIKit

final class SignInController: UIViewController {
  private let mobile = UITextField()
  private let picture = UIImageView()
  private let captcha = UITextField()
  private let code = UITextField()
  private let status = UILabel()

  override func viewDidLoad() {
    super.viewDidLoad()
    mobile.textContentType = .telephoneNumber
    code.textContentType = .oneTimeCode
  }

  func pictureTapped() { attempt { [self] in try await showPicture() } }
  func sendTapped() { attempt { [self] in try await sendCode() } }
  func signInTapped() { attempt { [self] in try await logIn() } }

  private func showPicture() async throws {
    captcha.text = ""
    picture.image = UIImage(data: try await OrvaneManager.shareManager.requestPictureCode(mobile.text ?? ""))
  }

  private func sendCode() async throws {
    do {
      try await OrvaneManager.shareManager.requestCode(mobile.text ?? "", codeNumber: captcha.text ?? "")
      status.text = "The code is on its way."
    } catch where isRefusal(error) {
      status.text = words(for: error)
      try await showPicture()
    }
  }

  private func logIn() async throws {
    status.text = try await OrvaneManager.shareManager.requestLogin(mobile.text ?? "", code: code.text ?? "")
  }

  private func attempt(_ step: @escaping @MainActor () async throws -> Void) {
    Task { @MainActor in
      do { try await step() } catch { status.text = words(for: error) }
    }
  }
}
