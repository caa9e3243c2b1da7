#pragma once

#include <unistd.h>

#include <QObject>
#include <QString>
#include <QStringList>
#include <cstdio>

namespace gavrel {

/// Captures what the program prints on standard output.
class CapturedOutput : public QObject {
  Q_OBJECT

 public:
  Q_INVOKABLE void start() {
    std::fflush(stdout);
    former_ = ::dup(STDOUT_FILENO);
    file_ = std::tmpfile();
    ::dup2(::fileno(file_), STDOUT_FILENO);
  }

  /// Restores standard output; returns the lines that were printed since start().
  Q_INVOKABLE QStringList stop() {
    std::fflush(stdout);
    ::dup2(former_, STDOUT_FILENO);
    ::close(former_);
    std::rewind(file_);
    QString text;
    for (int c = std::fgetc(file_); c != EOF; c = std::fgetc(file_)) text += QChar(c);
    std::fclose(file_);
    QStringList lines = text.split('\n');
    lines.removeLast();
    return lines;
  }

 private:
  int former_ = -1;
  std::FILE* file_ = nullptr;
};

}  // namespace gavrel
