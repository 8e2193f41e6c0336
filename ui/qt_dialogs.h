#pragma once

#include <QPointer>
#include <QWidget>

#include "ui/dialogs.h"

class QFileDialog;

namespace folioweld {

/// The dialogs as a person sees them: the desktop's own where it has some, Qt's otherwise.
class QtDialogs : public Dialogs {
 public:
  /// The window that owns the dialogs; may be set later and may go away before them.
  void SetOwner(QWidget* owner) { owner_ = owner; }

  bool ShowBox(const BoxRequest& request) override;
  std::string AskOpenFile(const FileRequest& request) override;
  std::string AskSaveFile(const FileRequest& request) override;
  std::string AskFolder(const FolderRequest& request) override;
  std::int16_t AskSortOrder(std::int16_t current) override;
  void CloseAll() override;

 private:
  /// Files are listed beside the folders when `includeFiles` is positive; only a folder can be chosen.
  [[nodiscard]] std::string BrowseForFolder(QWidget* owner, const std::string& title,
                                            const std::string& initialFolder, std::int16_t includeFiles);
  [[nodiscard]] std::string Ask(QFileDialog& dialog, const std::string& initialName);

  QPointer<QWidget> owner_;
  QString lastFolder_;  ///< of the last answer; where a dialog without an initial name begins
  bool ending_ = false;
};

}  // namespace folioweld
