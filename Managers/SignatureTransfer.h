#pragma once

#include <QBuffer>
#include <QByteArray>
#include <QNetworkAccessManager>
#include <QObject>
#include <QString>
#include <memory>
#include <optional>

#include "Managers/HttpTransfer.h"

namespace gavrel {

/// Fetches the signature of a file on the server, from the file's address with ".sig" appended. Cancelled silently when
/// destroyed.
class SignatureTransfer : public QObject {
  Q_OBJECT

 public:
  /// Starts. `address`: of the signed file. Only the time limits are used.
  SignatureTransfer(QNetworkAccessManager& session, const QString& address, TransferLimits limits);

  /// After `finished`: why there is no signature, if there is none.
  [[nodiscard]] const std::optional<QString>& failure() const { return failure_; }
  /// After `finished`: what the server has sent, `signatureSize` bytes at most.
  [[nodiscard]] const QByteArray& signature() const { return content_.data(); }

 signals:
  void finished();

 private:
  QBuffer content_;
  std::optional<QString> failure_;
  std::unique_ptr<HttpTransfer> transfer_;
};

}  // namespace gavrel
