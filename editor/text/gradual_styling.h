#pragma once

#include "scintilla.h"

#include <QObject>
#include <QTimer>

#include <optional>

// Colours the text up to the visible part in short steps. Scintilla itself does so for 20 ms before
// each repaint and again for 20 ms after it, so that a jump of 2 MB delays the keys for a while.
// Until this has arrived at the visible part, its text is shown without colours. [ui]
class GradualStyling final : public QObject {
    Q_OBJECT

  public:
    // The editor owns this object.
    explicit GradualStyling(QsciScintilla& editor);

    // Must be called before each repaint.
    void Prepare();

  private:
    long VisibleEnd() const;
    long NextStop(long position) const;
    void StyleForAWhile();

    QsciScintilla& editor_;
    QTimer timer_;
    // Where colouring continues. While there is such a place, Scintilla is told that all is done.
    std::optional<long> styled_;
};
