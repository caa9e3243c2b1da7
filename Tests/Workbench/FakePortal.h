#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QObject>

namespace gavrel {

/// A settings portal on the session bus that knows one setting, the colour scheme.
class FakePortal : public QObject {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

 public:
  explicit FakePortal(unsigned scheme) : scheme_(scheme) {
    bus_.registerObject("/org/freedesktop/portal/desktop", this, QDBusConnection::ExportAllSlots);
    bus_.registerService("org.freedesktop.portal.Desktop");
  }

  void change(unsigned scheme, const QString& key = "color-scheme") {
    auto signal = QDBusMessage::createSignal("/org/freedesktop/portal/desktop", "org.freedesktop.portal.Settings",
                                             "SettingChanged");
    signal << QString("org.freedesktop.appearance") << key << QVariant::fromValue(QDBusVariant(scheme));
    bus_.send(signal);
  }

 public slots:
  QDBusVariant Read(const QString& group, const QString& key) const {
    const bool known = group == "org.freedesktop.appearance" && key == "color-scheme";
    return QDBusVariant(QVariant::fromValue(QDBusVariant(known ? scheme_ : 0U)));
  }

 private:
  QDBusConnection bus_ = QDBusConnection::connectToBus(QDBusConnection::SessionBus, "portal");
  unsigned scheme_;
};

}  // namespace gavrel
