#include "PreviewContent/RecoveryFile.h"

#include <QCryptographicHash>
#include <QJsonDocument>
#include <QJsonObject>
#include <string_view>

#include "DataModel/ProjectFile.h"

namespace {

QString checksum(std::string_view text) {
  const auto bytes = QByteArray::fromRawData(text.data(), static_cast<qsizetype>(text.size()));
  return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex();
}

}  // namespace

Result<std::string> encodeRecovery(const RecoveredProject& recovered) {
  const auto project = encodeProject(*recovered.project);
  if (!project) return project.failure();
  const QJsonObject head{{"file", QString::fromStdString(recovered.file.value_or("").string())},
                         {"time", recovered.time.toString(Qt::ISODateWithMs)},
                         {"sha256", checksum(*project)}};
  return QJsonDocument(head).toJson(QJsonDocument::Compact).toStdString() + "\n" + *project;
}

Result<RecoveredProject> decodeRecovery(const std::string& text) {
  const auto end = text.find('\n');
  if (end == std::string::npos) return Failure{"it ends in its first line"};
  const QJsonObject head = QJsonDocument::fromJson(QByteArray::fromStdString(text.substr(0, end))).object();
  std::string rest = text.substr(end + 1);
  if (checksum(rest) != head["sha256"].toString()) return Failure{"its checksum is wrong"};
  auto project = decodeProject(std::move(rest));
  if (!project) return project.failure();
  const std::filesystem::path file = head["file"].toString().toStdString();
  return RecoveredProject{*project, file.empty() ? std::nullopt : std::optional(file),
                          QDateTime::fromString(head["time"].toString(), Qt::ISODateWithMs)};
}
