#include "PreviewContent/RecoveryFile.h"

#include <openssl/evp.h>

#include <QJsonDocument>
#include <QJsonObject>
#include <array>
#include <string>
#include <string_view>

#include "DataModel/ProjectFile.h"
#include "Platform/AtomicFile.h"
#include "Platform/FileBytes.h"

namespace {

constexpr std::size_t checksumSize = 64;  // hexadecimal digits

/// SHA-256 by OpenSSL, which has several times the speed of QCryptographicHash.
class Checksum {
 public:
  Checksum() { EVP_DigestInit_ex(context_.get(), EVP_sha256(), nullptr); }

  void add(std::string_view piece) { EVP_DigestUpdate(context_.get(), piece.data(), piece.size()); }

  [[nodiscard]] std::string digits() {
    std::array<unsigned char, checksumSize / 2> digest{};
    EVP_DigestFinal_ex(context_.get(), digest.data(), nullptr);
    return QByteArray(reinterpret_cast<const char*>(digest.data()), std::ssize(digest)).toHex().toStdString();
  }

 private:
  std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context_{EVP_MD_CTX_new(), &EVP_MD_CTX_free};
};

}  // namespace

std::optional<Failure> writeRecovery(const std::filesystem::path& path, const RecoveredProject& recovered) {
  if (auto fault = whyNotEncodable(*recovered.project)) return fault;
  const QJsonObject head{{"file", QString::fromStdString(recovered.file.value_or("").string())},
                         {"time", recovered.time.toString(Qt::ISODateWithMs)}};
  return replaceFile(path, [&](const ByteSink& sink) {
    Checksum checksum;
    const auto write = [&](std::string_view piece) {
      checksum.add(piece);
      sink(piece);
    };
    write(QJsonDocument(head).toJson(QJsonDocument::Compact).toStdString() + "\n");
    encodeProject(*recovered.project, write);
    sink(checksum.digits());
  });
}

Result<RecoveredProject> readRecovery(const std::filesystem::path& path) {
  auto text = readFile(path);
  if (!text) return text.failure();
  if (text->size() < checksumSize) return Failure{"it is cut short"};
  const std::string digits = text->substr(text->size() - checksumSize);
  text->resize(text->size() - checksumSize);
  Checksum checksum;
  checksum.add(*text);
  if (checksum.digits() != digits) return Failure{"its checksum is wrong"};

  const auto end = text->find('\n');
  const QJsonObject head = QJsonDocument::fromJson(QByteArray::fromStdString(text->substr(0, end))).object();
  text->erase(0, end + 1);
  auto project = decodeProject(std::move(*text));
  if (!project) return project.failure();
  const std::filesystem::path file = head["file"].toString().toStdString();
  return RecoveredProject{*project, file.empty() ? std::nullopt : std::optional(file),
                          QDateTime::fromString(head["time"].toString(), Qt::ISODateWithMs)};
}
