#pragma once

#include "Font.h"
#include "View.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class BBitmap;

// The function key Fn is encoded as this base + n; no character key has these codes.
inline constexpr int kFunctionKeyBase = 0x80;

// An item of a menu. Owned by the menu that it is added to.
class BMenuItem {
  public:
    // `action` runs on the user-interface thread when the item is chosen. `shortcut` is shown
    // beside the label, and does nothing else: a character of Latin-1 or, for the function key Fn,
    // kFunctionKeyBase + n (n is 1 to 31); 0 for none. The modifiers are those that modifiers()
    // gives.
    BMenuItem(const std::string& label, std::function<void()> action, unsigned char shortcut,
              unsigned modifiers);
    BMenuItem(const BMenuItem&) = delete;
    BMenuItem& operator=(const BMenuItem&) = delete;
    virtual ~BMenuItem();

    void SetShortcut(unsigned char shortcut, unsigned modifiers);

    const std::string& Label() const { return label_; }
    const std::function<void()>& Action() const { return action_; }
    unsigned char Shortcut() const { return shortcut_; }
    unsigned Modifiers() const { return modifiers_; }
    // Null when the item has none.
    virtual const BBitmap* Icon() const { return nullptr; }

  private:
    std::string label_;
    std::function<void()> action_;
    unsigned char shortcut_;
    unsigned modifiers_;
};

// An item with an icon, which is copied.
class IconMenuItem final : public BMenuItem {
  public:
    // The third argument is always false, `shortcut` and `modifiers` always 0.
    IconMenuItem(const std::string& label, const std::function<void()>& action, bool,
                 const BBitmap* icon, char shortcut, unsigned modifiers);
    ~IconMenuItem() override;

    const BBitmap* Icon() const override { return icon_.get(); }

  private:
    std::unique_ptr<BBitmap> icon_;
};

// A list of items. While it is open it shows the items that it had when it was opened, also when
// they are replaced meanwhile. Used on the user-interface thread.
class BMenu {
  public:
    explicit BMenu(const std::string& name);
    BMenu(const BMenu&) = delete;
    BMenu& operator=(const BMenu&) = delete;
    virtual ~BMenu();

    // Deletes all items.
    void MakeEmpty();
    // The menu owns the item from here on.
    void AddItem(BMenuItem* item);
    // Before the item that is at this index now; at the end when there is none.
    void AddItem(BMenuItem* item, int index);

    // Copied. Without one it is the host's own for menus.
    void SetFont(const BFont* font);

    // Run each time just before the menu opens.
    void SetAboutToShowPopulator(const std::function<void()>& populator);

    // For the framework.
    const std::string& Name() const { return name_; }
    const std::vector<std::unique_ptr<BMenuItem>>& Items() const { return items_; }
    const std::optional<BFont>& Font() const { return font_; }
    void AboutToShow() const;

  private:
    std::string name_;
    std::optional<BFont> font_;
    std::vector<std::unique_ptr<BMenuItem>> items_;
    std::function<void()> populator_;
};

// A menu by itself, at some place of the screen.
class BPopUpMenu final : public BMenu {
  public:
    // The flags are always false.
    BPopUpMenu(const char* name, bool, bool);

    // Opens the menu with its corner at this place of the screen. Returns when it has closed and
    // the action of the item that was chosen has run; none runs when the program, or the window
    // that the menu lies over, has ended meanwhile. The flags are always false, the view null.
    void Go(BPoint where, bool, bool, bool, BView*);
};

// A field that shows the selected item of its menu and opens the menu when it is pressed. Made from
// a window's description.
class BMenuField final : public BView {
  public:
    explicit BMenuField(std::unique_ptr<Native> native);
    ~BMenuField() override;

    // Owned by the field.
    BMenu* Menu() const { return menu_.get(); }

    // Shows the item at this index, as it is now; nothing when there is none.
    void SetSelectedItem(int index);

  private:
    std::unique_ptr<BMenu> menu_;
};
