#include "on_demand_accessibility.h"

#include "scintilla_text.h"

#include <QAccessibleWidget>

using Sci = QsciScintillaBase;

namespace {

constexpr long kFolding = Sci::SC_MOD_CHANGEFOLD;

bool isWanted = false;

// While no assistive technology is active, an editor has the interface of a plain widget. Qt asks
// the factory that was installed last first.
QAccessibleInterface* PlainInterface(const QString& className, QObject* object)
{
    if (isWanted || className != QLatin1String("QsciScintilla")) {
        return nullptr;
    }
    return new QAccessibleWidget(qobject_cast<QWidget*>(object), QAccessible::EditableText);
}

// Qt caches a widget's interface, so it must be deleted to make Qt ask the factories again.
void DeleteInterface(QObject& object)
{
    if (auto* const interface = QAccessible::queryAccessibleInterface(&object)) {
        QAccessible::deleteAccessibleInterface(QAccessible::uniqueId(interface));
    }
}

}  // namespace

OnDemandAccessibility::OnDemandAccessibility(QsciScintilla& editor)
    : QObject(&editor), editor_(editor)
{
    [[maybe_unused]] static const bool once = [] {
        isWanted = QAccessible::isActive();
        QAccessible::installFactory(PlainInterface);
        return true;
    }();
    SetNotifications(isWanted);
    QAccessible::installActivationObserver(this);
}

OnDemandAccessibility::~OnDemandAccessibility()
{
    QAccessible::removeActivationObserver(this);
}

void OnDemandAccessibility::accessibilityActiveChanged(bool isActive)
{
    isWanted = isActive;
    SetNotifications(isActive);
    DeleteInterface(editor_);
}

void OnDemandAccessibility::SetNotifications(bool all)
{
    const long mask = kBeforeChange | kFolding;
    Send(editor_, Sci::SCI_SETMODEVENTMASK, all ? long{Sci::SC_MODEVENTMASKALL} : mask);
}
