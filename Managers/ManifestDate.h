#pragma once

#include <QByteArray>
#include <QDate>
#include <QString>
#include <optional>

namespace gavrel {

/// The date that a manifest's entry for an application bears. Absent unless it is there and written "YYYY-MM-DD".
[[nodiscard]] std::optional<QDate> manifestDate(const QByteArray& json, const QString& application);

/// Whether a clock that says `today` may be right when a manifest bears this date. Calendars differ by a day over the
/// world.
[[nodiscard]] bool isPossible(QDate manifest, QDate today);

/// Why a manifest of this date is not to be followed at all, now that one of date `newest`, if any, has been seen.
[[nodiscard]] std::optional<QString> whyOutdated(QDate manifest, std::optional<QDate> newest);

/// Why a manifest of this date cannot prove that there is no newer version.
[[nodiscard]] std::optional<QString> whyNoProof(QDate manifest, QDate today);

}  // namespace gavrel
