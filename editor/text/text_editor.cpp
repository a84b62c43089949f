#include "text_editor.h"

#include "bracket_match.h"
#include "document_file.h"
#include "dropped_files.h"
#include "editor_style.h"
#include "gradual_styling.h"
#include "line_ending_table.h"
#include "on_demand_accessibility.h"
#include "python_lexer.h"
#include "scintilla_text.h"

#include <QDropEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QUrl>

#include <algorithm>
#include <set>
#include <string_view>

namespace {

constexpr int kIndent = 4;  // spaces
constexpr int kNumberMargin = 0;
constexpr int kPaddingMargin = 1;
constexpr int kPadding = 8;                // pixels
constexpr qsizetype kRoomToType = 65'536;  // bytes

QsciScintilla::EolMode ModeFor(const QString& text)
{
    return RowOf(DominantLineEnding(text)).mode;
}

bool IsSpaceOrTab(char c)
{
    return c == ' ' || c == '\t';
}

long IndentLength(const QByteArray& line)
{
    return std::find_if_not(line.begin(), line.end(), IsSpaceOrTab) - line.begin();
}

// The statements that end a block.
const std::set<std::string_view> kLastStatements{"return", "pass", "break", "continue", "raise"};

const std::set<long> kStylesOfLongStrings{
    QsciLexerPython::TripleSingleQuotedString, QsciLexerPython::TripleDoubleQuotedString,
    QsciLexerPython::TripleSingleQuotedFString, QsciLexerPython::TripleDoubleQuotedFString};

std::string_view FirstWord(std::string_view code)
{
    const auto isLetter = [](char c) { return c >= 'a' && c <= 'z'; };
    const auto end = std::ranges::find_if_not(code, isLetter);
    return code.substr(0, static_cast<std::size_t>(end - code.begin()));
}

int DepthChange(char c)
{
    if (c == '(' || c == '[' || c == '{') {
        return 1;
    }
    return c == ')' || c == ']' || c == '}' ? -1 : 0;
}

qsizetype DigitsOf(int lineCount)
{
    constexpr qsizetype kMinDigits = 3;
    return std::max(kMinDigits, QString::number(lineCount).size());
}

// Combines changes into one undo step.
class UndoStep {
  public:
    explicit UndoStep(QsciScintilla& editor) : editor_(editor) { editor_.beginUndoAction(); }
    UndoStep(const UndoStep&) = delete;
    UndoStep& operator=(const UndoStep&) = delete;
    ~UndoStep() { editor_.endUndoAction(); }

  private:
    QsciScintilla& editor_;
};

}  // namespace

TextEditor::TextEditor(QWidget* parent)
    : QsciScintilla(parent), lexer_(new PythonLexer(this)), styling_(new GradualStyling(*this))
{
    SetUpEditor(*this);
    SetUpKeys();
    SetUpMargins();
    setIndentationGuides(true);
    connect(this, &QsciScintillaBase::SCN_CHARADDED, this, &TextEditor::IndentNewLine);
    connect(this, &QsciScintillaBase::SCN_MODIFIED, this, [this](int, int type) {
        if ((type & kBeforeChange) != 0) {
            Q_EMIT Changing();
        }
    });
    connect(this, &QsciScintillaBase::SCN_UPDATEUI, this, [this] {
        UpdateNumberMargin();
        MarkBracketsAtCaret(*this);
    });
    connect(this, &QsciScintillaBase::SCN_ZOOM, this, &TextEditor::FitNumberMargin);
}

void TextEditor::SetUpKeys()
{
    setTabWidth(kIndent);
    setIndentationWidth(kIndent);
    setIndentationsUseTabs(false);
    setBackspaceUnindents(true);
}

void TextEditor::SetUpMargins()
{
    setMarginLineNumbers(kNumberMargin, true);
    setMarginType(kPaddingMargin, SymbolMarginDefaultBackgroundColor);
    setMarginMarkerMask(kPaddingMargin, 0);
    setMarginWidth(kPaddingMargin, kPadding);
    FitNumberMargin();
}

void TextEditor::FitNumberMargin()
{
    digits_ = DigitsOf(lines());
    setMarginWidth(kNumberMargin, QString(digits_ + 1, u'9'));
}

void TextEditor::UpdateNumberMargin()
{
    if (DigitsOf(lines()) != digits_) {
        FitNumberMargin();
    }
}

void TextEditor::SetLanguage(Language language)
{
    isPython_ = language == Language::Python;
    lexer_->ApplyColors(palette());
    setLexer(isPython_ ? lexer_ : nullptr);
    ApplyStyle(*this);
    FitNumberMargin();
}

