#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <vector>

namespace gavrel {

/// Sizes of an Ed25519 key and signature in bytes.
inline constexpr qsizetype publicKeySize = 32;
inline constexpr qsizetype signatureSize = 64;

/// Whether `signature` is the Ed25519 signature (RFC 8032, without prehashing) of the content by the owner of one of
/// the keys. False also for a signature of another size; a key of another size is ignored.
[[nodiscard]] bool isSigned(QByteArrayView content, const QByteArray& signature,
                            const std::vector<QByteArray>& publicKeys);

/// The same for the content of a file. False also for a file that is empty or cannot be read.
[[nodiscard]] bool isFileSigned(const QString& file, const QByteArray& signature,
                                const std::vector<QByteArray>& publicKeys);

/// The line for the user when a signature is missing or wrong.
[[nodiscard]] QString wrongSignature();

}  // namespace gavrel
