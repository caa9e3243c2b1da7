#pragma once

#include <QMetaType>
#include <QString>
#include <functional>

namespace gavrel {

/// A question with its answers or, without a question, a notice. An answer without a text is not offered. Escape gives
/// the reject answer; Return gives the default answer to a question and closes a notice. A notice has no destructive
/// answer.
struct Prompt {
  Q_GADGET
  Q_PROPERTY(QString question MEMBER question)
  Q_PROPERTY(QString text MEMBER text)
  Q_PROPERTY(QString destructiveText MEMBER destructiveText)
  Q_PROPERTY(QString rejectText MEMBER rejectText)
  Q_PROPERTY(QString defaultText MEMBER defaultText)

 public:
  QString question = {};
  QString text = {};
  QString destructiveText = {};
  QString rejectText = {};
  QString defaultText = {};
  std::function<void()> onDestructive = {};
  std::function<void()> onReject = {};
  std::function<void()> onDefault = {};
};

}  // namespace gavrel
