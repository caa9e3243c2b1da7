#pragma once

#include <qqml.h>
#include <QObject>
#include <QString>
#include <QVariant>

namespace gavrel {

/// Numbers as texts.
class NumberFormat : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_SINGLETON

 public:
  /// The number that the whole text spells, or undefined; see parseNumber.
  [[nodiscard]] Q_INVOKABLE QVariant parse(const QString& text) const;
  /// The shortest text that reads back to the same number; see numberText.
  [[nodiscard]] Q_INVOKABLE QString text(double number) const;
  /// C's "%.*f".
  [[nodiscard]] Q_INVOKABLE QString fixed(double number, int decimals) const;
  /// The number rounded to so many significant digits, without trailing zeros: C's "%.*g".
  [[nodiscard]] Q_INVOKABLE QString significant(double number, int digits) const;
};

/// Prints lines to standard output.
class StandardOutput : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_SINGLETON

 public:
  Q_INVOKABLE void print(const QString& line) const;
};

/// Checks of preconditions: a programming error ends the process.
class Precondition : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_SINGLETON

 public:
  /// Ends the process with the line `what` unless the condition holds.
  Q_INVOKABLE void require(bool holds, const QString& what) const;
};

}  // namespace gavrel
