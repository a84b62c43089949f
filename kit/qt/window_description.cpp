#include "window_description.h"

#include "Controls.h"
#include "Menu.h"
#include "OutlineTableView.h"
#include "busy_widget.h"
#include "line_label.h"
#include "menu_button.h"
#include "table_native.h"
#include "table_widget.h"
#include "view_native.h"
#include "window_widget.h"

#include <QFile>
#include <QPushButton>
#include <QUiLoader>

#include <stdexcept>

namespace {

using Views = std::vector<std::unique_ptr<BView>>;

template <class View, class Native = BView::Native>
std::unique_ptr<BView> MakeView(QWidget* widget)
{
    return std::make_unique<View>(std::make_unique<Native>(widget));
}

struct ViewClass {
    const char* name;
    QWidget* (*makeWidget)(QWidget* parent);
    std::unique_ptr<BView> (*makeView)(QWidget* widget);
};

template <class Widget>
QWidget* MakeWidget(QWidget* parent)
{
    return new Widget(parent);
}

QWidget* MakeButton(QWidget* parent)
{
    auto* const button = new QPushButton(parent);
    button->setFocusPolicy(Qt::TabFocus);  // A click leaves the keyboard with the table.
    return button;
}

const ViewClass kViewClasses[] = {
    {"BButton", MakeButton, MakeView<BButton>},
    {"BMenuField", MakeWidget<MenuButton>, MakeView<BMenuField>},
    {"BOutlineTableView", MakeWidget<TableWidget>, MakeView<BOutlineTableView, TableNative>},
    {"BProgressIndicator", MakeWidget<BusyWidget>, MakeView<BProgressIndicator>},
    {"BStringView", MakeWidget<LineLabel>, MakeView<BStringView>},
    {"BView", MakeWidget<QWidget>, MakeView<BView>},
};

const ViewClass* FindClass(const QString& name)
{
    for (const auto& known : kViewClasses) {
        if (name == QLatin1String(known.name)) {
            return &known;
        }
    }
    return nullptr;
}

// The property that holds a widget's class in the description.
constexpr const char* kClassProperty = "viewClass";

class DescriptionLoader final : public QUiLoader {
  public:
    QWidget* createWidget(const QString& className, QWidget* parent, const QString& name) override
    {
        QWidget* widget = nullptr;
        if (className == "BWindow" && parent == nullptr) {
            widget = new WindowWidget;
        } else if (const auto* known = FindClass(className)) {
            widget = known->makeWidget(parent);
            widget->setProperty(kClassProperty, className);
        } else {
            unknownClass_ = className;
            widget = new QWidget(parent);  // Without a widget the loader would print a warning.
        }
        widget->setObjectName(name);
        return widget;
    }

    const QString& unknownClass() const { return unknownClass_; }

  private:
    QString unknownClass_;
};

Views MakeViews(const QWidget& parent)
{
    Views views;
    for (auto* child : parent.findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
        if (const auto* known = FindClass(child->property(kClassProperty).toString())) {
            auto view = known->makeView(child);
            view->native().children = MakeViews(*child);
            views.push_back(std::move(view));
        }
    }
    return views;
}

[[noreturn]] void Fail(const std::string& file, const QString& reason)
{
    throw std::runtime_error("the window description " + file +
                             " cannot be used: " + reason.toStdString());
}

}  // namespace

DescribedWindow LoadWindowDescription(const std::string& file)
{
    QFile source(QString::fromStdString(file));
    if (!source.open(QIODevice::ReadOnly)) {
        Fail(file, source.errorString());
    }
    DescriptionLoader loader;
    std::unique_ptr<QWidget> root(loader.load(&source));
    if (!loader.unknownClass().isEmpty()) {
        Fail(file, "unknown view class " + loader.unknownClass());
    }
    auto* const window = dynamic_cast<WindowWidget*>(root.get());
    if (window == nullptr) {
        Fail(file,
             root ? QStringLiteral("its top-level widget is not a BWindow") : loader.errorString());
    }
    std::ignore = root.release();
    return {std::unique_ptr<WindowWidget>(window), MakeViews(*window)};
}

int TagOf(const BView& view)
{
    return view.native().widget->property("tag").toInt();
}
