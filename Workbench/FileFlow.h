#pragma once

#include <qqml.h>
#include <QImage>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QUrl>
#include <functional>
#include <optional>
#include <vector>

#include "PreviewContent/ProjectViewModel.h"
#include "Workbench/FileRequest.h"
#include "Workbench/Prompt.h"
#include "Workbench/Recovery.h"

/// What a user does with files. Each operation asks what has to be asked first, has the files chosen, does what it is
/// for, and tells how that went. What would lose unsaved changes asks about them.
///
/// It shows nothing itself: a view shows `prompt`, a panel for `filesWanted` and a form for `filesToImport`, and gives
/// back what its user has answered, chosen and filled in.
class FileFlow : public QObject {
  Q_OBJECT
  QML_ELEMENT
  Q_PROPERTY(ProjectViewModel* projectViewModel READ projectViewModel WRITE setProjectViewModel REQUIRED)
  Q_PROPERTY(Prompt prompt READ prompt NOTIFY changed)
  Q_PROPERTY(bool interrupted READ interrupted NOTIFY changed)
  Q_PROPERTY(QList<QUrl> filesToImport MEMBER filesToImport_ NOTIFY changed)
  Q_PROPERTY(bool busy READ busy NOTIFY changed)

 public:
  enum Answer { Destructive, Reject, Default };
  Q_ENUM(Answer)

  using QObject::QObject;

  [[nodiscard]] ProjectViewModel* projectViewModel() const { return viewModel_; }
  void setProjectViewModel(ProjectViewModel* value);

  /// What the user is to read and answer now; without texts if there is nothing.
  [[nodiscard]] const Prompt& prompt() const { return shown_; }
  /// Whether there is something to read or to answer but the question about unsaved changes.
  [[nodiscard]] bool interrupted() const { return !prompts_.empty(); }
  /// The files for which the form of the import is to be shown; none if there are none.
  [[nodiscard]] const QList<QUrl>& filesToImport() const { return filesToImport_; }
  /// Whether something waits for the user.
  [[nodiscard]] bool busy() const;

  Q_INVOKABLE void newProject();
  Q_INVOKABLE void showOpenPanel();
  Q_INVOKABLE void open(const QUrl& file);
  /// Opens a project file, or asks how to import tables and drawings.
  Q_INVOKABLE void drop(const QList<QUrl>& files);
  /// Brings back what a file that could not be read has replaced.
  Q_INVOKABLE void restorePrevious();
  /// Brings back what the recovery offers.
  Q_INVOKABLE void restore(Recovery* recovery);
  /// Whether the program may end now. Otherwise `quitConfirmed` follows if the user wants it after all.
  [[nodiscard]] Q_INVOKABLE bool mayQuit();

  /// Saves to the current file; asks for a file if there is none.
  Q_INVOKABLE void save();
  Q_INVOKABLE void showSavePanel();

  Q_INVOKABLE void showImportPanel();
  /// Imports `filesToImport`; members of which they tell neither get this cross-section and Young's modulus.
  Q_INVOKABLE void importFiles(double area, double youngModulus, bool isNonLinear);

  Q_INVOKABLE void exportNodes();
  Q_INVOKABLE void exportElements();
  Q_INVOKABLE void exportVtu();
  /// Asks for a file, and then by `pictureWanted` for the picture to write.
  Q_INVOKABLE void exportPicture();
  Q_INVOKABLE void writePicture(const QImage& picture, const QUrl& file);

  /// What the user answers to `prompt`.
  Q_INVOKABLE void answer(Answer given);
  /// What the user has chosen upon `filesWanted`; no files if nothing.
  Q_INVOKABLE void takeFiles(const QList<QUrl>& files);

 signals:
  void changed();
  void filesWanted(const FileRequest& request);
  void pictureWanted(const QUrl& file);
  void quitConfirmed();
  void importedIntoEmpty();  ///< an import into an empty structure has ended, whatever it brought

 private:
  using Action = std::function<void()>;
  using Use = std::function<void(const QList<QUrl>&)>;

  struct Choice {
    FileRequest request;
    Use use;
  };

  void doOnceSavedOrDiscarded(Action action);
  void runWaitingAction();
  void write();
  void saveTo(const QUrl& file);
  [[nodiscard]] bool writeTo(const QUrl& target);

  void choose(FileRequest request, Use use);
  void exportTo(const QString& name, const QString& suffix, const std::function<void(const QUrl&)>& write);
  [[nodiscard]] QString nameForFiles() const;

  void ask(Prompt prompt);
  void askToReplace(const Choice& choice, const QList<QUrl>& files);
  void askToShow(const QString& name, const QString& danger, const Action& show);
  void tell(const QString& text);
  void tellOfFailedSave(const QString& rejectText, const Action& afterwards);
  void tellOfFailedOpen(const QString& file, const QString& reason);
  [[nodiscard]] Prompt saveQuestion();
  void showNextPrompt();

  QPointer<ProjectViewModel> viewModel_;
  Action waitingAction_;  // until unsaved changes are saved or discarded
  QString saveFailure_;
  std::optional<Choice> choice_;  // that the user has yet to make
  QList<QUrl> filesToImport_;
  std::vector<Prompt> prompts_;  // the last is shown first
  Prompt shown_;
};
