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

/// Limits of one transfer.
struct TransferLimits {
  qint64 bytes;                           ///< largest size of the body
  std::chrono::milliseconds silence;      ///< how long the server may send nothing
  std::chrono::milliseconds whole = {};   ///< how long the transfer may take in all; 0: no limit
  std::chrono::milliseconds period = {};  ///< `leastRate` must be reached on average over each; 0: no lower limit
};

/// In bytes a second; a slower transfer of an update would take days.
inline constexpr qint64 leastRate = 1000;

/// One GET request over HTTPS. The body of the answer is written to `sink` as it arrives. Redirections are followed,
/// but never to an address without TLS. Cancelled silently when destroyed.
class HttpTransfer : public QObject {
  Q_OBJECT

 public:
  /// Starts the request. `sink` is open for writing and outlives the transfer.
  HttpTransfer(QNetworkAccessManager& session, const QUrl& url, TransferLimits limits, QIODevice& sink);
  ~HttpTransfer() override;

  /// After `finished`: why the body is not complete, if it is not. An answer with an error status can be complete.
  [[nodiscard]] const std::optional<QString>& failure() const { return failure_; }
  /// After `finished`: the HTTP status code, 0 if no answer came.
  [[nodiscard]] int status() const;

 signals:
  void progressed(qint64 written, qint64 expected);  ///< in bytes; `expected` is below 1 if unknown
  void finished();

 private:
  void receive();
  void complete();
  void comparePace();
  void stop(const QString& reason);

  TransferLimits limits_;
  QIODevice& sink_;
  QPointer<QNetworkReply> reply_;  // destroyed with its session
  qint64 received_ = 0;
  qint64 receivedBefore_ = 0;  // this period
  QTimer wholeTimer_;
  QTimer periodTimer_;
  std::optional<QString> failure_;
};

/// `address` as a URL, if it is one with TLS and a host.
[[nodiscard]] std::optional<QUrl> secureUrl(const QString& address);

}  // namespace gavrel
