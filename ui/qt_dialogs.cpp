#include "ui/qt_dialogs.h"

#include <QApplication>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>

#include "ui/file_names.h"
#include "ui/sorting_options.h"

namespace folioweld {

namespace {

QMessageBox::Icon IconOf(BoxIcon icon) {
  switch (icon) {
    case BoxIcon::Plain:
      return QMessageBox::NoIcon;
    case BoxIcon::Information:
      return QMessageBox::Information;
    case BoxIcon::Question:
      return QMessageBox::Question;
    case BoxIcon::Exclamation:
      return QMessageBox::Warning;
    case BoxIcon::Critical:
      return QMessageBox::Critical;
  }
  return QMessageBox::NoIcon;
}

QString BoxText(const std::string& text) {
  QString shown = ShownText(text);
  shown.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
  return shown.replace(u'\r', u'\n');
}

/// "A (*.a)|*.a|All (*.*)|*.*" as Qt's list of filters. Here "*.*" would hide the names without a dot.
QStringList NameFilters(const std::string& filter) {
  const QStringList parts = ShownText(filter).split(u'|');
  QStringList filters;
  for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
    QString name = parts[i];
    filters.append(name.replace(QStringLiteral("*.*"), QStringLiteral("*")));
  }
  return filters;
}

}  // namespace

bool QtDialogs::ShowBox(const BoxRequest& request) {
  if (ending_) return false;
  QMessageBox box(owner_);
  box.setObjectName(QStringLiteral("MessageBox"));
  box.setIcon(IconOf(request.Icon));
  box.setWindowTitle(ShownText(request.Title));
  box.setTextFormat(Qt::PlainText);
  box.setText(BoxText(request.Text));
  if (request.YesNo) {
    box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
    box.setDefaultButton(QMessageBox::No);
    box.setEscapeButton(QMessageBox::No);
  }
  return box.exec() == QMessageBox::Yes;
}

std::string QtDialogs::AskOpenFile(const FileRequest& request) {
  QFileDialog dialog(owner_, ShownText(request.Title));
  dialog.setAcceptMode(QFileDialog::AcceptOpen);
  dialog.setFileMode(QFileDialog::ExistingFile);
  dialog.setNameFilters(NameFilters(request.Filter));
  return Ask(dialog, request.InitialName);
}

std::string QtDialogs::AskSaveFile(const FileRequest& request) {
  QFileDialog dialog(owner_, ShownText(request.Title));
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  dialog.setFileMode(QFileDialog::AnyFile);
  dialog.setNameFilters(NameFilters(request.Filter));
  return Ask(dialog, request.InitialName);
}

std::string QtDialogs::AskFolder(const FolderRequest& request) {
  return BrowseForFolder(owner_, request.Title, request.InitialFolder, 0);
}

std::string QtDialogs::BrowseForFolder(QWidget* owner, const std::string& title,
                                       const std::string& initialFolder, std::int16_t includeFiles) {
  QFileDialog dialog(owner, ShownText(title), PathForDialog(initialFolder));
  dialog.setFileMode(QFileDialog::Directory);
  dialog.setOption(QFileDialog::ShowDirsOnly, includeFiles <= 0);
  return Ask(dialog, {});
}

std::int16_t QtDialogs::AskSortOrder(std::int16_t current) {
  SortingOptions dialog(owner_);
  dialog.SetSortOption(current);
  if (!ending_) dialog.exec();
  return dialog.SortOption();
}

std::string QtDialogs::Ask(QFileDialog& dialog, const std::string& initialName) {
  if (ending_) return {};
  dialog.setObjectName(QStringLiteral("ComDlgPdf"));
  if (!initialName.empty()) {
    const QFileInfo file(PathForDialog(initialName));
    dialog.setDirectory(file.path());
    dialog.selectFile(file.fileName());
  } else if (dialog.fileMode() != QFileDialog::Directory && !lastFolder_.isEmpty()) {
    dialog.setDirectory(lastFolder_);
  }
  if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return {};
  const QString answer = dialog.selectedFiles().constFirst();
  lastFolder_ = QFileInfo(answer).path();
  return PathFromDialog(answer, initialName);
}

void QtDialogs::CloseAll() {
  ending_ = true;
  // Rejecting the innermost one brings the next one up.
  while (auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
    dialog->reject();
    if (dialog->isVisible()) break;
  }
}

}  // namespace folioweld
