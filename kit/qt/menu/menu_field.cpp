#include "Menu.h"
#include "menu_button.h"
#include "view_native.h"

#include <utility>

BMenuField::BMenuField(std::unique_ptr<Native> native)
    : BView(std::move(native)), menu_(std::make_unique<BMenu>("menu"))
{
    BView::native().As<MenuButton>().SetMenu(menu_.get());
}

BMenuField::~BMenuField()
{
    native().As<MenuButton>().SetMenu(nullptr);
}

void BMenuField::SetSelectedItem(int index)
{
    native().As<MenuButton>().SelectItem(index);
}
