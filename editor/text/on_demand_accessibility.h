#pragma once

#include "scintilla.h"

#include <QAccessible>
#include <QObject>

// The types of SCN_MODIFIED that are sent before a change.
inline constexpr int kBeforeChange =
    QsciScintillaBase::SC_MOD_BEFOREINSERT | QsciScintillaBase::SC_MOD_BEFOREDELETE;

// Notifies assistive technologies of changes to a text, but only while one is active. QScintilla
// itself always does so, and at each change and each repaint counts all characters before the
// caret, which takes 60 ms per keystroke at the end of 5 MB.
//
// Therefore other code must not use QsciScintilla's textChanged and linesChanged, or SCN_MODIFIED
// after a change: they are sent only while an assistive technology is active. SCN_MODIFIED before a
// change (kBeforeChange) and SCN_UPDATEUI are always sent.
//
// Owned by the editor. [ui]
class OnDemandAccessibility final : public QObject, QAccessible::ActivationObserver {
  public:
    explicit OnDemandAccessibility(QsciScintilla& editor);
    ~OnDemandAccessibility() override;

  private:
    void accessibilityActiveChanged(bool isActive) override;
    void SetNotifications(bool all);

    QsciScintilla& editor_;
};
