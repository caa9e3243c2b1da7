#pragma once

#include <qqml.h>
#include <QDBusMessage>
#include <QObject>
#include <QVariant>

namespace gavrel {

/// Whether the desktop asks for dark windows, kept up to date: as its settings portal says or, without a portal,
/// as the palette of its theme shows.
class DesktopAppearance : public QObject {
  Q_OBJECT
  QML_ELEMENT
  Q_PROPERTY(bool dark READ dark NOTIFY darkChanged)

 public:
  explicit DesktopAppearance(QObject* parent = nullptr);

  [[nodiscard]] bool dark() const { return dark_; }

 signals:
  void darkChanged();

 private slots:
  void settingChanged(const QDBusMessage& signal);

 private:
  void follow(QVariant scheme);
  void setDark(bool value);

  bool dark_ = false;
};

}  // namespace gavrel
