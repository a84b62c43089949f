#include "worksheet.h"

#include "editor_style.h"
#include "link_marks.h"
#include "on_demand_accessibility.h"
#include "output_colors.h"
#include "scintilla_text.h"
#include "source_link.h"

#include <QKeyEvent>
#include <QRegularExpression>

#include <algorithm>
#include <utility>

namespace {

// Removing lines moves the whole text, so many are removed at once.
constexpr int kLinesAfterDrop = Worksheet::kMaxLines - Worksheet::kMaxLines / 20;
constexpr long kBytesAfterDrop = Worksheet::kMaxBytes - Worksheet::kMaxBytes / 16;
constexpr std::string_view kTraceback = "Traceback (most recent call last):";
constexpr int kChosenMarker = 1;
constexpr int kBeginningMarker = 2;
constexpr int kMargin = 1;
constexpr int kMarginWidth = 8;  // pixels

// The numbers of styles: 0 for plain text, then two for each colour, one of them bold. The smaller
// numbers are Scintilla's own.
constexpr int kFirstStyle = 40;
constexpr int kTracebackStyle = kFirstStyle + 2 * (TextStyle::kColors + 1);

int NumberOf(const TextStyle& style)
{
    return style == TextStyle() ? 0 : kFirstStyle + 2 * (style.color + 1) + (style.isBold ? 1 : 0);
}

// Whether the line, perhaps not complete yet, names an exception, as the last one of a traceback.
bool NamesException(const QByteArray& line)
{
    static const QRegularExpression name(R"(^[A-Za-z_][\w.]*(:|$))");
    return name.match(QString::fromUtf8(line)).hasMatch();
}

// Disables notifications, undo and read-only mode. Without notifications, appending a million lines
// takes seconds instead of minutes.
class NotificationBlocker {
  public:
    explicit NotificationBlocker(QsciScintilla& editor)
        : editor_(editor),
          isReadOnly_(editor.isReadOnly()),
          mask_(Send(editor, QsciScintilla::SCI_GETMODEVENTMASK))
    {
        Send(editor_, QsciScintilla::SCI_SETMODEVENTMASK, 0);
        Send(editor_, QsciScintilla::SCI_SETREADONLY, 0);
        Send(editor_, QsciScintilla::SCI_SETUNDOCOLLECTION, 0);
    }
    NotificationBlocker(const NotificationBlocker&) = delete;
    NotificationBlocker& operator=(const NotificationBlocker&) = delete;
    ~NotificationBlocker()
    {
        Send(editor_, QsciScintilla::SCI_SETUNDOCOLLECTION, 1);
        Send(editor_, QsciScintilla::SCI_SETREADONLY, isReadOnly_);
        Send(editor_, QsciScintilla::SCI_SETMODEVENTMASK, mask_);
    }