void TextEditor::SetContent(const QString& text)
{
    const auto bytes = text.toUtf8();
    // Otherwise the first character that is typed would move the whole text to larger memory.
    Send(*this, SCI_ALLOCATE, bytes.size() + kRoomToType);
    Send(*this, SCI_SETUNDOCOLLECTION, 0);
    ReplaceBetween(*this, 0, Length(*this), bytes);
    Send(*this, SCI_SETUNDOCOLLECTION, 1);
    Send(*this, SCI_EMPTYUNDOBUFFER);
    UpdateNumberMargin();
    setEolMode(ModeFor(text));
    setModified(false);
    Send(*this, SCI_GOTOPOS, 0);
}

void TextEditor::ReplaceContent(const QString& text)
{
    const long line = CaretLine() - 1;
    const long column = Send(*this, SCI_GETCURRENTPOS) - LineStart(*this, line);
    const long firstVisible = Send(*this, SCI_GETFIRSTVISIBLELINE);
    ReplaceBetween(*this, 0, Length(*this), text.toUtf8());
    const long start = LineStart(*this, std::min<long>(line, lines() - 1));
    const long end = LineEnd(*this, LineAt(*this, start));
    // Do not place the caret inside a character.
    const long before = Send(*this, SCI_POSITIONBEFORE, std::min(start + column, end) + 1);
    Send(*this, SCI_SETEMPTYSELECTION, std::max(start, before));
    UpdateNumberMargin();
    Send(*this, SCI_SETFIRSTVISIBLELINE, firstVisible);
    setEolMode(ModeFor(text));
    setModified(false);
}

QByteArray TextEditor::Utf8() const
{
    return BytesBetween(*this, 0, Length(*this));
}

QString TextEditor::Content() const
{
    return TextOf(*this);
}

std::vector<long> TextEditor::SelectedLines() const
{
    const long start = Send(*this, SCI_GETSELECTIONSTART);
    const long end = Send(*this, SCI_GETSELECTIONEND);
    const long first = LineAt(*this, start);
    long last = LineAt(*this, end);
    if (last > first && end == LineStart(*this, last)) {
        --last;  // Nothing on the last line is selected.
    }
    std::vector<long> selected;
    for (long line = first; line <= last; ++line) {
        selected.push_back(line);
    }
    return selected;
}

void TextEditor::ToggleComment()
{
    struct Line {
        long start;
        QByteArray text;
    };
    std::vector<Line> code;
    long indent = -1;
    bool areComments = true;
    for (const long number : SelectedLines()) {
        const long start = LineStart(*this, number);
        const auto text = BytesBetween(*this, start, LineEnd(*this, number));
        const long indentLength = IndentLength(text);
        if (indentLength < text.size()) {
            code.push_back({start, text});
            indent = indent < 0 ? indentLength : std::min(indent, indentLength);
            areComments = areComments && text.at(indentLength) == '#';
        }
    }
    std::ranges::reverse(code);  // Changing the last line first keeps the other positions valid.
    const UndoStep step(*this);
    for (const auto& [start, text] : code) {
        if (areComments) {
            const long mark = IndentLength(text);
            const bool hasSpace = mark + 1 < text.size() && text.at(mark + 1) == ' ';
            ReplaceBetween(*this, start + mark, start + mark + (hasSpace ? 2 : 1), {});
        } else {
            Comment(start + indent);
        }
    }
}

void TextEditor::Comment(long position)
{
    const QByteArray mark = "# ";
    const bool isCaretHere = !hasSelectedText() && Send(*this, SCI_GETCURRENTPOS) == position;
    ReplaceBetween(*this, position, position, mark);
    if (isCaretHere) {
        Send(*this, SCI_SETEMPTYSELECTION, position + mark.size());
    }
}

bool TextEditor::canInsertFromMimeData(const QMimeData* source) const
{
    if (!QsciScintilla::canInsertFromMimeData(source)) {
        return false;
    }
    const QString text = source->text();
    if (!FirstTooLongLine(text)) {
        return true;
    }
    Q_EMIT LongLineRefused(text);
    return false;
}

void TextEditor::Insert(QString text)
{
    text.replace("\r\n", "\n").replace('\r', '\n').replace('\n', LineEndingOf(*this).characters);
    const auto bytes = text.toUtf8();
    const long start = Send(*this, SCI_GETSELECTIONSTART);
    ReplaceBetween(*this, start, Send(*this, SCI_GETSELECTIONEND), bytes);
    Send(*this, SCI_GOTOPOS, start + bytes.size());
}

void TextEditor::GoToLine(int line)
{
    const long start = LineStart(*this, std::clamp(line, 1, lines()) - 1);
    SelectBetween(*this, start, start);
    setFocus();
}

int TextEditor::CaretLine() const
{
    return static_cast<int>(LineAt(*this, Send(*this, SCI_GETCURRENTPOS))) + 1;
}

int TextEditor::CaretColumn() const
{
    const long caret = Send(*this, SCI_GETCURRENTPOS);
    const long start = LineStart(*this, CaretLine() - 1);
    return static_cast<int>(Send(*this, SCI_COUNTCHARACTERS, start, caret)) + 1;
}

