// The Device window's changes to the board's files, and its keys.

#include "AppKit.h"
#include "Keyboard.h"
#include "device_files.h"
#include "quilp_window.h"
#include "runner.h"

namespace {

// The bytes of the keys that are handled together with Command.
constexpr char kBackspace = 8;
constexpr char kUpArrow = 30;
constexpr char kDownArrow = 31;

constexpr long kOnWholeView = -1;

constexpr const char* kRefusal =
    "Not deleted: entries whose path contains a single quote, which cannot be passed to "
    "mpremote.\n";

}  // namespace

QuilpWindow::ClearWhenDropped::~ClearWhenDropped()
{
    if (const auto window = operation_.WindowIfLast()) {
        window->listView->Clear();
    }
}

unique_function<void()> QuilpWindow::ReloadWhenDone()
{
    return [weak = ::weak_from_this(this), guard = ClearWhenDropped(BeginOperation())] {
        if (const auto window = weak.lock()) {
            window->Reload({});
        }
    };
}

void QuilpWindow::DeleteSelection()
{
    std::vector<std::string> paths;
    for (const auto* item : listView->SelectedItems()) {
        if (const auto* entry = dynamic_cast<const IconTableItem*>(item)) {
            paths.push_back(entry->path);
        }
    }
    // Between the single quotes of the command line it would name another path.
    const auto refused = std::erase_if(
        paths, [](const std::string& path) { return path.find('\'') != std::string::npos; });
    if (refused > 0) {
        rebinder([](PluginInterface* pi) { WriteToWorksheet(pi, kRefusal); });
    }
    if (paths.empty()) {
        return;
    }
    rebinder([paths, done = ReloadWhenDone()](PluginInterface* pi) mutable {
        Delete(pi, paths, std::move(done));
    });
}

void QuilpWindow::Upload(const std::vector<std::string>& paths, const std::string& targetDir)
{
    rebinder([paths, targetDir, done = ReloadWhenDone()](PluginInterface* pi) mutable {
        CopyToDevice(pi, paths, targetDir, std::move(done));
    });
}

// The table owns the callables, and does not outlive the window.
void QuilpWindow::ConfigureDropHandling(PluginInterface* /*pi*/)
{
    objc_object* const type = FileURLPasteboardType();
    NSOutlineView_registerForDraggedTypes(listView->KitView<NSOutlineView*>(),
                                          NSArray_arrayWithObjects_count(&type, 1).get());
    listView->SetDropValidator(
        [this](objc_object* info, objc_object* item, int) { return ValidateDrop(info, item); });
    listView->SetAcceptDrop(
        [this](objc_object* info, objc_object* item, int) { return AcceptDrop(info, item); });
}

const IconTableItem* QuilpWindow::EntryOf(objc_object* row) const
{
    return dynamic_cast<const IconTableItem*>(listView->ItemForID(row, 0));
}

int QuilpWindow::ValidateDrop(objc_object* info, objc_object* item)
{
    if (RefsFromPasteboard(NSDraggingInfo_draggingPasteboard(info)).empty()) {
        return NSDragOperationNone;
    }
    const auto* entry = EntryOf(item);
    const bool onFile = entry != nullptr && !entry->isDirectory;
    if (item == nullptr || onFile) {
        NSOutlineView_setDropItem_dropChildIndex(listView->KitView<NSOutlineView*>(), nullptr,
                                                 kOnWholeView);
    }
    return NSDragOperationCopy;
}

bool QuilpWindow::AcceptDrop(objc_object* info, objc_object* item)
{
    const auto refs = RefsFromPasteboard(NSDraggingInfo_draggingPasteboard(info));
    if (refs.empty()) {
        return false;
    }
    const auto* entry = EntryOf(item);
    const bool onDirectory = entry != nullptr && entry->isDirectory;
    const std::string targetDir = onDirectory ? entry->path : currentPath;
    std::vector<std::string> paths;
    paths.reserve(refs.size());
    for (const auto& ref : refs) {
        paths.push_back(ref.path());
    }
    Upload(paths, targetDir);
    return true;
}

bool QuilpWindow::ListViewKeyDownHandler(BOutlineTableView* /*view*/, const char* bytes,
                                         int /*numBytes*/)
{
    if ((modifiers() & kCommandKey) == 0) {
        return false;
    }
    switch (bytes[0]) {
        case kBackspace: DeleteSelection(); return true;
        case kUpArrow: OpenParentDirectory(); return true;
        case kDownArrow: OpenSelection(); return true;
        default: return false;
    }
}
