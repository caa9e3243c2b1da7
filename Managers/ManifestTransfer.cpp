#include "Managers/ManifestTransfer.h"

#include <utility>

#include "Managers/UpdateSignature.h"

namespace gavrel {

using Error = UpdateError::Case;

ManifestTransfer::ManifestTransfer(QNetworkAccessManager& session, const QUrl& url, std::vector<QByteArray> publicKeys,
                                   TransferLimits limits)
    : publicKeys_(std::move(publicKeys)) {
  content_.open(QIODevice::WriteOnly);
  manifest_ = std::make_unique<HttpTransfer>(session, url, limits, content_);
  connect(manifest_.get(), &HttpTransfer::finished, this, [this, &session, url, limits] {
    if (const auto& failure = manifest_->failure()) return finish(UpdateError{Error::networkError, *failure});
    if (publicKeys_.empty()) return finish({});
    proveSignature(session, url, limits);
  });
}

void ManifestTransfer::proveSignature(QNetworkAccessManager& session, const QUrl& url, TransferLimits limits) {
  signature_ = std::make_unique<SignatureTransfer>(session, url.toString(QUrl::FullyEncoded), limits);
  connect(signature_.get(), &SignatureTransfer::finished, this, [this] {
    if (const auto& failure = signature_->failure())
      return finish(UpdateError{Error::checkFailed, tr("The signature of the list of versions: %1").arg(*failure)});
    if (!isSigned(json(), signature_->signature(), publicKeys_))
      return finish(
          UpdateError{Error::checkFailed, tr("The list of versions is not signed by the makers of this program.")});
    finish({});
  });
}

void ManifestTransfer::finish(const std::optional<UpdateError>& failure) {
  failure_ = failure;
  emit finished();
}

}  // namespace gavrel