  private:
    QsciScintilla& editor_;
    bool isReadOnly_;
    long mask_;
};

void SetStyle(const QsciScintilla& editor, long start, long end, int style)
{
    Send(editor, QsciScintilla::SCI_STARTSTYLING, start);
    Send(editor, QsciScintilla::SCI_SETSTYLING, end - start, style);
}

// Sets the styles of output that was appended at a position.
void SetStyles(const QsciScintilla& editor, const OutputChange& change, long position)
{
    qsizetype units = 0;
    const auto advance = [&](qsizetype to) {
        position += QStringView(change.text).sliced(units, to - units).toUtf8().size();
        units = to;
        return position;
    };
    for (std::size_t i = 0; i < change.parts.size(); ++i) {
        const bool isLast = i + 1 == change.parts.size();
        const long start = advance(change.parts[i].start);
        const long end = advance(isLast ? change.text.size() : change.parts[i + 1].start);
        SetStyle(editor, start, end, NumberOf(change.parts[i].style));
    }
}

// A traceback is a heading, indented lines, and the name of an exception.
bool IsInTraceback(const QsciScintilla& editor, long line)
{
    const auto text = [&editor](long number) {
        return BytesBetween(editor, LineStart(editor, number), LineEnd(editor, number));
    };
    const auto isInside = [](const QByteArray& bytes) {
        return bytes.startsWith(' ') || bytes.contains(kTraceback.data());
    };
    const auto current = text(line);
    if (current.contains(kTraceback.data())) {
        return true;
    }
    const bool follows = line > 0 &&
                         Send(editor, QsciScintilla::SCI_GETSTYLEAT, LineStart(editor, line - 1)) ==
                             kTracebackStyle &&
                         isInside(text(line - 1));
    return follows && (current.startsWith(' ') || NamesException(current));
}

// Colours the tracebacks from the start of a line to the end of the text.
void ColorTracebacks(const QsciScintilla& editor, long start)
{
    const auto bytes = BytesBetween(editor, start, Length(editor));
    const QByteArrayView heading(kTraceback.data(), static_cast<qsizetype>(kTraceback.size()));
    for (long line = LineAt(editor, start); line < editor.lines(); ++line) {
        if (!IsInTraceback(editor, line)) {
            if (Send(editor, QsciScintilla::SCI_GETSTYLEAT, LineStart(editor, line)) ==
                kTracebackStyle) {
                SetStyle(editor, LineStart(editor, line), LineEnd(editor, line), 0);
            }
            const auto found = bytes.indexOf(heading, LineStart(editor, line) - start);
            if (found < 0) {
                return;
            }
            line = LineAt(editor, start + found);
        }
        SetStyle(editor, LineStart(editor, line), LineEnd(editor, line), kTracebackStyle);
    }
}

// The start of the newest traceback; 0 if there is none.
long NewestTraceback(const QsciScintilla& editor)
{
    Send(editor, QsciScintilla::SCI_SETSEARCHFLAGS, QsciScintilla::SCFIND_MATCHCASE);
    Send(editor, QsciScintilla::SCI_SETTARGETRANGE, Length(editor), 0);
    const long found = editor.SendScintilla(QsciScintilla::SCI_SEARCHINTARGET, kTraceback.size(),
                                            kTraceback.data());
    return std::max(found, 0L);
}

void SetUpMargin(QsciScintilla& editor)
{
    editor.setMarginType(kMargin, QsciScintilla::SymbolMarginDefaultBackgroundColor);
    editor.setMarginMarkerMask(kMargin, 1 << kBeginningMarker);
    editor.setMarginWidth(kMargin, kMarginWidth);
    editor.markerDefine(QsciScintilla::LeftRectangle, kBeginningMarker);
}

// Marks the line in the margin.
void MarkBeginning(const QsciScintilla& editor, long line)
{
    Send(editor, QsciScintilla::SCI_MARKERDELETE, line, kBeginningMarker);
    Send(editor, QsciScintilla::SCI_MARKERADD, line, kBeginningMarker);
}

bool IsRunChord(const QKeyEvent& event)
{
    const bool isReturn = event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
    return isReturn && (event.modifiers() & ~Qt::KeypadModifier) == Qt::ControlModifier;
}

}  // namespace

Worksheet::Worksheet(QWidget* parent)
    : QsciScintilla(parent),
      feed_({.lastColumn = [this] { return LastColumn(); },
             .apply = [this](const auto& change) { follower_.Change([&] { Apply(change); }); },
             .removeAll = [this] { follower_.Change([this] { RemoveAll(); }); }},
            {.lines = kMaxLines, .bytes = kMaxBytes})
{
    SetUpEditor(*this);
    SetUpMargin(*this);
    SetUpLinks();
    ApplyColors();
    markTimer_.setSingleShot(true);
    connect(&markTimer_, &QTimer::timeout, this, &Worksheet::MarkChanged);
}

void Worksheet::SetUpLinks()
{
    Send(*this, SCI_MARKERDEFINE, kChosenMarker, SC_MARK_EMPTY);
    indicatorDefine(PlainIndicator, kLinkIndicator);
    setIndicatorHoverStyle(TextColorIndicator, kLinkIndicator);  // Also shows the hand cursor.
    connect(this, &QsciScintillaBase::SCN_MODIFIED, this,
            [this](int position, int type, const char*, int length) {
                RecordChange(position, type, length);
            });
    connect(this, qOverload<int, int>(&QsciScintillaBase::SCN_INDICATORRELEASE), this,
            [this](int position) {
                // Dragging over a link selects its text.
                clicked_ = hasSelectedText() ? clicked_ : position;
            });
}

void Worksheet::ApplyColors()
{
    const auto& colors = ColorsFor(palette());
    const auto& output = OutputColors(palette().color(QPalette::Base));
    setMarkerBackgroundColor(colors.link, kBeginningMarker);
    setIndicatorForegroundColor(colors.link, kLinkIndicator);
    setIndicatorHoverForegroundColor(colors.link, kLinkIndicator);
    const auto apply = [this](int style, const QColor& color, bool isBold) {
        QFont font = EditorFont();
        font.setBold(isBold);
        QsciStyle(style, {}, color, palette().color(QPalette::Base), font).apply(this);
    };
    for (int color = -1; color < TextStyle::kColors; ++color) {
        for (const bool isBold : {false, true}) {
            const QColor plain = palette().color(QPalette::Text);
            apply(NumberOf({color, isBold}),
                  color < 0 ? plain : output.at(static_cast<std::size_t>(color)), isBold);
        }
    }
    apply(kTracebackStyle, colors.error, false);
}

