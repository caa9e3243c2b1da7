#pragma once

#include <QByteArray>
#include <QString>

#include "Tests/Managers/UpdateServer.h"
#include "Tests/TemporaryFolder.h"

namespace gavrel {

/// Keys and signatures as the maintainers make them: of "ours", the "next" one, and "theirs", which nobody trusts.
class SigningKeys {
 public:
  SigningKeys() {
    for (const char* name : {"ours", "next", "theirs"})
      runTool("openssl", {"genpkey", "-algorithm", "ed25519", "-out", path(name)});
  }

  [[nodiscard]] QByteArray publicKey(const char* name) const {
    runTool("openssl", {"pkey", "-in", path(name), "-pubout", "-outform", "DER", "-out", path("public")});
    return QByteArray::fromStdString(files_.get("public")).last(32);
  }

  [[nodiscard]] QByteArray signature(const QByteArray& content, const char* name) const {
    files_.put("message", content.toStdString());
    runTool("openssl",
            {"pkeyutl", "-sign", "-rawin", "-inkey", path(name), "-in", path("message"), "-out", path("signature")});
    return QByteArray::fromStdString(files_.get("signature"));
  }

 private:
  [[nodiscard]] QString path(const char* name) const { return QString::fromStdString((files_ / name).string()); }

  TemporaryFolder files_;
};

}  // namespace gavrel
