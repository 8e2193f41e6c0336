#include "prepare/carry/outlines.h"

#include <algorithm>
#include <map>
#include <utility>

#include "prepare/carry/outline_items.h"
#include "prepare/carry/text_string.h"

namespace folioweld {

namespace {

class OutlineJoin {
 public:
  OutlineJoin(Revision& revision, Bookmarks bookmarks) : revision_(revision), bookmarks_(bookmarks) {}

  void Run() {
    if (bookmarks_ != Bookmarks::Documents) FindAll();
    if (bookmarks_ == Bookmarks::Own && found_.empty()) return;
    root_ = revision_.Add(QPDFObjectHandle::parse("<< /Type /Outlines >>"));
    for (const CarriedDocument& document : revision_.Documents()) {
      const OutlineItems outline = found_[document.Index];
      if (bookmarks_ != Bookmarks::Own) {
        PutEntry(document, outline);
      } else {
        top_.insert(top_.end(), outline.Items.begin(), outline.Items.end());
        shown_ += outline.Shown;
      }
    }
    Link(root_, top_);
    root_.replaceKey("/Count", QPDFObjectHandle::newInteger(shown_));
    revision_.Catalog().replaceKey("/Outlines", root_);
  }

 private:
  void FindAll() {
    revision_.ForEach("outline", [this](CarriedDocument& document) {
      OutlineItems outline = FindOutline(revision_, document);
      if (!outline.Items.empty()) found_[document.Index] = std::move(outline);
    });
  }

  /// The old root becomes the entry where it is an object: all items below it name it as their parent.
  void PutEntry(const CarriedDocument& document, const OutlineItems& outline) {
    QPDFObjectHandle entry = outline.Root;
    const bool isOld = entry.isInitialized() && !outline.Items.empty();
    if (isOld) {
      for (const std::string& key : entry.getKeys()) entry.removeKey(key);
      revision_.Change(entry);
    } else {
      entry = revision_.Add(QPDFObjectHandle::newDictionary());
    }
    const bool hasTitle = document.Title.isInitialized() && !IsBlank(document.Title);
    entry.replaceKey("/Title", hasTitle ? document.Title : TextString(document.Name));
    PutDestination(entry, document);
    if (!outline.Items.empty()) {
      Link(entry, outline.Items);
      // Below 0: closed.
      entry.replaceKey("/Count", QPDFObjectHandle::newInteger(-outline.Shown));
    }
    top_.push_back(entry);
    ++shown_;
  }

  static void PutDestination(QPDFObjectHandle entry, const CarriedDocument& document) {
    const auto page = std::find_if(document.Pages.begin(), document.Pages.end(),
                                   [](const QPDFObjectHandle& object) { return object.isIndirect(); });
    if (page == document.Pages.end()) return;
    QPDFObjectHandle destination = QPDFObjectHandle::parse("[ /XYZ null null null ]");
    destination.insertItem(0, *page);
    entry.replaceKey("/Dest", destination);
  }

  /// Makes a level of `items`. Those that say so already are not written anew.
  void Link(QPDFObjectHandle parent, const std::vector<QPDFObjectHandle>& items) {
    for (std::size_t i = 0; i < items.size(); ++i) {
      Set(items[i], "/Parent", parent);
      Set(items[i], "/Prev", i == 0 ? QPDFObjectHandle() : items[i - 1]);
      Set(items[i], "/Next", i + 1 == items.size() ? QPDFObjectHandle() : items[i + 1]);
    }
    parent.replaceKey("/First", items.front());
    parent.replaceKey("/Last", items.back());
  }

  void Set(QPDFObjectHandle item, const std::string& key, const QPDFObjectHandle& object) {
    QPDFObjectHandle before = item.getKey(key);
    if (object.isInitialized() ? before.isSameObjectAs(object) : before.isNull()) return;
    if (object.isInitialized()) {
      item.replaceKey(key, object);
    } else {
      item.removeKey(key);
    }
    revision_.Change(item);
  }

  Revision& revision_;
  Bookmarks bookmarks_;
  std::map<int, OutlineItems> found_;  ///< by the document's index; those that have items
  QPDFObjectHandle root_;
  std::vector<QPDFObjectHandle> top_;
  long long shown_ = 0;
};

}  // namespace

void CarryOutlines(Revision& revision, Bookmarks bookmarks) {
  if (revision.Documents().size() < 2 || bookmarks == Bookmarks::None) return;
  OutlineJoin(revision, bookmarks).Run();
}

}  // namespace folioweld
