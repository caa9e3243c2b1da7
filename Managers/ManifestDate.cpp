#include "Managers/ManifestDate.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QObject>

namespace gavrel {

namespace {

constexpr int longestAge = 90;  // days

QString formatDate(QDate date) {
  return date.toString(Qt::ISODate);
}

}  // namespace

std::optional<QDate> manifestDate(const QByteArray& json, const QString& application) {
  const QString text = QJsonDocument::fromJson(json).object()[application].toObject()["date"].toString();
  const QDate date = QDate::fromString(text, Qt::ISODate);
  return date.isValid() && formatDate(date) == text ? std::optional(date) : std::nullopt;
}

bool isPossible(QDate manifest, QDate today) {
  return manifest <= today.addDays(1);
}

std::optional<QString> whyOutdated(QDate manifest, std::optional<QDate> newest) {
  if (!newest || *newest <= manifest) return {};
  return QObject::tr(
             "The list of versions is of %1, but one of %2 has been seen before. Newer versions may be withheld from "
             "you.")
      .arg(formatDate(manifest), formatDate(*newest));
}

std::optional<QString> whyNoProof(QDate manifest, QDate today) {
  if (!isPossible(manifest, today))
    return QObject::tr(
               "No newer version is listed, but the list is of %1, and the clock of this computer says %2. Set it if "
               "it is wrong, and check again.")
        .arg(formatDate(manifest), formatDate(today));
  if (manifest.daysTo(today) <= longestAge) return {};
  return QObject::tr(
             "No newer version is listed, but the list is of %1, more than %2 days before %3. Newer versions may be "
             "withheld from you, or the clock of this computer is wrong.")
      .arg(formatDate(manifest))
      .arg(longestAge)
      .arg(formatDate(today));
}

}  // namespace gavrel
