#include "on_demand_accessibility.h"

#include "scintilla_text.h"

#include <QAccessibleWidget>

using Sci = QsciScintillaBase;

namespace {

constexpr long kFolding = Sci::SC_MOD_CHANGEFOLD;

bool isWanted = false;

// While nobody listens an editor is a widget as any other. Qt asks the factory that came last
// first.
QAccessibleInterface* PlainInterface(const QString& className, QObject* object)
{
    if (isWanted || className != QLatin1String("QsciScintilla")) {
        return nullptr;
    }
    return new QAccessibleWidget(qobject_cast<QWidget*>(object), QAccessible::EditableText);
}

// So that Qt asks the factories again. It keeps what they made as long as the widget lives.
void ForgetInterface(QObject& object)
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
    AnnounceChanges(isWanted);
    QAccessible::installActivationObserver(this);
}

OnDemandAccessibility::~OnDemandAccessibility()
{
    QAccessible::removeActivationObserver(this);
}

void OnDemandAccessibility::accessibilityActiveChanged(bool isActive)
{
    isWanted = isActive;
    AnnounceChanges(isActive);
    ForgetInterface(editor_);
}

void OnDemandAccessibility::AnnounceChanges(bool alsoDoneOnes)
{
    const long mask = kBeforeChange | kFolding;
    Send(editor_, Sci::SCI_SETMODEVENTMASK, alsoDoneOnes ? long{Sci::SC_MODEVENTMASKALL} : mask);
}
