#pragma once

#include <qqml.h>
#include <QDBusMessage>
#include <QObject>
#include <QVariant>

/// Whether the desktop asks for dark windows, kept up to date: what its settings portal says or, where there is none,
/// what the palette of its theme looks like.
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
