#pragma once

#include <qqml.h>
#include <QObject>
#include <QString>
#include <QVariant>

#include "PreviewContent/ProjectViewModel.h"
#include "PreviewContent/RecentFiles.h"
#include "PreviewContent/Recovery.h"

/// What QML sees of the program's plain C++.

struct ProjectViewModelInQml {
  Q_GADGET
  QML_FOREIGN(ProjectViewModel)
  QML_NAMED_ELEMENT(ProjectViewModel)
};

struct RecoveryInQml {
  Q_GADGET
  QML_FOREIGN(Recovery)
  QML_NAMED_ELEMENT(Recovery)
  QML_UNCREATABLE("The application makes the one that there is.")
};

struct RecentFilesInQml {
  Q_GADGET
  QML_FOREIGN(RecentFiles)
  QML_NAMED_ELEMENT(RecentFiles)
  QML_UNCREATABLE("The application makes the one that there is.")
};

/// The interaction modes under their own names, which QML's enumerations cannot have.
class AppModeInQml : public QObject {
  Q_OBJECT
  QML_NAMED_ELEMENT(AppMode)
  QML_SINGLETON
  Q_PROPERTY(int normal READ normal CONSTANT)
  Q_PROPERTY(int addingTruss READ addingTruss CONSTANT)
  Q_PROPERTY(int addingBeam READ addingBeam CONSTANT)

 public:
  [[nodiscard]] int normal() const { return static_cast<int>(AppMode::normal); }
  [[nodiscard]] int addingTruss() const { return static_cast<int>(AppMode::addingTruss); }
  [[nodiscard]] int addingBeam() const { return static_cast<int>(AppMode::addingBeam); }
};

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
