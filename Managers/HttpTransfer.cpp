#include "Managers/HttpTransfer.h"

#include <QNetworkRequest>
#include <QSslConfiguration>

namespace {

/// The certificates that the system trusts and, as for other programs, those in the file that SSL_CERT_FILE names.
QSslConfiguration trustedServers() {
  auto configuration = QSslConfiguration::defaultConfiguration();
  if (const auto file = qEnvironmentVariable("SSL_CERT_FILE"); !file.isEmpty()) configuration.addCaCertificates(file);
  return configuration;
}

/// Whether the answer came whole and it is its status code that Qt reports as an error.
bool isServersError(const QNetworkReply& reply) {
  const int firstErrorStatus = 400;
  return reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt() >= firstErrorStatus &&
         reply.error() >= QNetworkReply::ContentAccessDenied;
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
    // At the end Qt calls what has come the expected total, too.
    const bool announced = reply_->header(QNetworkRequest::ContentLengthHeader).isValid();
    emit progressed(written, announced ? expected : -1);
  });
  connect(reply_, &QNetworkReply::finished, this, &HttpTransfer::complete);
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
  receive();
  if (!failure_ && reply_->error() == QNetworkReply::OperationCanceledError)
    failure_ = tr("The server sent nothing for %1 seconds.").arg(static_cast<double>(limits_.silence.count()) / 1000);
  else if (!failure_ && reply_->error() != QNetworkReply::NoError && !isServersError(*reply_))
    failure_ = reply_->errorString();
  emit finished();
}

void HttpTransfer::stop(const QString& reason) {
  failure_ = reason;
  reply_->abort();
}

std::optional<QUrl> secureUrl(const QString& address) {
  const QUrl url(address, QUrl::StrictMode);
  return url.isValid() && url.scheme() == "https" && !url.host().isEmpty() ? std::optional(url) : std::nullopt;
}
