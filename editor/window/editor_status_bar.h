#pragma once

#include <QStatusBar>

class DocumentPage;
class QLabel;

// Shows the caret's position, what runs, the target, the document's format and the board. [ui]
class EditorStatusBar final : public QStatusBar {
    Q_OBJECT

  public:
    // Becomes the parent of the widgets that show what runs on the board, and the board.
    EditorStatusBar(QWidget* activity, QWidget* board, QWidget* parent);

    // `page` is null when no document is open.
    void ShowDocument(DocumentPage* page);
    // Full paths; empty if there is none.
    void ShowProject(const QString& folder, const QString& target);

  private:
    QLabel* position_;
    QLabel* target_;
    QLabel* format_;
};
