#pragma once

#include "board_scripts.h"

#include <QDialog>

#include <vector>

class QLabel;
class QLineEdit;
class QPushButton;
class QTreeWidget;

// Lists the files of the board for the user to choose one. What is typed filters the list; the keys
// that move in the list work meanwhile. [ui]
class BoardFilesDialog final : public QDialog {
    Q_OBJECT

  public:
    // `accept` is the label of the button. The list is empty until SetEntries.
    BoardFilesDialog(const QString& title, const QString& accept, QWidget* parent);

    void SetEntries(const std::vector<BoardEntry>& entries);

  Q_SIGNALS:
    void Chosen(const BoardEntry& entry);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void Filter();
    void Choose();

    std::vector<BoardEntry> entries_;
    QLineEdit* filter_;
    QTreeWidget* list_;
    QLabel* count_;
    QPushButton* accept_;
};