void Worksheet::SetWraps(bool wraps)
{
    follower_.Change([&] {
        setWrapMode(wraps ? WrapCharacter : WrapNone);
        // A scroll bar that appears would wrap all lines again.
        setVerticalScrollBarPolicy(wraps ? Qt::ScrollBarAlwaysOn : Qt::ScrollBarAsNeeded);
    });
}

void Worksheet::FollowEnd()
{
    feed_.Then([this] { follower_.FollowEnd(); });
}

void Worksheet::BeginCommand()
{
    feed_.Then([this] {
        begins_ = true;
        caretBefore_ = Send(*this, SCI_GETCURRENTPOS);
    });
}

void Worksheet::EndCommand()
{
    feed_.Then([this] { LeaveCaretAtEnd(); });
}

void Worksheet::LeaveCaretAtEnd()
{
    const bool isSilent = std::exchange(begins_, false);
    const bool isCaretMoved =
        std::exchange(caretBefore_, -1) != Send(*this, SCI_GETCURRENTPOS) || hasSelectedText();
    if (isSilent || isCaretMoved) {
        return;
    }
    feed_.StartLine();
    follower_.Change([this] { Send(*this, SCI_SETEMPTYSELECTION, Length(*this)); });
}

qsizetype Worksheet::LastColumn() const
{
    return Send(*this, SCI_COUNTCODEUNITS, LineStart(*this, lines() - 1), Length(*this));
}

// Output follows that fills the whole text.
void Worksheet::RemoveAll()
{
    const NotificationBlocker blocker(*this);
    RemoveText(Length(*this));
    begins_ = false;
}

void Worksheet::Apply(const OutputChange& change)
{
    MarkChanged();  // The positions that it uses become invalid below.
    const NotificationBlocker blocker(*this);
    const long lastLine = LineStart(*this, lines() - 1);
    if (change.erasesLastLine) {
        ReplaceBetween(*this, lastLine, Length(*this), {});
        caretBefore_ = std::min(caretBefore_, lastLine);
        Send(*this, SCI_EMPTYUNDOBUFFER);  // Its positions are no longer valid.
    }
    const long oldEnd = Length(*this);
    const auto bytes = change.text.toUtf8();
    SendScintilla(SCI_APPENDTEXT, static_cast<unsigned long>(bytes.size()), bytes.constData());
    if (!bytes.isEmpty() && std::exchange(begins_, false)) {
        MarkBeginning(*this, LineAt(*this, lastLine));
    }
    SetStyles(*this, change, oldEnd);
    MarkLinks(*this, lastLine, Length(*this));
    ColorTracebacks(*this, lastLine);
    if (FirstLinkFrom(*this, oldEnd)) {
        // The next search starts at the new links.
        Send(*this, SCI_MARKERDELETEHANDLE, std::exchange(chosen_, -1));
    }
    DropOldLines();
}

void Worksheet::DropOldLines()
{
    long dropped = 0;
    if (lines() > kMaxLines) {
        dropped = lines() - kLinesAfterDrop;
    }
    if (Length(*this) > kMaxBytes) {
        dropped = std::max(dropped, LineAt(*this, Length(*this) - kBytesAfterDrop));
    }
    if (dropped == 0) {
        return;
    }
    RemoveText(LineStart(*this, dropped));
}

// Removes the text before the position. Notifications must be disabled.
void Worksheet::RemoveText(long end)
{
    // The marks of deleted lines would be moved to the first one that remains.
    const long lastLine = LineAt(*this, end);
    for (int line = 0;
         (line = markerFindNext(line, 1U << kBeginningMarker)) >= 0 && line < lastLine;) {
        markerDelete(line, kBeginningMarker);
    }
    Send(*this, SCI_DELETERANGE, 0, end);
    caretBefore_ = caretBefore_ < 0 ? -1 : std::max(0L, caretBefore_ - end);
    Send(*this, SCI_EMPTYUNDOBUFFER);
}

QString Worksheet::Content()
{
    feed_.Flush();
    return TextOf(*this);
}

void Worksheet::SetContent(const QString& text)
{
    ClearAll();
    const NotificationBlocker blocker(*this);
    ReplaceBetween(*this, 0, 0, text.toUtf8());
    MarkLinks(*this, 0, Length(*this));
    ColorTracebacks(*this, 0);
    DropOldLines();
    follower_.FollowEnd();
}

void Worksheet::ClearAll()
{
    feed_.Clear();
    unchanged_.reset();
    chosen_ = -1;
    caretBefore_ = std::min(caretBefore_, 0L);
    const NotificationBlocker blocker(*this);
    Send(*this, SCI_MARKERDELETEALL, -1);
    Send(*this, SCI_CLEARALL);
    Send(*this, SCI_EMPTYUNDOBUFFER);
    Send(*this, SCI_SETSCROLLWIDTH, 1);
    follower_.Reset();
}

