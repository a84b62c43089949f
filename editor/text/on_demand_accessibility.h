#pragma once

#include "scintilla.h"

#include <QAccessible>
#include <QObject>

// The types of SCN_MODIFIED that come before a change.
inline constexpr int kBeforeChange =
    QsciScintillaBase::SC_MOD_BEFOREINSERT | QsciScintillaBase::SC_MOD_BEFOREDELETE;

// Tells assistive programs of a text only once one listens. QScintilla itself does so always, and
// counts all characters before the caret at each change and each painting: 60 ms a key at the end
// of 5 MB.
//
// So nobody else can go by QsciScintilla's textChanged and linesChanged, or by what SCN_MODIFIED
// says of a change that is done: they come only while somebody listens. What always comes is
// SCN_MODIFIED before a change (kBeforeChange), and SCN_UPDATEUI.
//
// The editor owns it. Used on the user-interface thread.
class OnDemandAccessibility final : public QObject, QAccessible::ActivationObserver {
  public:
    explicit OnDemandAccessibility(QsciScintilla& editor);
    ~OnDemandAccessibility() override;

  private:
    void accessibilityActiveChanged(bool isActive) override;
    void AnnounceChanges(bool alsoDoneOnes);

    QsciScintilla& editor_;
};
