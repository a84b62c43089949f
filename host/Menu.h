#pragma once

#include "View.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

class BBitmap;

// An item of a menu. Owned by the menu that it is added to.
class BMenuItem {
  public:
    // `action` runs on the user-interface thread when the item is chosen. `shortcut` is shown
    // beside the label: a character, 0 for none, with modifiers as modifiers() gives them.
    BMenuItem(const std::string& label, std::function<void()> action, unsigned char shortcut,
              unsigned modifiers);
    BMenuItem(const BMenuItem&) = delete;
    BMenuItem& operator=(const BMenuItem&) = delete;
    virtual ~BMenuItem();

    const std::string& Label() const { return label_; }
    const std::function<void()>& Action() const { return action_; }
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

    // Run each time just before the menu opens.
    void SetAboutToShowPopulator(const std::function<void()>& populator);

    // For the framework.
    const std::string& Name() const { return name_; }
    const std::vector<std::unique_ptr<BMenuItem>>& Items() const { return items_; }
    void AboutToShow() const;

  private:
    std::string name_;
    std::vector<std::unique_ptr<BMenuItem>> items_;
    std::function<void()> populator_;
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