// Called before a change: notifications after a change are disabled (on_demand_accessibility.h).
void Worksheet::RecordChange(int position, int type, int length)
{
    if ((type & kBeforeChange) == 0) {
        return;
    }
    const long deleted = (type & SC_MOD_BEFOREDELETE) != 0 ? length : 0;
    const Unchanged change{position, Length(*this) - position - deleted};
    if (unchanged_) {
        unchanged_->before = std::min(unchanged_->before, change.before);
        unchanged_->after = std::min(unchanged_->after, change.after);
        return;
    }
    unchanged_ = change;
    markTimer_.start();
}

void Worksheet::MarkChanged()
{
    if (const auto unchanged = std::exchange(unchanged_, std::nullopt)) {
        MarkLinks(*this, unchanged->before, Length(*this) - unchanged->after);
    }
}

bool Worksheet::GoToNextLink()
{
    feed_.Flush();
    const long line = Send(*this, SCI_MARKERLINEFROMHANDLE, chosen_);
    auto link = FirstLinkFrom(*this, line < 0 ? NewestTraceback(*this) : LineEnd(*this, line));
    if (!link) {
        link = line < 0 ? LastLinkBefore(*this, Length(*this)) : FirstLinkFrom(*this, 0);
    }
    return link && ChooseLinkAt(*link);
}

bool Worksheet::GoToPreviousLink()
{
    feed_.Flush();
    const long line = Send(*this, SCI_MARKERLINEFROMHANDLE, chosen_);
    auto link = line < 0 ? std::nullopt : LastLinkBefore(*this, LineStart(*this, line));
    link = link ? link : LastLinkBefore(*this, Length(*this));
    return link && ChooseLinkAt(*link);
}

bool Worksheet::ChooseLinkAt(long position)
{
    const long line = LineAt(*this, position);
    const long start = LineStart(*this, line);
    const auto column = Send(*this, SCI_COUNTCODEUNITS, start, position);
    const auto link = FindSourceLink(TextBetween(*this, start, LineEnd(*this, line)), column);
    if (!link) {
        return false;
    }
    Send(*this, SCI_MARKERDELETEHANDLE, chosen_);
    chosen_ = Send(*this, SCI_MARKERADD, line, kChosenMarker);
    SelectBetween(*this, LineEnd(*this, line), start);  // Keep the start of a long line visible.
    Q_EMIT LinkChosen(link->path, link->line);
    return true;
}

QByteArray Worksheet::fromMimeData(const QMimeData* source, bool& rectangular) const
{
    auto bytes = QsciScintilla::fromMimeData(source, rectangular);
    if (bytes.size() <= OutputText::kMaxLineLength) {
        return bytes;
    }
    QString text;
    for (QString line : QString::fromUtf8(bytes).split('\n')) {
        while (line.size() > OutputText::kMaxLineLength) {
            const bool dividesPair = line[OutputText::kMaxLineLength].isLowSurrogate();
            const auto length = OutputText::kMaxLineLength - (dividesPair ? 1 : 0);
            text += line.first(length) + '\n';
            line.remove(0, length);
        }
        text += line + '\n';
    }
    text.chop(1);
    return text.toUtf8();
}

// Scintilla reports the click before it changes the selection.
void Worksheet::mouseReleaseEvent(QMouseEvent* event)
{
    QsciScintilla::mouseReleaseEvent(event);
    if (const auto position = std::exchange(clicked_, std::nullopt)) {
        ChooseLinkAt(*position);
    }
}

void Worksheet::RequestRun()
{
    const long start = Send(*this, SCI_GETSELECTIONSTART);
    const long end = Send(*this, SCI_GETSELECTIONEND);
    const long line = LineAt(*this, start);
    const QString text = start < end
                             ? TextBetween(*this, start, end)
                             : TextBetween(*this, LineStart(*this, line), LineEnd(*this, line));
    if (!text.trimmed().isEmpty()) {
        Q_EMIT RunRequested(text);
    }
}

bool Worksheet::event(QEvent* event)
{
    if (event->type() == QEvent::ShortcutOverride && IsRunChord(*static_cast<QKeyEvent*>(event))) {
        event->accept();
        return true;
    }
    return QsciScintilla::event(event);
}

void Worksheet::keyPressEvent(QKeyEvent* event)
{
    if (IsRunChord(*event)) {
        RequestRun();
    } else if (IsControlChord(*event)) {
        event->ignore();
    } else {
        QsciScintilla::keyPressEvent(event);
    }
}

void Worksheet::resizeEvent(QResizeEvent* event)
{
    follower_.Change([&] { QsciScintilla::resizeEvent(event); });
}

void Worksheet::changeEvent(QEvent* event)
{
    QsciScintilla::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) {
        ApplyStyle(*this);
        ApplyColors();
    }
}
