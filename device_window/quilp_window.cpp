#include "quilp_window.h"

#include "Settings.h"
#include "frame_fitting.h"

namespace {

constexpr float kScreenInset = 10.0F;

// The tags of the window's description.
constexpr int kCloseButton = 1;
constexpr int kDeviceLabel = 11;
constexpr int kPathPopup = 15;
constexpr int kRefreshButton = 20;

}  // namespace

QuilpWindow* QuilpWindow::gInstance = nullptr;
std::optional<BRect> QuilpWindow::gWindowRect;

QuilpWindow* QuilpWindow::ShowInstance(PluginInterface* pi)
{
    if (gInstance == nullptr) {
        const auto window =
            BLooper::MakeInstance<QuilpWindow>(pi, "QuilpWindow", "QuilpWindow", pi->bundle);
        gInstance = window.get();
        window->Show();
        if (gWindowRect) {
            window->SetFrame(FitOnScreen(*gWindowRect, kScreenInset));
        }
    }
    gInstance->Activate(true);
    return gInstance;
}

QuilpWindow::QuilpWindow(std::vector<std::function<void()>>& initialisers, PluginInterface* pi,
                         const char* description, const char* name, void* bundle)
    : BWindow(initialisers, description, name, bundle), rebinder(MakeUniqueRebinder(pi))
{
    initialisers.emplace_back([this] { Initialise(); });
}

QuilpWindow::~QuilpWindow()
{
    gInstance = nullptr;
}

void QuilpWindow::Initialise()
{
    const auto weak = ::weak_from_this(this);
    SetUpListing();
    rebinder([weak](PluginInterface* pi) {
        if (const auto window = weak.lock()) {
            window->ConfigureDropHandling(pi);
        }
    });
    pathPopup = FindViewByTag<BMenuField>(kPathPopup);
    deviceLabel = FindViewByTag<BStringView>(kDeviceLabel);
    progress = FindFirst<BProgressIndicator>();
    progress->Stop();
    SetUpButtons();
    reloadHook = [rebind = rebinder, weak](unique_function<void()> done) {
        rebind([weak, done = std::move(done)](PluginInterface* pi) mutable {
            if (const auto window = weak.lock()) {
                window->Reload(pi, std::move(done));
            }
        });
    };
    PopulatePathPopup();
    reloadHook({});
}

void QuilpWindow::SetUpListing()
{
    listView = FindFirst<BOutlineTableView>();
    listView->SetInvoker(
        [rebind = rebinder, weak = ::weak_from_this(this)](FTableItem* item, int, int) {
            const auto* entry = dynamic_cast<const IconTableItem*>(item);
            if (entry == nullptr) {
                return;
            }
            // A copy, because opening a directory clears the table.
            rebind([weak, copy = std::make_unique<IconTableItem>(
                              entry->name, entry->path, entry->isDirectory)](PluginInterface*) {
                if (const auto window = weak.lock()) {
                    window->Open(copy.get());
                }
            });
        });
    listView->SetKeyDownHandler([this](BOutlineTableView* view, const char* bytes, int numBytes) {
        return ListViewKeyDownHandler(view, bytes, numBytes);
    });
    auto menu = std::make_unique<BMenu>("context menu");
    menu->SetAboutToShowPopulator([this, shown = menu.get()] { PopulateContextMenu(*shown); });
    listView->SetMenu(menu.release());
}

// The functions are called only while the window exists.
void QuilpWindow::SetUpButtons()
{
    if (auto* close = FindViewByTag<BButton>(kCloseButton)) {
        // Not through a close request, because this button does not change the remembered frame.
        close->SetInvokeTarget(BMessenger(this), [this] { Quit(); });
    }
    if (auto* refresh = FindViewByTag<BButton>(kRefreshButton)) {
        refresh->SetInvokeTarget(BMessenger(this), [this] { reloadHook({}); });
    }
}

void QuilpWindow::PopulateContextMenu(BMenu& menu)
{
    menu.MakeEmpty();
    if (listView->SelectedItems().empty()) {
        return;
    }
    const auto weak = ::weak_from_this(this);
    const auto deleteSelection = [weak] {
        if (const auto window = weak.lock()) {
            window->DeleteSelection();
        }
    };
    menu.AddItem(new BMenuItem("Delete", deleteSelection, 0, 0));
}

bool QuilpWindow::QuitRequested()
{
    gWindowRect = Frame();
    return true;
}

void QuilpWindow::SaveSettings(PluginInterface* pi)
{
    if (gWindowRect) {
        pi->WriteSettings("%s -frame %s\n", "QuilpWindowFrame",
                          RectValueForSettings(*gWindowRect).c_str());
    }
}

void QuilpWindow::ReadSettings(PluginInterface* /*pi*/, const char* const* words)
{
    if (words == nullptr || *words == nullptr) {
        return;
    }
    const char* const* option = words + 1;  // After the key.
    if (const auto frame = ParseAsRectFromArgv(option, "frame")) {
        gWindowRect = frame;
    }
}
