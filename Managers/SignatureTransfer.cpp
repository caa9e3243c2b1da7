#include "Managers/SignatureTransfer.h"

#include "Managers/UpdateSignature.h"

namespace gavrel {

namespace {

constexpr int httpOk = 200;

}  // namespace

SignatureTransfer::SignatureTransfer(QNetworkAccessManager& session, const QString& address, TransferLimits limits) {
  const auto url = secureUrl(address + ".sig");
  if (!url) {
    failure_ = tr("%1.sig is not a valid address.").arg(address);
    QMetaObject::invokeMethod(this, &SignatureTransfer::finished, Qt::QueuedConnection);
    return;
  }
  content_.open(QIODevice::WriteOnly);
  limits.bytes = signatureSize;
  transfer_ = std::make_unique<HttpTransfer>(session, *url, limits, content_);
  connect(transfer_.get(), &HttpTransfer::finished, this, [this] {
    // Tested first, because a page that says "not found" is longer than a signature.
    const int status = transfer_->status();
    if (status != 0 && status != httpOk)
      failure_ = tr("The server answered %1.").arg(status);
    else
      failure_ = transfer_->failure();
    emit finished();
  });
}

}  // namespace gavrel
