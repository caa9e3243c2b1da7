#include "Tests/Managers/UpdateServer.h"

#include <QFile>
#include <QProcess>
#include <QSslConfiguration>
#include <QSslKey>
#include <stdexcept>

namespace gavrel {

void runTool(const QString& program, const QStringList& arguments, const QString& folder) {
  QProcess process;
  process.setProcessChannelMode(QProcess::MergedChannels);
  process.setWorkingDirectory(folder);
  process.start(program, arguments);
  if (!process.waitForFinished(-1) || process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
    throw std::runtime_error((program + " " + arguments.join(' ') + ": ").toStdString() +
                             process.readAll().toStdString());
}

UpdateServer::UpdateServer(const QString& host) {
  const QStringList key{"req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:P-256", "-nodes", "-days", "2"};
  runTool("openssl", key + QStringList{"-keyout", "ca.key", "-out", "ca.pem", "-subj", "/CN=Authority of a test"},
          files_.path());
  runTool("openssl",
          key + QStringList{"-keyout", "server.key", "-out", "server.pem", "-CA", "ca.pem", "-CAkey", "ca.key", "-subj",
                            "/CN=Server of a test", "-addext", "subjectAltName=DNS:localhost,DNS:" + host, "-addext",
                            "basicConstraints=CA:FALSE"},
          files_.path());
  listen(QHostAddress::LocalHost);
}

void UpdateServer::incomingConnection(qintptr handle) {
  auto* connection = new QSslSocket(this);
  connection->setSocketDescriptor(handle);
  QFile key(files_.filePath("server.key"));
  key.open(QIODevice::ReadOnly);
  connection->setPrivateKey(QSslKey(&key, QSsl::Ec));
  connection->setLocalCertificateChain(QSslCertificate::fromPath(files_.filePath("server.pem")));
  connect(connection, &QSslSocket::disconnected, connection, &QObject::deleteLater);
  connect(connection, &QSslSocket::readyRead, this, [this, connection] { read(*connection); });
}

void UpdateServer::read(QSslSocket& connection) {
  constexpr char handshake = 0x16;
  if (connection.mode() == QSslSocket::UnencryptedMode && connection.peek(1) == QByteArray(1, handshake))
    return connection.startServerEncryption();
  while (connection.canReadLine()) {
    const QByteArray line = connection.readLine().trimmed();
    if (line.contains(" HTTP/1."))
      connection.setProperty("request", line.first(line.lastIndexOf(' ')));
    else if (line.isEmpty()) {
      const QByteArray request = connection.property("request").toByteArray();
      if (request.startsWith("CONNECT ")) {
        connection.write("HTTP/1.1 200 OK\r\n\r\n");
        return;
      }
      answer(connection, request.mid(request.indexOf(' ') + 1));
    }
  }
}

void UpdateServer::answer(QSslSocket& connection, const QByteArray& path) {
  requests += path;
  const Answer what = answers.value(path, {.body = "nothing here", .status = 404});
  if (what.silent) return;
  if (what.drip > 0) {
    connection.write("HTTP/1.1 200 OK\r\n\r\n");
    auto* const clock = new QTimer(&connection);
    connect(clock, &QTimer::timeout, &connection,
            [&connection, drop = QByteArray(what.drip, ' ')] { connection.write(drop); });
    return clock->start(20);
  }
  QByteArray head = "HTTP/1.1 " + QByteArray::number(what.status) + " said\r\n" + what.headers;
  if (what.tellsLength) head += "Content-Length: " + QByteArray::number(what.body.size()) + "\r\n";
  connection.write(head + "Connection: close\r\n\r\n" +
                   what.body.first(what.cutOffAfter < 0 ? what.body.size() : what.cutOffAfter));
  connection.disconnectFromHost();
}

}  // namespace gavrel
