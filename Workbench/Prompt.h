#pragma once

#include <QMetaType>
#include <QString>
#include <functional>

/// A question with its answers or, without a question, a notice. An answer without a text is not offered; that of
/// `dismissing` is given by Escape, too. A notice has no `losing` answer.
struct Prompt {
  Q_GADGET
  Q_PROPERTY(QString question MEMBER question)
  Q_PROPERTY(QString text MEMBER text)
  Q_PROPERTY(QString losing MEMBER losing)
  Q_PROPERTY(QString dismissing MEMBER dismissing)
  Q_PROPERTY(QString usual MEMBER usual)

 public:
  QString question = {};
  QString text = {};
  QString losing = {};
  QString dismissing = {};
  QString usual = {};
  std::function<void()> lose = {};
  std::function<void()> dismiss = {};
  std::function<void()> choose = {};
};
