#pragma once

#include <QBuffer>
#include <QByteArray>
#include <QNetworkAccessManager>
#include <QObject>
#include <QString>
#include <QUrl>
#include <memory>
#include <optional>
#include <vector>

#include "Managers/HttpTransfer.h"
#include "Managers/SignatureTransfer.h"
#include "Managers/UpdateState.h"

namespace gavrel {

/// Fetches the manifest and, if there are keys, verifies that the owner of one has signed it. Cancelled silently when
/// destroyed.
class ManifestTransfer : public QObject {
  Q_OBJECT

 public:
  /// Starts. The time limits apply to the manifest and to its signature separately.
  ManifestTransfer(QNetworkAccessManager& session, const QUrl& url, std::vector<QByteArray> publicKeys,
                   TransferLimits limits);

  /// After `finished`: why there is no manifest that can be trusted, if there is none.
  [[nodiscard]] const std::optional<UpdateError>& failure() const { return failure_; }
  /// After `finished`: the manifest.
  [[nodiscard]] const QByteArray& json() const { return content_.data(); }

 signals:
  void finished();

 private:
  void proveSignature(QNetworkAccessManager& session, const QUrl& url, TransferLimits limits);
  void finish(const std::optional<UpdateError>& failure);

  const std::vector<QByteArray> publicKeys_;
  QBuffer content_;
  std::optional<UpdateError> failure_;
  std::unique_ptr<HttpTransfer> manifest_;
  std::unique_ptr<SignatureTransfer> signature_;
};

}  // namespace gavrel
