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

// The Device window: the files of the attached board. There is at most one. The framework owns it
// while it is open; everything of it belongs to the user-interface thread. It never keeps a
// PluginInterface: work that needs one goes through `rebinder` or `reloadHook`. What may outlive
// the window holds a weak pointer to it.
class QuilpWindow final : public BWindow {
  public:
    // Opens the window, or brings the open one to the front.
    static QuilpWindow* ShowInstance(PluginInterface* pi);

    // By BLooper::MakeInstance only.
    QuilpWindow(std::vector<std::function<void()>>& initialisers, PluginInterface* pi,
                const char* description, const char* name, void* bundle);
    ~QuilpWindow() override;

    // Remembers the frame; a close is never refused.
    bool QuitRequested() override;

    // Writes the settings line of the frame that was remembered last, if there is one.
    static void SaveSettings(PluginInterface* pi);
    // Remembers the frame of a settings line's words; null for none.
    static void ReadSettings(PluginInterface* pi, const char* const* words);

    static QuilpWindow* gInstance;            // the open window; not owned
    static std::optional<BRect> gWindowRect;  // the frame that the next window gets

    // --- Navigation: quilp_window_navigation.cpp

    // Lists the current directory again, asks which board is attached, and then calls `done`, which
    // may be empty. Lines of an earlier listing are ignored from here on.
    void Reload(unique_function<void()>&& done);
    void Reload(PluginInterface* pi, unique_function<void()>&& done);
    // Shows another directory and then selects an entry, by its name, or none. A path that begins
    // with "/" or ".." is taken as it is, another is one below the current directory. Does nothing
    // when that is the current path already.
    void ChangeDirectory(const std::string& path, const std::string& selectName);
    void PopulatePathPopup();
    // Selects the first row with this text.
    void Select(const std::string& name);
    // Shows the directory that the item stands for; nothing for a file or null.
    void Open(const IconTableItem* item);
    void OpenParentDirectory();
    // Opens the first selected row.
    void OpenSelection();

    // --- Changes to the board's files: quilp_window_files.cpp

    // Deletes the selected entries, directories with their contents, without asking. Entries with a
    // single quote in their path are refused.
    void DeleteSelection();
    // Copies the first of the local files, or a folder, into a directory of the board.
    void Upload(const std::vector<std::string>& paths, const std::string& targetDir);
    void ConfigureDropHandling(PluginInterface* pi);
    bool ListViewKeyDownHandler(BOutlineTableView* view, const char* bytes, int numBytes);

  private:
    // A reload, deletion or upload that this window has begun.
    struct Operation {
        std::weak_ptr<QuilpWindow> window;
        unsigned number = 0;

        // The window, unless it is gone or has begun another operation since.
        std::shared_ptr<QuilpWindow> WindowIfLast() const;
    };

    // Part of the completion of a deletion or upload, which begins a reload. Destroyed without one,
    // the completion was dropped: the table is cleared, so that it shows no file that is gone.
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

    // The completion of a change to the board's files: lists the directory again.
    unique_function<void()> ReloadWhenDone();
    // What a row stands for; null when there is no such row.
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
