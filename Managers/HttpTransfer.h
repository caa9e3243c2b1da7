#pragma once

#include <QIODevice>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QTimer>
#include <QUrl>
#include <chrono>
#include <optional>

namespace gavrel {

/// Bounds of one transfer.
struct TransferLimits {
  qint64 bytes;                           ///< more are a failure
  std::chrono::milliseconds silence;      ///< how long the server may send nothing
  std::chrono::milliseconds whole = {};   ///< how long the transfer may take in all; 0: any time
  std::chrono::milliseconds period = {};  ///< in each of which `leastRate` must be reached on average; 0: at any rate
};

/// Bytes a second; a transfer that is slower would occupy the user for days.
inline constexpr qint64 leastRate = 1000;

/// One GET request over HTTPS, whose answer's body goes to `sink` as it comes. Redirections are followed, but never to
/// an address without TLS. Cancelled silently when destroyed.
class HttpTransfer : public QObject {
  Q_OBJECT

 public:
  /// Starts the request. `sink` is open for writing and outlives the transfer.
  HttpTransfer(QNetworkAccessManager& session, const QUrl& url, TransferLimits limits, QIODevice& sink);
  ~HttpTransfer() override;

  /// After `finished`: why the body did not come whole, if it did not. An answer that tells of an error is whole.
  [[nodiscard]] const std::optional<QString>& failure() const { return failure_; }
  /// After `finished`: the HTTP status code, 0 if no answer came.
  [[nodiscard]] int status() const;

 signals:
  void progressed(qint64 written, qint64 expected);  ///< in bytes; `expected` is below 1 where unknown
  void finished();

 private:
  void receive();
  void complete();
  void comparePace();
  void stop(const QString& reason);

  TransferLimits limits_;
  QIODevice& sink_;
  QPointer<QNetworkReply> reply_;  // goes with its session
  qint64 received_ = 0;
  qint64 receivedBefore_ = 0;  // this period
  QTimer wholeTimer_;
  QTimer periodTimer_;
  std::optional<QString> failure_;
};

/// `address` as a URL with TLS and a host, if it is one.
[[nodiscard]] std::optional<QUrl> secureUrl(const QString& address);

}  // namespace gavrel
