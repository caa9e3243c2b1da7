#include "Managers/VersionInfo.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStringList>
#include <algorithm>
#include <charconv>
#include <string>
#include <vector>

namespace gavrel {

namespace {

/// A JSON number that is a whole number of 64 bits.
std::optional<qint64> wholeNumber(const QJsonValue& value) {
  const qint64 number = value.toInteger(0);
  return value.isDouble() && value.toInteger(1) == number ? std::optional(number) : std::nullopt;
}

std::optional<VersionInfo> decodeEntry(const QJsonObject& entry) {
  const QJsonValue version = entry["version"];
  const auto build = wholeNumber(entry["build"]);
  const QJsonValue downloadUrl = entry["downloadUrl"];
  const QJsonValue changelog = entry["changelog"];
  const QJsonValue mandatory = entry["mandatory"];
  const QJsonValue minOsVersion = entry["minOsVersion"];
  const bool noMinimum = minOsVersion.isUndefined() || minOsVersion.isNull();
  if (!version.isString() || !build || !downloadUrl.isString() || !changelog.isString() || !mandatory.isBool() ||
      !(noMinimum || minOsVersion.isString()))
    return std::nullopt;
  return VersionInfo{version.toString(),     *build,
                     downloadUrl.toString(), changelog.toString(),
                     mandatory.toBool(),     noMinimum ? std::nullopt : std::optional(minOsVersion.toString())};
}

/// A string as JSON writes it, in quotes.
QByteArray quoted(const QString& text) {
  const QByteArray array = QJsonDocument(QJsonArray{text}).toJson(QJsonDocument::Compact);
  return array.sliced(1, array.size() - 2);
}

std::vector<std::int64_t> parseNumbers(const QString& version) {
  std::vector<std::int64_t> numbers;
  for (const QString& piece : version.split('.', Qt::SkipEmptyParts)) {
    const std::string text = piece.toStdString();
    const bool plus = text.starts_with('+') && !text.starts_with("+-");
    const char* const end = text.data() + text.size();
    std::int64_t number = 0;
    const auto [rest, error] = std::from_chars(text.data() + (plus ? 1 : 0), end, number);
    if (error == std::errc() && rest == end) numbers.push_back(number);
  }
  return numbers;
}

}  // namespace

std::optional<QMap<QString, VersionInfo>> decodeManifest(const QByteArray& json) {
  const QJsonDocument document = QJsonDocument::fromJson(json);
  if (!document.isObject()) return std::nullopt;
  QMap<QString, VersionInfo> manifest;
  const QJsonObject entries = document.object();
  for (auto entry = entries.begin(); entry != entries.end(); ++entry) {
    const auto info = decodeEntry(entry.value().toObject());
    if (!info) return std::nullopt;
    manifest[entry.key()] = *info;
  }
  return manifest;
}

QByteArray encode(const VersionInfo& info) {
  QByteArray json = "{\"version\":" + quoted(info.version) + ",\"build\":" + QByteArray::number(info.build) +
                    ",\"downloadUrl\":" + quoted(info.downloadUrl) + ",\"changelog\":" + quoted(info.changelog) +
                    ",\"mandatory\":" + (info.mandatory ? "true" : "false");
  if (info.minOsVersion) json += ",\"minOsVersion\":" + quoted(*info.minOsVersion);
  return json + "}";
}

bool isNewerVersion(const QString& candidate, const QString& current) {
  auto ours = parseNumbers(current);
  auto theirs = parseNumbers(candidate);
  const auto length = std::max(ours.size(), theirs.size());
  ours.resize(length);
  theirs.resize(length);
  return theirs > ours;
}

}  // namespace gavrel
