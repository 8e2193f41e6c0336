// Drags and drops of files and folders.

#include <QDragEnterEvent>
#include <QDragLeaveEvent>
#include <QDropEvent>
#include <QMimeData>
#include <QUrl>
#include <gmock/gmock.h>

#include "tests/ui/window_fixture.h"
#include "ui/dragged_files.h"

namespace folioweld::testing {
namespace {

QByteArray UrlOf(const std::string& path) {
  return "file://" + QByteArray::fromStdString(path).toPercentEncoding("/");
}

class DropTest : public WindowFixture {
 protected:
  void SetUp() override { Open(); }
  /// The toolkit keeps the widget that took a drag until the drag leaves it, even when the widget is gone.
  void TearDown() override {
    QDragLeaveEvent leave;
    QApplication::sendEvent(&Window(), &leave);
  }

  /// The action that a drag is offered over the widget; IgnoreAction when it is refused.
  Qt::DropAction DragOver(const char* widget, const QMimeData& data,
                          Qt::DropActions offered = Qt::CopyAction | Qt::MoveAction) {
    QWidget* target = Place(widget);
    QDragEnterEvent enter(QPoint(5, 5), offered, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(target, &enter);
    return enter.isAccepted() ? enter.dropAction() : Qt::IgnoreAction;
  }

  /// Drops the files and waits until they were handled.
  void DropOn(const char* widget, const std::vector<std::string>& paths) {
    QList<QUrl> urls;
    for (const std::string& path : paths) urls.append(QUrl::fromEncoded(UrlOf(path)));
    DropUrls(widget, urls);
  }
  void DropUrls(const char* widget, const QList<QUrl>& urls) {
    QMimeData data;
    data.setUrls(urls);
    const bool offered = DragOver(widget, data) == Qt::CopyAction;
    QDropEvent drop(QPointF(5, 5), Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(Place(widget), &drop);
    if (offered) {
      EXPECT_EQ(drop.dropAction(), Qt::IgnoreAction) << "the effect is none";
    }
    bool handled = false;
    QTimer::singleShot(0, &Window(), [&] { handled = true; });
    ASSERT_TRUE(WaitFor([&] { return handled; }));
  }

  QWidget* Place(const char* name) {
    return std::string(name) == "Folioweld" ? &Window() : Find<QWidget>(name);
  }

  /// The places that show that they would take the drag.
  [[nodiscard]] std::string Marked() {
    std::string names;
    for (const char* name : {"frameFileIn1", "frameFileIn2", "frameFileOut"}) {
      if (Find<TitleFrame>(name)->Marked()) names += std::string(names.empty() ? "" : " ") + name;
    }
    return names;
  }
  void ExpectIgnored(int index, const std::string& reason) {
    const std::string prefix = "[Folioweld-ProcessOLEDragDrop]=>";
    EXPECT_THAT(LogText(), ::testing::EndsWith(prefix + "Index: " + std::to_string(index) +
                                               " * the drop is ignored\r\n" + prefix + "  because of " +
                                               reason + "\r\n"));
  }

  [[nodiscard]] std::string LogText() { return Window().Log().LogText(); }
};

TEST_F(DropTest, AFileListIsOfferedACopyAndNothingElse) {
  QMimeData data;
  data.setUrls({QUrl(QStringLiteral("file:///tmp/a.pdf"))});
  EXPECT_EQ(DragOver("frameFileIn2", data), Qt::CopyAction);
  EXPECT_EQ(Window().DropTarget, 1);
  EXPECT_EQ(DragOver("frameFileOut", data), Qt::CopyAction);
  EXPECT_EQ(Window().DropTarget, 2);
  EXPECT_EQ(DragOver("Folioweld", data), Qt::CopyAction);
  EXPECT_EQ(DragOver("frameFileIn1", data, Qt::MoveAction), Qt::IgnoreAction);
}

TEST_F(DropTest, WhatIsNoLocalFileIsOfferedNothing) {
  QMimeData text;
  text.setText(QStringLiteral("/tmp/a.pdf"));
  EXPECT_EQ(DragOver("frameFileIn1", text), Qt::IgnoreAction);
  QMimeData remote;
  remote.setUrls({QUrl(QStringLiteral("https://example.com/a.pdf"))});
  EXPECT_EQ(DragOver("frameFileIn1", remote), Qt::IgnoreAction);
}

TEST_F(DropTest, WhileBusyNothingIsOfferedAndADropDoesNothing) {
  const std::string path = Document("a.pdf");
  QMimeData data;
  data.setUrls({QUrl(QStringLiteral("file:///tmp/a.pdf"))});
  Window().Program().ExternalBusy = true;
  EXPECT_EQ(DragOver("frameFileIn1", data), Qt::IgnoreAction);
  DropOn("frameFileIn1", {path});
  Window().Program().ExternalBusy = false;
  EXPECT_EQ(FileName(1), "");
  Window().ProcessOLEDragDrop(0, {1, {path}}, false);
  EXPECT_EQ(FileName(1), "");
  ExpectIgnored(0, "a merge, a viewer or a question that comes first");
}

TEST_F(DropTest, ADocumentOnTheFirstPlaceIsTaken) {
  DropOn("frameFileIn1", {Document("a b%#.pdf")});
  EXPECT_EQ(FileName(1), folder_.File("a b%#.pdf"));
  EXPECT_EQ(Marks(), "1<,,");
  EXPECT_THAT(LogText(), ::testing::HasSubstr("[Folioweld-ProcessOLEDragDrop]=>Index: 0 * file name: <" +
                                              folder_.File("a b%#.pdf") + ">"));
}

TEST_F(DropTest, ANameThatIsNoUtf8ArrivesIntact) {
  const std::string path = Document("caf\xE9.pdf");
  DropOn("frameFileIn1", {path});
  EXPECT_EQ(FileName(1), path);
}

TEST_F(DropTest, ARefusedFileOnTheFirstPlaceClearsItAndMovesTheSecondUp) {
  ChooseAll();
  DropOn("frameFileIn1", {folder_.Write("bad.pdf", "no")});
  EXPECT_EQ(FileName(1), folder_.File("second.pdf"));
  EXPECT_EQ(FileName(2), "");
  EXPECT_TRUE(dialogs_.Boxes.empty());
  EXPECT_THAT(LogText(),
              ::testing::HasSubstr("[Folioweld-ProcessOLEDragDrop]=>File: \"" + folder_.File("bad.pdf") +
                                   "\"  is not acceptable for merging\r\n"
                                   "[Folioweld-ProcessOLEDragDrop]=>  because of "));
}

TEST_F(DropTest, OnTheSecondPlaceWhileTheFirstIsEmptyTheFirstIsFilled) {
  DropOn("frameFileIn2", {Document("a.pdf")});
  EXPECT_EQ(FileName(1), folder_.File("a.pdf"));
  EXPECT_EQ(FileName(2), "");
  EXPECT_EQ(Window().DropTarget, 0);
}

TEST_F(DropTest, ADocumentOnTheSecondPlaceIsTaken) {
  ChooseAll();
  DropOn("frameFileIn2", {Document("new.pdf")});
  EXPECT_EQ(FileName(2), folder_.File("new.pdf"));
}

TEST_F(DropTest, ARefusedFileOnTheSecondPlaceEmptiesIt) {
  ChooseAll();
  DropOn("frameFileIn2", {folder_.Write("bad.pdf", "no")});
  EXPECT_EQ(FileName(1), folder_.File("first.pdf"));
  EXPECT_EQ(FileName(2), "");
  EXPECT_THAT(LogText(), ::testing::HasSubstr("  because of "));
}

TEST_F(DropTest, ARefusedFileMeantForTheSecondPlaceEmptiesTheFirst) {
  DropOn("frameFileIn2", {folder_.Write("bad.pdf", "no")});
  EXPECT_EQ(FileName(1) + FileName(2), "");
}

TEST_F(DropTest, AnyFileOnTheOutputPlaceBecomesTheOutputEvenAnInput) {
  ChooseAll();
  DropOn("frameFileOut", {folder_.File("first.pdf")});
  EXPECT_EQ(FileName(3), folder_.File("first.pdf"));
  EXPECT_TRUE(Exists(FileName(3)));
}

TEST_F(DropTest, OnTheOutputPlaceWithoutAFirstInputNothingHappens) {
  DropOn("frameFileOut", {Document("a.pdf")});
  EXPECT_EQ(FileName(3), "");
  ExpectIgnored(2, "the 1st input, which comes before the output");
}

TEST_F(DropTest, TwoFilesAtOnceDoNothing) {
  DropOn("frameFileIn1", {Document("a.pdf"), Document("b.pdf")});
  EXPECT_EQ(FileName(1), "");
  ExpectIgnored(0, "what it holds: 2 entries instead of one");
}

TEST_F(DropTest, AFileAndAWebAddressAreTwoAndDoNothing) {
  DropUrls("frameFileIn1",
           {QUrl::fromEncoded(UrlOf(Document("a.pdf"))), QUrl(QStringLiteral("https://example.com/b.pdf"))});
  EXPECT_EQ(FileName(1), "");
  ExpectIgnored(0, "what it holds: 2 entries instead of one");
}

TEST_F(DropTest, WhatIsNoFileOfThisMachineIsIgnoredShouldItBeDroppedAllTheSame) {
  Window().ProcessOLEDragDrop(1, {1, {}}, true);
  ExpectIgnored(1, "what it holds: no file of this machine");
  Window().ProcessOLEDragDrop(0, {0, {}}, true);
  ExpectIgnored(0, "what it holds: no files");
}

TEST_F(DropTest, ThePathAndTheStatusOfAPlaceTakeDropsForIt) {
  DropOn("txtFileName0", {Document("a.pdf")});
  DropOn("txtDoing1", {Document("b.pdf")});
  EXPECT_EQ(FileName(1), folder_.File("a.pdf"));
  EXPECT_EQ(FileName(2), folder_.File("b.pdf"));
}

TEST_F(DropTest, APlaceShowsThatItWouldTakeTheDrag) {
  QMimeData one;
  one.setUrls({QUrl::fromEncoded(UrlOf(Document("a.pdf")))});
  DragOver("frameFileIn2", one);
  EXPECT_EQ(Marked(), "frameFileIn2");
  const QImage marked = Find<QWidget>("frameFileIn2")->grab().toImage();
  QDragLeaveEvent leave;
  QApplication::sendEvent(Place("frameFileIn2"), &leave);
  EXPECT_EQ(Marked(), "");
  EXPECT_NE(Find<QWidget>("frameFileIn2")->grab().toImage(), marked);
  DragOver("txtDoing0", one);
  EXPECT_EQ(Marked(), "frameFileIn1");
  DropOn("frameFileIn1", {folder_.File("a.pdf")});
  EXPECT_EQ(Marked(), "");
}

TEST_F(DropTest, NoPlaceShowsThatItTakesADragThatWouldBeIgnored) {
  QMimeData one;
  one.setUrls({QUrl::fromEncoded(UrlOf(Document("a.pdf")))});
  DragOver("frameFileOut", one);
  EXPECT_EQ(Marked(), "") << "there is no first input";
  DragOver("Folioweld", one);
  EXPECT_EQ(Marked(), "") << "beside the places";
  QMimeData two;
  two.setUrls({one.urls().first(), one.urls().first()});
  DragOver("frameFileIn1", two);
  EXPECT_EQ(Marked(), "");
}

TEST_F(DropTest, EveryPlaceShowsThatAFolderIsTakenAnywhere) {
  QMimeData folder;
  folder.setUrls({QUrl::fromEncoded(UrlOf(folder_.MakeFolder("documents")))});
  DragOver("Folioweld", folder);
  EXPECT_EQ(Marked(), "frameFileIn1 frameFileIn2 frameFileOut");
}

TEST_F(DropTest, AFileBesideThePlacesDoesNothing) {
  DropOn("Folioweld", {Document("a.pdf")});
  EXPECT_EQ(FileName(1) + FileName(2) + FileName(3), "");
  ExpectIgnored(-1, "where it fell: beside the places for files");
}

TEST_F(DropTest, AFolderIsMergedInTheOrderChosenWithoutAFolderPicker) {
  const std::string documents = folder_.MakeFolder("documents");
  for (const char* name : {"b.pdf", "a.pdf"}) Document(std::string("documents/") + name);
  dialogs_.SortAnswer = std::int16_t{-2};
  dialogs_.SaveAnswers = {folder_.File("out.pdf")};
  DropOn("Folioweld", {documents});
  EXPECT_EQ(dialogs_.SortQuestions, std::vector<std::int16_t>{1});
  EXPECT_EQ(Window().Program().SortOrder, -2);
  EXPECT_TRUE(Item("MenuSortByDateRev")->isChecked());
  EXPECT_EQ(Stored("MenuSort"), "-2");
  EXPECT_EQ(Stored("MergeCurDir"), documents + "/");
  EXPECT_TRUE(dialogs_.FolderQuestions.empty());
  ASSERT_EQ(dialogs_.SaveQuestions.size(), 1U);
  EXPECT_EQ(dialogs_.SaveQuestions[0].Title, "Folioweld: Choose the OUTPUT FILE");
  EXPECT_TRUE(Exists(folder_.File("out.pdf")));
  EXPECT_EQ(Window().Program().CommandLineDirectory, "");
  EXPECT_THAT(LogText(),
              ::testing::HasSubstr("[Folioweld-ProcessOLEDragDrop]=>Index: -1 * directory name: <" +
                                   documents + "> has been stored for later use"));
}

TEST_F(DropTest, AFolderOnAPlaceIsMergedToo) {
  Document("first.pdf");
  dialogs_.SaveAnswers = {folder_.File("config/out.pdf")};
  DropOn("frameFileOut", {folder_.Path()});
  EXPECT_TRUE(Exists(folder_.File("config/out.pdf")));
}

TEST_F(DropTest, AFolderThatCannotBeEnteredIsIgnored) {
  system_.Decide = FaultingSystem::Failing("SetCurrentDirectory", EACCES);
  DropOn("Folioweld", {folder_.MakeFolder("closed")});
  ExpectIgnored(-1, "\"" + folder_.File("closed") + "\": Permission denied");
  EXPECT_TRUE(dialogs_.SortQuestions.empty());
  EXPECT_TRUE(dialogs_.Boxes.empty());
  system_.Decide = nullptr;
}

TEST(DraggedFiles, KeepsTheBytesOfLocalFilesOnly) {
  QMimeData data;
  data.setUrls({QUrl::fromEncoded("file:///tmp/%FF%20%23.pdf"), QUrl::fromEncoded("file://localhost/b"),
                QUrl::fromEncoded("https://example.com/c"), QUrl::fromEncoded("file://elsewhere.invalid/d"),
                QUrl::fromEncoded("file:///e%00f")});
  EXPECT_EQ(FilesOf(&data).Paths, (std::vector<std::string>{"/tmp/\xFF #.pdf", "/b"}));
  EXPECT_EQ(FilesOf(&data).Entries, 5U);
  EXPECT_EQ(FilesOf(nullptr).Entries, 0U);
}

}  // namespace
}  // namespace folioweld::testing
