#pragma once

#include <qqml.h>
#include <QObject>
#include <QString>
#include <QVariant>

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

/// Lines for whoever reads the program's standard output.
class StandardOutput : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_SINGLETON

 public:
  Q_INVOKABLE void print(const QString& line) const;
};

/// What callers owe: a programming error ends the process.
class Precondition : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_SINGLETON

 public:
  /// Fatal, with `what` as its line, unless it holds.
  Q_INVOKABLE void require(bool holds, const QString& what) const;
};
