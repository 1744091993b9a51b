import Dispatch
import Orvane
import UIKit

final class PictureController: UIViewController {
  private let picture = UIImageView()
  private let status = UILabel()

  func showPicture(for mobile: String) {
    OrvaneManager.shareManager.requestPictureCode(mobile) { data, error in
      DispatchQueue.main.async {
        if let error { self.status.text = words(for: error) }
        self.picture.image = data.flatMap(UIImage.init(data:))
      }
    }
  }
}
