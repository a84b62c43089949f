#pragma once

#include "Font.h"
#include "View.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class BBitmap;

// Function key number n is encoded as this base + n; no character key has these codes.
inline constexpr int kFunctionKeyBase = 0x80;

// An item of a menu. Owned by the menu that it is added to. [ui]
class BMenuItem {
  public:
    // `action` runs when the item is chosen. `shortcut` is only shown next to the label: a Latin-1
    // character or, for function key number n, kFunctionKeyBase + n (n is 1 to 31); 0 for none.
    // `modifiers` combines the flags of Keyboard.h.
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
    // Null if the item has no icon.
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

// A list of items. While a menu is open it shows the items that it had when it was opened, even if
// they are replaced in the meantime. [ui]
class BMenu {
  public:
    explicit BMenu(const std::string& name);
    BMenu(const BMenu&) = delete;
    BMenu& operator=(const BMenu&) = delete;
    virtual ~BMenu();

    // Deletes all items.
    void MakeEmpty();
    // Appends an item. The menu takes ownership.
    void AddItem(BMenuItem* item);
    // Inserts an item before the one currently at this index, or at the end if there is none.
    void AddItem(BMenuItem* item, int index);

    // The font is copied. The default is the host's font for menus.
    void SetFont(const BFont* font);

    // The populator is called each time just before the menu opens.
    void SetAboutToShowPopulator(const std::function<void()>& populator);

    // For the framework only.
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

// A stand-alone menu that opens at a given position on the screen. [ui]
class BPopUpMenu final : public BMenu {
  public:
    // The flags are always false.
    BPopUpMenu(const char* name, bool, bool);

    // Opens the menu with its top left corner at this screen position. Returns after the menu has
    // closed and the action of the chosen item has run. No action runs if the program exits or the
    // window below the menu closes in the meantime. The flags are always false and the view is
    // always null.
    void Go(BPoint where, bool, bool, bool, BView*);
};

// A field that shows the selected item of its menu and opens the menu when it is pressed. Created
// from a window's description. [ui]
class BMenuField final : public BView {
  public:
    explicit BMenuField(std::unique_ptr<Native> native);
    ~BMenuField() override;

    // Owned by the field.
    BMenu* Menu() const { return menu_.get(); }

    // Shows a copy of the item at this index; nothing if there is none.
    void SetSelectedItem(int index);

  private:
    std::unique_ptr<BMenu> menu_;
};
