#include "Controls.h"

#include "busy_widget.h"
#include "line_label.h"
#include "runtime.h"
#include "view_native.h"

#include <QPushButton>

#include <utility>

void BButton::SetInvokeTarget(const BMessenger& target, const std::function<void()>& function)
{
    auto& button = native().As<QPushButton>();
    button.disconnect();
    QObject::connect(&button, &QPushButton::clicked, &button, [target, function] {
        Runtime::Current().queue().Post([target, function] {
            if (const auto alive = target.Lock()) {
                function();
            }
        });
    });
}

void BStringView::SetText(const std::string& text)
{
    native().As<LineLabel>().setText(QString::fromStdString(text));
}

void BProgressIndicator::Start()
{
    native().As<BusyWidget>().Start();
}

void BProgressIndicator::Stop()
{
    native().As<BusyWidget>().Stop();
}
