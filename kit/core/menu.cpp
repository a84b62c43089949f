#include "Menu.h"

#include "Bitmap.h"

#include <algorithm>
#include <utility>

BMenuItem::BMenuItem(const std::string& label, std::function<void()> action, unsigned char shortcut,
                     unsigned modifiers)
    : label_(label), action_(std::move(action)), shortcut_(shortcut), modifiers_(modifiers)
{
}

BMenuItem::~BMenuItem() = default;

void BMenuItem::SetShortcut(unsigned char shortcut, unsigned modifiers)
{
    shortcut_ = shortcut;
    modifiers_ = modifiers;
}

IconMenuItem::IconMenuItem(const std::string& label, const std::function<void()>& action, bool,
                           const BBitmap* icon, char shortcut, unsigned modifiers)
    : BMenuItem(label, action, static_cast<unsigned char>(shortcut), modifiers),
      icon_(std::make_unique<BBitmap>(*icon))
{
}

IconMenuItem::~IconMenuItem() = default;

BMenu::BMenu(const std::string& name) : name_(name) {}

BMenu::~BMenu() = default;

void BMenu::MakeEmpty()
{
    items_.clear();
}

void BMenu::AddItem(BMenuItem* item)
{
    items_.emplace_back(item);
}

void BMenu::AddItem(BMenuItem* item, int index)
{
    const auto at = std::clamp<std::ptrdiff_t>(index, 0, std::ssize(items_));
    items_.emplace(items_.begin() + at, item);
}

void BMenu::SetFont(const BFont* font)
{
    font_ = *font;
}

void BMenu::SetAboutToShowPopulator(const std::function<void()>& populator)
{
    populator_ = populator;
}

void BMenu::AboutToShow() const
{
    if (populator_) {
        populator_();
    }
}
