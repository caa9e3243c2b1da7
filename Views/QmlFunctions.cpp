#include "Views/QmlFunctions.h"

#include "Platform/Console.h"
#include "Platform/Fatal.h"
#include "Platform/NumberText.h"

namespace gavrel {

QVariant NumberFormat::parse(const QString& text) const {
  const auto number = parseNumber(text.toStdString());
  return number ? QVariant(*number) : QVariant();
}

QString NumberFormat::text(double number) const {
  return QString::fromStdString(numberText(number));
}

QString NumberFormat::fixed(double number, int decimals) const {
  return QString::asprintf("%.*f", decimals, number);
}

QString NumberFormat::significant(double number, int digits) const {
  return QString::asprintf("%.*g", digits, number);
}

void StandardOutput::print(const QString& line) const {
  printLine(line.toStdString());
}

void Precondition::require(bool holds, const QString& what) const {
  if (!holds) fatal(what.toStdString());
}

}  // namespace gavrel
