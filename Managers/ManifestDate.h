#pragma once

#include <QByteArray>
#include <QDate>
#include <QString>
#include <optional>

namespace gavrel {

/// The date in a manifest's entry for an application. Absent if there is none that is written "YYYY-MM-DD".
[[nodiscard]] std::optional<QDate> manifestDate(const QByteArray& json, const QString& application);

/// Whether a clock that shows `today` can be right, given a manifest of this date. Time zones differ by up to a day.
[[nodiscard]] bool isPossible(QDate manifest, QDate today);

/// Why a manifest of this date is rejected, after one of date `newest`, if any, has been seen.
[[nodiscard]] std::optional<QString> whyOutdated(QDate manifest, std::optional<QDate> newest);

/// Why a manifest of this date cannot prove that there is no newer version.
[[nodiscard]] std::optional<QString> whyNoProof(QDate manifest, QDate today);

}  // namespace gavrel
