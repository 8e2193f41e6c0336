// The dialogs as a person sees them, answered while they are open.

#include "ui/qt_dialogs.h"

#include <QAbstractButton>
#include <QApplication>
#include <QClipboard>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

#include "tests/support/temp_folder.h"

namespace folioweld::testing {
namespace {

class QtDialogsTest : public ::testing::Test {
 protected:
  /// Does something with the next dialog and then cancels it where it is still open.
  template <typename Dialog>
  void InDialog(std::function<void(Dialog&)> step) {
    QTimer::singleShot(0, QApplication::instance(), [this, step] {
      auto* dialog = qobject_cast<Dialog*>(QApplication::activeModalWidget());
      seen_ = dialog != nullptr;
      if (!seen_) return;
      step(*dialog);
      if (dialog->isVisible()) dialog->reject();
    });
  }
  static void Type(QFileDialog& dialog, const std::string& name) {
    dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->setText(QString::fromStdString(name));
    QMetaObject::invokeMethod(&dialog, "accept");
  }
  void TearDown() override { EXPECT_TRUE(seen_) << "no dialog was shown"; }

  TempFolder folder_;
  QtDialogs dialogs_;
  bool seen_ = false;
};

TEST_F(QtDialogsTest, EachBoxShowsItsIcon) {
  const std::pair<BoxIcon, QMessageBox::Icon> icons[] = {{BoxIcon::Plain, QMessageBox::NoIcon},
                                                         {BoxIcon::Information, QMessageBox::Information},
                                                         {BoxIcon::Question, QMessageBox::Question},
                                                         {BoxIcon::Exclamation, QMessageBox::Warning},
                                                         {BoxIcon::Critical, QMessageBox::Critical}};
  for (const auto& [asked, shown] : icons) {
    InDialog<QMessageBox>([shown = shown](QMessageBox& box) { EXPECT_EQ(box.icon(), shown); });
    dialogs_.ShowBox({asked, "title", "text"});
  }
}

TEST_F(QtDialogsTest, AQuestionHasNoAsItsDefaultAndYesSaysTrue) {
  InDialog<QMessageBox>([](QMessageBox& box) {
    EXPECT_EQ(box.defaultButton(), box.button(QMessageBox::No));
    box.button(QMessageBox::Yes)->click();
  });
  EXPECT_TRUE(dialogs_.ShowBox({BoxIcon::Question, "title", "text", true}));
}

TEST_F(QtDialogsTest, TheTextOfABoxCanBeSelectedAndALongWordIsBrokenAndCopiedWhole) {
  const std::string word = "/" + std::string(400, 'x');
  InDialog<QMessageBox>([&](QMessageBox& box) {
    auto* label = box.findChild<QLabel*>(QStringLiteral("qt_msgbox_label"));
    ASSERT_NE(label, nullptr);
    EXPECT_TRUE(label->textInteractionFlags().testFlag(Qt::TextSelectableByMouse));
    EXPECT_LT(box.width(), label->fontMetrics().horizontalAdvance(QString::fromStdString(word)) / 2);
    QApplication::clipboard()->setText(box.text());
    EXPECT_EQ(QApplication::clipboard()->text().toStdString(), word);
  });
  dialogs_.ShowBox({BoxIcon::Exclamation, "title", word});
}

TEST_F(QtDialogsTest, TheOpenDialogTakesExistingFilesOnly) {
  InDialog<QFileDialog>([](QFileDialog& dialog) {
    EXPECT_EQ(dialog.fileMode(), QFileDialog::ExistingFile);
    EXPECT_EQ(dialog.acceptMode(), QFileDialog::AcceptOpen);
  });
  EXPECT_EQ(dialogs_.AskOpenFile({"title", "pdf", "All (*.*)|*.*", ""}), "");
}

TEST_F(QtDialogsTest, TheOpenDialogFindsAFileByItsNameWithoutTheExtension) {
  const std::string letter = folder_.Write("letter.pdf", "x");
  InDialog<QFileDialog>([&](QFileDialog& dialog) { Type(dialog, folder_.File("letter")); });
  EXPECT_EQ(dialogs_.AskOpenFile({"title", "pdf", "All (*.*)|*.*", ""}), letter);
}

TEST_F(QtDialogsTest, TheOpenDialogPrefersTheNameAsItWasTyped) {
  folder_.Write("letter.pdf", "x");
  const std::string letter = folder_.Write("letter", "x");
  InDialog<QFileDialog>([&](QFileDialog& dialog) { Type(dialog, letter); });
  EXPECT_EQ(dialogs_.AskOpenFile({"title", "pdf", "All (*.*)|*.*", ""}), letter);
}

TEST_F(QtDialogsTest, TheSaveDialogAsksNothingAboutAnExistingFile) {
  const std::string old = folder_.Write("old.pdf", "x");
  InDialog<QFileDialog>([&](QFileDialog& dialog) {
    EXPECT_TRUE(dialog.testOption(QFileDialog::DontConfirmOverwrite));
    Type(dialog, old);
  });
  EXPECT_EQ(dialogs_.AskSaveFile({"title", "pdf", "All (*.*)|*.*", ""}), old);
}

TEST_F(QtDialogsTest, AFileDialogIsPresetWithTheNameGiven) {
  const std::string given = folder_.Write("given.pdf", "x");
  for (const bool save : {false, true}) {
    InDialog<QFileDialog>([&](QFileDialog& dialog) {
      EXPECT_EQ(dialog.directory().path().toStdString(), folder_.Path());
      EXPECT_EQ(dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->text(),
                QStringLiteral("given.pdf"));
    });
    const FileRequest request{"title", "pdf", "All (*.*)|*.*", given};
    EXPECT_EQ(save ? dialogs_.AskSaveFile(request) : dialogs_.AskOpenFile(request), "");
  }
}

TEST_F(QtDialogsTest, TheFolderPickerShowsFoldersOnly) {
  InDialog<QFileDialog>([](QFileDialog& dialog) {
    EXPECT_EQ(dialog.fileMode(), QFileDialog::Directory);
    EXPECT_TRUE(dialog.testOption(QFileDialog::ShowDirsOnly));
  });
  EXPECT_EQ(dialogs_.AskFolder({"title", folder_.Path()}), "");
}

}  // namespace
}  // namespace folioweld::testing
