#pragma once

#include <QByteArray>
#include <QMap>
#include <QSslSocket>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QTimer>

namespace gavrel {

/// How the server answers a request.
struct Answer {
  QByteArray body = {};
  int status = 200;
  QByteArray headers = {};     ///< further lines, each with its end
  bool tellsLength = true;     ///< with a Content-Length
  qsizetype cutOffAfter = -1;  ///< bytes of the body after which the connection breaks, if not negative
  bool silent = false;         ///< never answers
  qsizetype drip = 0;          ///< if not 0, so many bytes come every 20 ms, without end
};

/// An HTTPS server on this machine, with a certificate for "localhost" and `host` signed by an authority of its own
/// that is made anew. It serves whoever asks as a proxy for `host`, too.
class UpdateServer : public QTcpServer {
 public:
  explicit UpdateServer(const QString& host = "updates.gavrel.invalid");

  [[nodiscard]] QString address() const { return QString("https://localhost:%1").arg(serverPort()); }
  /// The file with the certificate of the server's authority.
  [[nodiscard]] QString authority() const { return files_.filePath("ca.pem"); }

  /// Whether a client still takes what comes without end.
  [[nodiscard]] bool isDripping() const { return findChild<QTimer*>() != nullptr; }

  QMap<QByteArray, Answer> answers;  ///< by path; others are answered by 404
  QList<QByteArray> requests;        ///< paths, in the order of their coming

 protected:
  void incomingConnection(qintptr handle) override;

 private:
  void read(QSslSocket& connection);
  void answer(QSslSocket& connection, const QByteArray& path);

  QTemporaryDir files_;
};

/// Runs a program and throws, with what it said, unless it succeeds.
void runTool(const QString& program, const QStringList& arguments, const QString& folder = {});

}  // namespace gavrel
