// The Device window's navigation through the board's directories.

#include "Bitmap.h"
#include "NodeInfo.h"
#include "Path.h"
#include "device_files.h"
#include "device_output.h"
#include "device_path.h"
#include "icon_format.h"
#include "path_items.h"
#include "quilp_window.h"

std::shared_ptr<QuilpWindow> QuilpWindow::Operation::WindowIfLast() const
{
    auto alive = window.lock();
    return alive && alive->operationCount == number ? alive : nullptr;
}

QuilpWindow::Operation QuilpWindow::BeginOperation()
{
    progress->Start();
    return {::weak_from_this(this), ++operationCount};
}

void QuilpWindow::Reload(unique_function<void()>&& done)
{
    reloadHook(std::move(done));
}

void QuilpWindow::Reload(PluginInterface* pi, unique_function<void()>&& done)
{
    const Operation operation = BeginOperation();
    listView->Clear();
    const auto onLine = [operation, listed = currentPath](const std::string_view& line) {
        if (const auto window = operation.WindowIfLast()) {
            window->AddRow(listed, line);
        }
    };
    auto onListed = [weak = operation.window, done = std::move(done)]() mutable {
        if (const auto window = weak.lock()) {
            window->QueryDevice(std::move(done));
        }
    };
    DirectoryListing(pi, currentPath, onLine, std::move(onListed));
}

void QuilpWindow::AddRow(const std::string& listedPath, const std::string_view& line)
{
    const auto entry = ParseDirLine(std::string(line));
    if (!entry) {
        return;
    }
    const auto& [size, listedName] = *entry;
    const bool isDirectory = listedName.ends_with('/');
    const auto name =
        std::string_view(listedName).substr(0, listedName.size() - (isDirectory ? 1 : 0));
    const int row = listView->CountRows();
    listView->AddItem(
        new IconTableItem(name, AppendPath(std::string_view(listedPath), name), isDirectory), row,
        0);
    listView->AddItem(new SizeTableItem(isDirectory ? "--" : size), row, 1);
}

void QuilpWindow::QueryDevice(unique_function<void()>&& done)
{
    const auto onDevice = [weak = ::weak_from_this(this)](const std::string_view& line) {
        if (const auto window = weak.lock()) {
            window->ShowDevice(line);
        }
    };
    rebinder([onDevice, done = std::move(done)](PluginInterface* pi) mutable {
        GetDeviceName(pi, onDevice, std::move(done));
    });
}

void QuilpWindow::ShowDevice(const std::string_view& line)
{
    if (const auto device = ParseDeviceLine(std::string(line))) {
        const auto& [name, dev, uid, port] = *device;
        deviceLabel->SetText(name + " " + dev);
        deviceName = dev;
    } else {
        deviceLabel->SetText("--");
        deviceName = "Not Connected";
    }
    PopulatePathPopup();
    progress->Stop();
}

void QuilpWindow::PopulatePathPopup()
{
    BMenu* menu = pathPopup->Menu();
    menu->MakeEmpty();
    int index = 0;
    for (const auto& item : PathItems(currentPath, deviceName)) {
        BBitmap icon({0, 0, kIconSize, kIconSize}, kColorsWithAlpha);
        BNodeInfo::GetTrackerIconFromType(item.isRoot ? kDiskIconType : kFolderIconType, &icon,
                                          kIconSize, false);
        const auto change = [weak = ::weak_from_this(this), path = item.path] {
            if (const auto window = weak.lock()) {
                window->ChangeDirectory(path, "");
            }
        };
        menu->AddItem(new IconMenuItem(item.label, change, false, &icon, 0, 0), index++);
    }
    pathPopup->SetSelectedItem(0);
}

void QuilpWindow::ChangeDirectory(const std::string& path, const std::string& selectName)
{
    const bool isWhole = path.starts_with('/') || path.starts_with("..");
    const std::string newPath = isWhole ? path : AppendPath(currentPath, path);
    if (newPath == currentPath) {
        return;
    }
    currentPath = newPath;
    Reload([weak = ::weak_from_this(this), selectName] {
        const auto window = weak.lock();
        // The user's own selection is kept, because the next key may delete it.
        if (window && window->listView->SelectedItems().empty()) {
            window->Select(selectName);
        }
    });
}

void QuilpWindow::Select(const std::string& name)
{
    if (name.empty()) {
        return;
    }
    for (int row = 0; row < listView->CountRows(); ++row) {
        if (listView->ItemAt(row, 0)->Text() == name) {
            listView->Select(row, false);
            return;
        }
    }
}

void QuilpWindow::Open(const IconTableItem* item)
{
    if (item != nullptr && item->isDirectory) {
        ChangeDirectory(item->name, "");
    }
}

void QuilpWindow::OpenParentDirectory()
{
    ChangeDirectory(ParentPath(currentPath), LeafItem(currentPath));
}

void QuilpWindow::OpenSelection()
{
    const auto selection = listView->SelectedItems();
    if (!selection.empty()) {
        Open(dynamic_cast<const IconTableItem*>(selection.front()));
    }
}
