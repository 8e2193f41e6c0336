// drag_source [--text] [--back] ITEM...: a small window from which its items can be dragged, files as a list
// of file URLs or, with --text, the words themselves. With --back they may be dropped on it again, so that
// there is an answer for another program's to replace. Each line on standard output tells what the drag has
// come to.

#include <QApplication>
#include <QDrag>
#include <QFile>
#include <QLabel>
#include <QMimeData>
#include <QMouseEvent>
#include <QTimer>
#include <QUrl>
#include <cstdio>

namespace {

/// Percent-encoded byte by byte, so that a name need not be UTF-8.
QUrl FileUrl(const QByteArray& path) {
  return QUrl::fromEncoded("file://" + path.toPercentEncoding("/"));
}

void Tell(const char* what) {
  std::puts(what);
  std::fflush(stdout);
}

class Source : public QLabel {
 public:
  Source(QList<QByteArray> items, bool asText, bool back)
      : QLabel(QStringLiteral("drag")), items_(std::move(items)), asText_(asText) {
    setWindowTitle(QStringLiteral("Drag source"));
    setGeometry(20, 40, 120, 60);
    setAcceptDrops(back);
  }

 protected:
  void dragEnterEvent(QDragEnterEvent* event) override { event->acceptProposedAction(); }

  void mouseMoveEvent(QMouseEvent* event) override {
    if (event->buttons().testFlag(Qt::LeftButton) && !dragging_) Drag();
  }

 private:
  void Drag() {
    dragging_ = true;
    auto* drag = new QDrag(this);
    drag->setMimeData(Data());
    connect(drag, &QDrag::actionChanged, this,
            [](Qt::DropAction action) { Tell(action == Qt::IgnoreAction ? "over: none" : "over: copy"); });
    // The toolkit keeps the drag until the other program has taken what it wants.
    connect(drag, &QObject::destroyed, this, [] { Tell("finished"); });
    // Told from the drag's own event loop: a move of the pointer before that may be handled after later ones.
    auto* begun = new QTimer(drag);
    begun->setSingleShot(true);
    connect(begun, &QTimer::timeout, drag, [] { Tell("dragging"); });
    begun->start();
    const Qt::DropAction effect = drag->exec(Qt::CopyAction | Qt::MoveAction, Qt::CopyAction);
    dragging_ = false;
    Tell(effect == Qt::IgnoreAction ? "ended: none"
         : effect == Qt::CopyAction ? "ended: copy"
                                    : "ended: other");
  }

  [[nodiscard]] QMimeData* Data() const {
    auto* dragged = new QMimeData;
    if (asText_) {
      dragged->setText(QString::fromUtf8(items_.join(' ')));
      return dragged;
    }
    QList<QUrl> urls;
    for (const QByteArray& item : items_) urls.append(FileUrl(item));
    dragged->setUrls(urls);
    return dragged;
  }

  const QList<QByteArray> items_;
  const bool asText_;
  bool dragging_ = false;
};

}  // namespace

int main(int argc, char** argv) {
  QList<QByteArray> items(argv + 1, argv + argc);
  QApplication application(argc, argv);
  const bool asText = items.removeAll(QByteArray("--text")) > 0;
  const bool back = items.removeAll(QByteArray("--back")) > 0;
  Source source(items, asText, back);
  source.show();
  return QApplication::exec();
}