// QScintilla's own auto-indentation also reacts to colons in previous lines and in comments.
void TextEditor::IndentNewLine(int character)
{
    const long line = CaretLine() - 1;
    if (character != std::string_view(LineEndingOf(*this).characters).back() || line == 0) {
        return;
    }
    const bool isAtEnd = LineStart(*this, line) == LineEnd(*this, line);
    QByteArray indent = IndentOf(line - 1);
    if (OpensBlock(line - 1)) {
        indent.append(kIndent, ' ');
    } else if (isAtEnd && EndsBlock(line - 1)) {
        indent = IndentAround(line - 1);
    }
    const long caret = Send(*this, SCI_GETCURRENTPOS);
    ReplaceBetween(*this, caret, caret, indent);
    Send(*this, SCI_GOTOPOS, caret + indent.size());
}

bool TextEditor::OpensBlock(long line) const
{
    if (!isPython_) {
        return false;
    }
    const long start = LineStart(*this, line);
    long at = LineEnd(*this, line);
    StyleUpTo(at);
    while (at > start) {
        --at;
        const auto c = static_cast<char>(Send(*this, SCI_GETCHARAT, at));
        const long style = Send(*this, SCI_GETSTYLEAT, at);
        const bool isComment =
            style == QsciLexerPython::Comment || style == QsciLexerPython::CommentBlock;
        if (!isComment && !IsSpaceOrTab(c)) {
            return c == ':' && style == QsciLexerPython::Operator;
        }
    }
    return false;
}

// Whether the line is a whole statement after which Python does not continue the block.
bool TextEditor::EndsBlock(long line) const
{
    const QByteArray indent = IndentOf(line);
    const long start = LineStart(*this, line) + indent.size();
    const long end = LineEnd(*this, line);
    const QByteArray code = BytesBetween(*this, start, end);
    const auto word = std::string_view(code.constData(), static_cast<std::size_t>(code.size()));
    if (!isPython_ || indent.isEmpty() || !kLastStatements.contains(FirstWord(word))) {
        return false;
    }
    StyleUpTo(end + 1);
    int depth = 0;
    for (long at = start; at < end; ++at) {
        if (Send(*this, SCI_GETSTYLEAT, at) == QsciLexerPython::Operator) {
            depth += DepthChange(code.at(at - start));
        }
    }
    const bool continues = depth > 0 || code.endsWith('\\') ||
                           kStylesOfLongStrings.contains(Send(*this, SCI_GETSTYLEAT, end));
    return Send(*this, SCI_GETSTYLEAT, start) == QsciLexerPython::Keyword && !continues;
}

QByteArray TextEditor::IndentOf(long line) const
{
    const auto text = BytesBetween(*this, LineStart(*this, line), LineEnd(*this, line));
    return text.first(IndentLength(text));
}

// The indentation of the nearest line above that is indented less: that of the enclosing block.
QByteArray TextEditor::IndentAround(long line) const
{
    constexpr long kMaxDistance = 1000;  // lines
    const auto inner = IndentOf(line).size();
    for (long above = line - 1; above >= std::max(0L, line - kMaxDistance); --above) {
        const QByteArray indent = IndentOf(above);
        const auto first =
            static_cast<char>(Send(*this, SCI_GETCHARAT, LineStart(*this, above) + indent.size()));
        const bool isCode = first != '\n' && first != '\r' && first != '#';
        if (isCode && indent.size() < inner) {
            return indent;
        }
    }
    return {};
}

void TextEditor::StyleUpTo(long position) const
{
    Send(*this, SCI_COLOURISE, Send(*this, SCI_GETENDSTYLED), position);
}

void TextEditor::changeEvent(QEvent* event)
{
    QsciScintilla::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) {
        lexer_->ApplyColors(palette());
        ApplyStyle(*this);
    }
}

void TextEditor::dragEnterEvent(QDragEnterEvent* event)
{
    dragMoveEvent(event);
}

void TextEditor::dragMoveEvent(QDragMoveEvent* event)
{
    if (LocalFiles(*event->mimeData()).isEmpty()) {
        QsciScintilla::dragMoveEvent(event);
    } else {
        AcceptAsCopy(event);
    }
}

void TextEditor::dropEvent(QDropEvent* event)
{
    const auto paths = LocalFiles(*event->mimeData());
    if (paths.isEmpty()) {
        QsciScintilla::dropEvent(event);
        return;
    }
    AcceptAsCopy(event);
    Q_EMIT FilesDropped(paths);
}

void TextEditor::paintEvent(QPaintEvent* event)
{
    styling_->Prepare();
    QsciScintilla::paintEvent(event);
}

void TextEditor::keyPressEvent(QKeyEvent* event)
{
    if (IsControlChord(*event)) {
        event->ignore();
        return;
    }
    QsciScintilla::keyPressEvent(event);
}
