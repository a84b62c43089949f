#pragma once

class BoardActions;
class BoardDocuments;
class BoardMonitor;
class BoardPanel;
class BoardPrompt;
class DocumentTabs;
class FileActions;
class FindBar;
class FrontSaver;
class InputField;
class MessageArea;
class PluginActions;
class Project;
class QMainWindow;
class QSplitter;
class TextActions;
class Worksheet;
class WorksheetActions;

// The parts of the editor's window, which owns them.
struct EditorParts {
    QMainWindow& window;
    QSplitter& splitter;  // The documents and the worksheet.
    QSplitter& columns;   // The splitter above, and the board panel.
    BoardPanel& boardPanel;
    MessageArea& messages;
    DocumentTabs& tabs;
    FindBar& findBar;
    Worksheet& worksheet;
    InputField& input;
    Project& project;
    BoardMonitor& board;
    FileActions& files;
    TextActions& texts;
    FrontSaver& frontSaver;
    PluginActions& commands;
    WorksheetActions& worksheetActions;
    BoardPrompt& prompt;
    BoardActions& boardActions;
    BoardDocuments& boardDocuments;
};
