#include "Managers/UpdateSignature.h"

#include <openssl/evp.h>

#include <QCoreApplication>
#include <QFile>
#include <algorithm>
#include <memory>

namespace gavrel {

namespace {

const unsigned char* bytes(QByteArrayView array) {
  return reinterpret_cast<const unsigned char*>(array.data());
}

bool isSignedBy(const QByteArray& publicKey, QByteArrayView content, const QByteArray& signature) {
  if (publicKey.size() != publicKeySize) return false;
  using Key = std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)>;
  using Context = std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)>;
  const Key key(EVP_PKEY_new_raw_public_key(EVP_PKEY_ED25519, nullptr, bytes(publicKey), publicKeySize),
                &EVP_PKEY_free);
  const Context context(EVP_MD_CTX_new(), &EVP_MD_CTX_free);
  return key && context && EVP_DigestVerifyInit(context.get(), nullptr, nullptr, nullptr, key.get()) == 1 &&
         EVP_DigestVerify(context.get(), bytes(signature), signatureSize, bytes(content),
                          static_cast<std::size_t>(content.size())) == 1;
}

}  // namespace

bool isSigned(QByteArrayView content, const QByteArray& signature, const std::vector<QByteArray>& publicKeys) {
  return signature.size() == signatureSize &&
         std::ranges::any_of(publicKeys, [&](const QByteArray& key) { return isSignedBy(key, content, signature); });
}

bool isFileSigned(const QString& file, const QByteArray& signature, const std::vector<QByteArray>& publicKeys) {
  QFile content(file);
  if (!content.open(QIODevice::ReadOnly)) return false;
  const unsigned char* const message = content.map(0, content.size());
  return message != nullptr && isSigned(QByteArrayView(message, content.size()), signature, publicKeys);
}

QString wrongSignature() {
  return QCoreApplication::translate("UpdateSignature", "The update is not signed by the makers of this program.");
}

}  // namespace gavrel
