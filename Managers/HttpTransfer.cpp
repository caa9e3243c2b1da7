#include "Managers/HttpTransfer.h"

#include <QNetworkRequest>
#include <QSslConfiguration>

namespace gavrel {

namespace {

/// The certificates that the system trusts and, as for other programs, those in the file that SSL_CERT_FILE names.
QSslConfiguration trustedServers() {
  auto configuration = QSslConfiguration::defaultConfiguration();
  if (const auto file = qEnvironmentVariable("SSL_CERT_FILE"); !file.isEmpty()) configuration.addCaCertificates(file);
  return configuration;
}

/// Whether the answer is complete, and Qt reports an error only because of its status code.
bool isServersError(const QNetworkReply& reply) {
  const int firstErrorStatus = 400;
  return reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt() >= firstErrorStatus &&
         reply.error() >= QNetworkReply::ContentAccessDenied;
}

double seconds(std::chrono::milliseconds time) {
  return std::chrono::duration<double>(time).count();
}

}  // namespace

HttpTransfer::HttpTransfer(QNetworkAccessManager& session, const QUrl& url, TransferLimits limits, QIODevice& sink)
    : limits_(limits), sink_(sink) {
  QNetworkRequest request(url);
  request.setSslConfiguration(trustedServers());
  request.setTransferTimeout(static_cast<int>(limits.silence.count()));
  request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::NoLessSafeRedirectPolicy);
  reply_ = session.get(request);
  connect(reply_, &QNetworkReply::readyRead, this, &HttpTransfer::receive);
  connect(reply_, &QNetworkReply::downloadProgress, this, [this](qint64 written, qint64 expected) {
    if (failure_) return;  // Qt reports the bytes that exceeded a limit after the transfer has ended
    // At the end Qt reports the bytes received as the expected total even if the server has not announced one.
    const bool announced = reply_->header(QNetworkRequest::ContentLengthHeader).isValid();
    emit progressed(written, announced ? expected : -1);
  });
  connect(reply_, &QNetworkReply::finished, this, &HttpTransfer::complete);

  connect(&wholeTimer_, &QTimer::timeout, this,
          [this] { stop(tr("The server did not send everything within %1 seconds.").arg(seconds(limits_.whole))); });
  connect(&periodTimer_, &QTimer::timeout, this, &HttpTransfer::comparePace);
  if (limits.whole.count() > 0) wholeTimer_.start(limits.whole);
  if (limits.period.count() > 0) periodTimer_.start(limits.period);
}

HttpTransfer::~HttpTransfer() {
  if (!reply_) return;
  reply_->disconnect(this);
  reply_->abort();
  reply_->deleteLater();
}

int HttpTransfer::status() const {
  return reply_->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
}

void HttpTransfer::receive() {
  if (failure_ || !reply_->isOpen()) return;
  const QByteArray piece = reply_->readAll();
  received_ += piece.size();
  if (received_ > limits_.bytes)
    stop(tr("The server sent more than %1 bytes.").arg(limits_.bytes));
  else if (sink_.write(piece) != piece.size())
    stop(sink_.errorString());
}

void HttpTransfer::complete() {
  wholeTimer_.stop();
  periodTimer_.stop();
  receive();
  if (!failure_ && reply_->error() == QNetworkReply::OperationCanceledError)
    failure_ = tr("The server sent nothing for %1 seconds.").arg(seconds(limits_.silence));
  else if (!failure_ && reply_->error() != QNetworkReply::NoError && !isServersError(*reply_))
    failure_ = reply_->errorString();
  emit finished();
}

void HttpTransfer::comparePace() {
  const double time = seconds(limits_.period);
  if (static_cast<double>(received_ - receivedBefore_) < time * leastRate)
    return stop(tr("The server sent less than %1 bytes a second for %2 seconds.").arg(leastRate).arg(time));
  receivedBefore_ = received_;
}

void HttpTransfer::stop(const QString& reason) {
  failure_ = reason;
  reply_->abort();
}

std::optional<QUrl> secureUrl(const QString& address) {
  const QUrl url(address, QUrl::StrictMode);
  return url.isValid() && url.scheme() == "https" && !url.host().isEmpty() ? std::optional(url) : std::nullopt;
}

}  // namespace gavrel
