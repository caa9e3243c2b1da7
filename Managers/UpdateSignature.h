#pragma once

#include <QByteArray>
#include <QString>

/// Sizes of an Ed25519 key and signature in bytes.
inline constexpr qsizetype publicKeySize = 32;
inline constexpr qsizetype signatureSize = 64;

/// Whether `signature` is the Ed25519 signature (RFC 8032, without prehashing) of the file's content by the owner of
/// `publicKey`. False also for a file that cannot be read, and for a key or signature of another size.
[[nodiscard]] bool isSigned(const QString& file, const QByteArray& signature, const QByteArray& publicKey);

/// The line for the user where it is not.
[[nodiscard]] QString wrongSignature();
