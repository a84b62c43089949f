#pragma once

#include "Controls.h"
#include "Menu.h"
#include "OutlineTableView.h"
#include "PluginInterface.h"
#include "Window.h"
#include "listing_items.h"
#include "unique_function.h"
#include "unique_rebinder.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// The Device window, which shows the files of the attached board. There is at most one; the
// framework owns it while it is open. It never keeps a PluginInterface: work that needs one goes
// through `rebinder` or `reloadHook`. Callables that may outlive the window hold a weak pointer to
// it. [ui]
class QuilpWindow final : public BWindow {
  public:
    // Opens the window, or brings the open one to the front.
    static QuilpWindow* ShowInstance(PluginInterface* pi);

    // Called by BLooper::MakeInstance only.
    QuilpWindow(std::vector<std::function<void()>>& initialisers, PluginInterface* pi,
                const char* description, const char* name, void* bundle);
    ~QuilpWindow() override;

    // Remembers the frame. Closing is never refused.
    bool QuitRequested() override;

    // Writes the remembered frame, if any, as a settings line.
    static void SaveSettings(PluginInterface* pi);
    // Reads the frame from the words of a settings line; null when there is no line.
    static void ReadSettings(PluginInterface* pi, const char* const* words);

    static QuilpWindow* gInstance;            // The open window; not owned.
    static std::optional<BRect> gWindowRect;  // The frame of the next window.

    // --- Navigation: quilp_window_navigation.cpp

    // Lists the current directory, queries the attached board, and then calls `done`, which may be
    // empty. Lines of earlier listings are ignored from now on.
    void Reload(unique_function<void()>&& done);
    void Reload(PluginInterface* pi, unique_function<void()>&& done);
    // Shows another directory and then selects the entry of this name, if any. A path that begins
    // with "/" or ".." is used unchanged, any other is relative to the current directory. Does
    // nothing when that is already the current path.
    void ChangeDirectory(const std::string& path, const std::string& selectName);
    void PopulatePathPopup();
    // Selects the first row with this text.
    void Select(const std::string& name);
    // Opens the item's directory. Does nothing for a file or null.
    void Open(const IconTableItem* item);
    void OpenParentDirectory();
    // Opens the first selected row.
    void OpenSelection();

    // --- Changes to the board's files: quilp_window_files.cpp

    // Deletes the selected entries, directories with their contents, without confirmation. Entries
    // with a single quote in their path are refused.
    void DeleteSelection();
    // Copies the first of the local files, or a folder, into a directory of the board.
    void Upload(const std::vector<std::string>& paths, const std::string& targetDir);
    void ConfigureDropHandling(PluginInterface* pi);
    bool ListViewKeyDownHandler(BOutlineTableView* view, const char* bytes, int numBytes);

  private:
    // A reload, deletion or upload that this window has started.
    struct Operation {
        std::weak_ptr<QuilpWindow> window;
        unsigned number = 0;

        // The window, unless it no longer exists or has started another operation since.
        std::shared_ptr<QuilpWindow> WindowIfLast() const;
    };

    // Part of the completion of a deletion or upload, which starts a reload. If it is destroyed
    // without a reload, the completion was dropped: then it clears the table, which must not show
    // files that no longer exist.
    class ClearWhenDropped {
      public:
        explicit ClearWhenDropped(Operation operation) : operation_(std::move(operation)) {}
        ClearWhenDropped(ClearWhenDropped&&) = default;
        ClearWhenDropped& operator=(ClearWhenDropped&&) = delete;
        ~ClearWhenDropped();

      private:
        Operation operation_;
    };

    void Initialise();
    void SetUpListing();
    void SetUpButtons();
    void PopulateContextMenu(BMenu& menu);

    Operation BeginOperation();
    void AddRow(const std::string& listedPath, const std::string_view& line);
    void QueryDevice(unique_function<void()>&& done);
    void ShowDevice(const std::string_view& line);

    // The completion of a change to the board's files, which reloads the directory.
    unique_function<void()> ReloadWhenDone();
    // The entry of a row; null when there is no such row.
    const IconTableItem* EntryOf(objc_object* row) const;
    int ValidateDrop(objc_object* info, objc_object* item);
    bool AcceptDrop(objc_object* info, objc_object* item);

    BOutlineTableView* listView;
    BMenuField* pathPopup = nullptr;
    BStringView* deviceLabel = nullptr;
    BProgressIndicator* progress = nullptr;
    std::function<void(unique_function<void()>)> reloadHook;
    UniqueRebinder rebinder;
    std::string currentPath = "/";
    std::string deviceName = "Device";
    unsigned operationCount = 0;
};
