#pragma once

#include "board_actions.h"

#include <QObject>

#include <string>
#include <vector>

class CommandMonitor;
struct BoardCommand;

// Asks what to do when a board is missing or has to be chosen, and when an upload was cut short. A
// question is withdrawn when events have answered it. [ui]
class BoardQuestions final : public QObject {
    Q_OBJECT

  public:
    // The referenced objects must outlive this one.
    BoardQuestions(BoardActions& actions, CommandMonitor& commands, BoardActions::Parts parts,
                   QObject* parent);

  private:
    void OfferBoards();
    void OfferVirtualBoard();
    void WithdrawAnsweredBoards();
    void ReportInterrupted(const BoardCommand& command, const std::vector<std::string>& words);

    BoardActions& actions_;
    BoardActions::Parts parts_;
};
