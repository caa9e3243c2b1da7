#include "Workbench/DesktopAppearance.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QGuiApplication>
#include <QPalette>

namespace gavrel {

namespace {

const QString service = QStringLiteral("org.freedesktop.portal.Desktop");
const QString path = QStringLiteral("/org/freedesktop/portal/desktop");
const QString settings = QStringLiteral("org.freedesktop.portal.Settings");
const QString appearance = QStringLiteral("org.freedesktop.appearance");
const QString colorScheme = QStringLiteral("color-scheme");

// The portal's values of the colour scheme.
constexpr unsigned preferDark = 1;
constexpr unsigned preferLight = 2;

bool paletteIsDark() {
  const QPalette palette = QGuiApplication::palette();
  return palette.color(QPalette::WindowText).lightness() > palette.color(QPalette::Window).lightness();
}

}  // namespace

DesktopAppearance::DesktopAppearance(QObject* parent) : QObject(parent), dark_(paletteIsDark()) {
  QDBusConnection bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) return;
  bus.connect(service, path, settings, QStringLiteral("SettingChanged"), this, SLOT(settingChanged(QDBusMessage)));
  auto question = QDBusMessage::createMethodCall(service, path, settings, QStringLiteral("Read"));
  question << appearance << colorScheme;
  auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(question), this);
  connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
    const QDBusPendingReply<QDBusVariant> answer = *watcher;
    if (answer.isValid()) follow(answer.value().variant());
    watcher->deleteLater();
  });
}

void DesktopAppearance::settingChanged(const QDBusMessage& signal) {
  const QVariantList change = signal.arguments();  // group, key, value
  if (change.size() == 3 && change[0] == appearance && change[1] == colorScheme)
    follow(change[2].value<QDBusVariant>().variant());
}

void DesktopAppearance::follow(QVariant scheme) {
  // Read wraps its answer in one variant more than the signal does.
  if (scheme.metaType() == QMetaType::fromType<QDBusVariant>()) scheme = scheme.value<QDBusVariant>().variant();
  const unsigned preference = scheme.toUInt();
  setDark(preference == preferDark || (preference != preferLight && paletteIsDark()));
}

void DesktopAppearance::setDark(bool value) {
  if (value == dark_) return;
  dark_ = value;
  emit darkChanged();
}

}  // namespace gavrel
