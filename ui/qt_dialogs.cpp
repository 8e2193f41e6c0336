#include "ui/qt_dialogs.h"

#include <QApplication>
#include <QClipboard>
#include <QFileDialog>
#include <QFileInfo>
#include <QFontMetrics>
#include <QLineEdit>
#include <QMessageBox>
#include <QScreen>

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

constexpr QChar kBreak(0x200B);
/// A word that is wider than so many usual characters, or than three quarters of the screen, is broken: the
/// box has to fit.
constexpr int kWidestWord = 60;

int WidestWord(const QFontMetrics& metrics, const QScreen& screen) {
  return qMin(kWidestWord * metrics.averageCharWidth(), screen.availableGeometry().width() * 3 / 4);
}

/// With a place, of no width, where a word gets wider than so many pixels.
QString WithBreaks(const QString& text, const QFontMetrics& metrics, int widest) {
  QString broken;
  int width = 0;
  for (const QChar character : text) {
    const int advance = metrics.horizontalAdvance(character);
    width = character.isSpace() ? 0 : width + advance;
    if (width > widest && !character.isLowSurrogate()) {
      broken += kBreak;
      width = advance;
    }
    broken += character;
  }
  return broken;
}

/// While a box is open: what is copied out of its text is without the breaks.
class CleanCopies : public QObject {
 public:
  explicit CleanCopies(const QString& text) : text_(text) {
    connect(QApplication::clipboard(), &QClipboard::changed, this, &CleanCopies::Clean);
  }

 private:
  void Clean(QClipboard::Mode mode) {
    const QString copied = QApplication::clipboard()->text(mode);
    QString clean = copied;
    clean.remove(kBreak);
    const bool ours = text_.contains(clean) || clean.contains(text_);
    if (ours && clean != copied) QApplication::clipboard()->setText(clean, mode);
  }

  const QString text_;
};

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

/// An open dialog that finds "letter.pdf" when "letter" is typed and there is no such file.
class OpenDialog : public QFileDialog {
 public:
  OpenDialog(QWidget* owner, const FileRequest& request)
      : QFileDialog(owner, ShownText(request.Title)), suffix_(u'.' + ShownText(request.DefaultExtension)) {
    setAcceptMode(QFileDialog::AcceptOpen);
    setFileMode(QFileDialog::ExistingFile);
    setNameFilters(NameFilters(request.Filter));
  }

 protected:
  void accept() override {
    auto* field = findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
    if (field != nullptr && !field->text().isEmpty()) {
      const QFileInfo typed(directory(), field->text());
      const QFileInfo meant(typed.filePath() + suffix_);
      if (!typed.exists() && meant.exists()) field->setText(field->text() + suffix_);
    }
    QFileDialog::accept();
  }

 private:
  const QString suffix_;
};

}  // namespace

bool QtDialogs::ShowBox(const BoxRequest& request) {
  if (ending_) return false;
  QMessageBox box(owner_);
  box.setObjectName(QStringLiteral("MessageBox"));
  box.setIcon(IconOf(request.Icon));
  box.setWindowTitle(ShownText(request.Title));
  box.setTextFormat(Qt::PlainText);
  box.setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  const QFontMetrics metrics(box.font());
  box.setText(WithBreaks(BoxText(request.Text), metrics, WidestWord(metrics, *box.screen())));
  if (request.YesNo) {
    box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
    box.setDefaultButton(QMessageBox::No);
    box.setEscapeButton(QMessageBox::No);
  }
  const CleanCopies copies(BoxText(request.Text));
  return box.exec() == QMessageBox::Yes;
}

std::string QtDialogs::AskOpenFile(const FileRequest& request) {
  OpenDialog dialog(owner_, request);
  return Ask(dialog, request.InitialName);
}

std::string QtDialogs::AskSaveFile(const FileRequest& request) {
  QFileDialog dialog(owner_, ShownText(request.Title));
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  dialog.setOption(QFileDialog::DontConfirmOverwrite);
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
