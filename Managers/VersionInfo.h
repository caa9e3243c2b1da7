#pragma once

#include <QByteArray>
#include <QMap>
#include <QObject>
#include <QString>
#include <cstdint>
#include <optional>

namespace gavrel {

/// One version of the program as the update server's manifest describes it.
struct VersionInfo {
  Q_GADGET
  Q_PROPERTY(QString version MEMBER version)
  Q_PROPERTY(QString changelog MEMBER changelog)

 public:
  QString version;  ///< dotted, such as 1.4.2
  qint64 build = 0;
  QString downloadUrl;  ///< of the zip archive
  QString changelog;
  bool mandatory = false;               ///< read, but without effect
  std::optional<QString> minOsVersion;  ///< read, but without effect

  friend bool operator==(const VersionInfo&, const VersionInfo&) = default;
};

/// The manifest's entries by application identifier. Absent unless `json` is an object whose every value is a
/// VersionInfo: one invalid entry makes the whole manifest invalid.
[[nodiscard]] std::optional<QMap<QString, VersionInfo>> decodeManifest(const QByteArray& json);

/// The manifest's entry for `info` as a JSON object, its keys in the order of the fields.
[[nodiscard]] QByteArray encode(const VersionInfo& info);

/// Whether version `candidate` is later than `current`, comparing dotted numbers from the left; missing ones count as 0
/// and pieces that are not whole numbers are left out.
[[nodiscard]] bool isNewerVersion(const QString& candidate, const QString& current);

}  // namespace gavrel
