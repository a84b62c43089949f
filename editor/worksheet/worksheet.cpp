#include "worksheet.h"

#include "editor_style.h"
#include "on_demand_accessibility.h"
#include "scintilla_text.h"
#include "source_link.h"

#include <QKeyEvent>

#include <algorithm>
#include <utility>

namespace {

constexpr std::size_t kChunkSize = 65'536;      // bytes a turn
constexpr std::size_t kMaxPending = 8'388'608;  // bytes
// Removing lines moves the whole text, so many are removed at once.
constexpr int kLinesAfterDrop = 95'000;
constexpr long kBytesAfterDrop = Worksheet::kMaxBytes / 16 * 15;
constexpr std::string_view kTraceback = "Traceback (most recent call last):";
constexpr int kLinkIndicator = 8;
constexpr int kChosenMarker = 1;
constexpr int kMargin = 1;
constexpr int kMarginWidth = 8;  // pixels

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

bool IsEndInSight(const QsciScintilla& editor)
{
    return Send(editor, QsciScintilla::SCI_GETFIRSTVISIBLELINE) +
               Send(editor, QsciScintilla::SCI_LINESONSCREEN) >=
           Send(editor, QsciScintilla::SCI_GETLINECOUNT);
}

bool IsRunChord(const QKeyEvent& event)
{
    const bool isReturn = event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
    return isReturn && (event.modifiers() & ~Qt::KeypadModifier) == Qt::ControlModifier;
}

}  // namespace

Worksheet::Worksheet(QWidget* parent) : QsciScintilla(parent)
{
    SetUpEditor(*this);
    setMarginType(kMargin, SymbolMarginDefaultBackgroundColor);
    setMarginMarkerMask(kMargin, 0);
    setMarginWidth(kMargin, kMarginWidth);
    SetUpLinks();
    appendTimer_.setSingleShot(true);
    connect(&appendTimer_, &QTimer::timeout, this, &Worksheet::AppendChunk);
    markTimer_.setSingleShot(true);
    connect(&markTimer_, &QTimer::timeout, this, &Worksheet::MarkChanged);
}

void Worksheet::SetUpLinks()
{
    Send(*this, SCI_MARKERDEFINE, kChosenMarker, SC_MARK_EMPTY);
    indicatorDefine(PlainIndicator, kLinkIndicator);
    setIndicatorHoverStyle(TextColorIndicator, kLinkIndicator);  // Also shows the hand cursor.
    ApplyLinkStyle();
    connect(this, &QsciScintillaBase::SCN_MODIFIED, this,
            [this](int position, int type, const char*, int length) {
                RecordChange(position, type, length);
            });
    connect(this, qOverload<int, int>(&QsciScintillaBase::SCN_INDICATORRELEASE), this,
            [this](int position) { Click(position); });
}

void Worksheet::ApplyLinkStyle()
{
    const QColor link = ColorsFor(palette()).link;
    setIndicatorForegroundColor(link, kLinkIndicator);
    setIndicatorHoverForegroundColor(link, kLinkIndicator);
}

void Worksheet::Append(std::string_view utf8)
{
    pending_ += utf8;
    while (pending_.size() - consumed_ > kMaxPending) {
        AppendChunk();
    }
    if (consumed_ < pending_.size() && !appendTimer_.isActive()) {
        appendTimer_.start();
    }
}

void Worksheet::AppendChunk()
{
    const auto part = std::string_view(pending_).substr(consumed_, kChunkSize);
    const long lastLine = LineStart(*this, lines() - 1);
    const long column = Send(*this, SCI_COUNTCODEUNITS, lastLine, Length(*this));
    const auto change = parser_.Feed(part, column);
    consumed_ += part.size();
    if (consumed_ >= pending_.size() / 2) {
        pending_.erase(0, std::exchange(consumed_, 0));
    }
    Apply(change);
    if (!pending_.empty()) {
        appendTimer_.start();
    }
}

void Worksheet::AppendPending()
{
    while (!pending_.empty()) {
        AppendChunk();
    }
    appendTimer_.stop();
}

void Worksheet::Apply(const OutputChange& change)
{
    MarkChanged();  // The positions that it uses become invalid below.
    const NotificationBlocker blocker(*this);
    const bool follows = IsEndInSight(*this);
    const long lastLine = LineStart(*this, lines() - 1);
    if (change.erasesLastLine) {
        ReplaceBetween(*this, lastLine, Length(*this), {});
        Send(*this, SCI_EMPTYUNDOBUFFER);  // Its positions are no longer valid.
    }
    const long oldEnd = Length(*this);
    const auto bytes = change.text.toUtf8();
    SendScintilla(SCI_APPENDTEXT, static_cast<unsigned long>(bytes.size()), bytes.constData());
    MarkLinks(lastLine, Length(*this));
    if (FirstLinkFrom(oldEnd)) {
        // The next search starts at the new links.
        Send(*this, SCI_MARKERDELETEHANDLE, std::exchange(chosen_, -1));
    }
    DropOldLines();
    if (follows) {
        Send(*this, SCI_SETFIRSTVISIBLELINE, lines());
    }
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
    Send(*this, SCI_DELETERANGE, 0, LineStart(*this, dropped));
    Send(*this, SCI_EMPTYUNDOBUFFER);
}

QString Worksheet::Content()
{
    AppendPending();
    return TextOf(*this);
}

void Worksheet::SetContent(const QString& text)
{
    ClearAll();
    const NotificationBlocker blocker(*this);
    ReplaceBetween(*this, 0, 0, text.toUtf8());
    MarkLinks(0, Length(*this));
    DropOldLines();
    Send(*this, SCI_SETFIRSTVISIBLELINE, lines());
}

void Worksheet::ClearAll()
{
    pending_.clear();
    consumed_ = 0;
    appendTimer_.stop();
    unchanged_.reset();
    parser_ = {};
    chosen_ = -1;
    const NotificationBlocker blocker(*this);
    Send(*this, SCI_MARKERDELETEALL, kChosenMarker);
    Send(*this, SCI_CLEARALL);
    Send(*this, SCI_EMPTYUNDOBUFFER);
    Send(*this, SCI_SETSCROLLWIDTH, 1);
}

// Marks the links on all lines that the range touches.
void Worksheet::MarkLinks(long start, long end)
{
    start = LineStart(*this, LineAt(*this, start));
    end = LineEnd(*this, LineAt(*this, end));
    Send(*this, SCI_SETINDICATORCURRENT, kLinkIndicator);
    Send(*this, SCI_INDICATORCLEARRANGE, start, end - start);
    const auto bytes = BytesBetween(*this, start, end);
    for (qsizetype at = 0; (at = bytes.indexOf("File ", at)) >= 0;) {
        const long line = LineAt(*this, start + at);
        const long lineStart = LineStart(*this, line);
        const auto text = TextBetween(*this, lineStart, LineEnd(*this, line));
        if (const auto link = FindSourceLink(text)) {
            const auto before = QStringView(text).first(link->start).toUtf8().size();
            const auto all = QStringView(text).first(link->start + link->length).toUtf8().size();
            Send(*this, SCI_INDICATORFILLRANGE, lineStart + before, all - before);
        }
        at = LineEnd(*this, line) - start;
    }
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
        MarkLinks(unchanged->before, Length(*this) - unchanged->after);
    }
}

std::optional<long> Worksheet::FirstLinkFrom(long position) const
{
    // At the end of the text Scintilla returns the value of the last character.
    const auto isLink = [this](long at) {
        return at < Length(*this) && Send(*this, SCI_INDICATORVALUEAT, kLinkIndicator, at) != 0;
    };
    if (isLink(position)) {
        return position;
    }
    const long next = Send(*this, SCI_INDICATOREND, kLinkIndicator, position);
    return next > position && isLink(next) ? std::optional(next) : std::nullopt;
}

std::optional<long> Worksheet::LastLinkBefore(long position) const
{
    const auto startBefore = [this](long at) {
        return Send(*this, SCI_INDICATORSTART, kLinkIndicator, at - 1);
    };
    const auto isLinkBefore = [this](long at) {
        return at > 0 && Send(*this, SCI_INDICATORVALUEAT, kLinkIndicator, at - 1) != 0;
    };
    if (position > 0 && !isLinkBefore(position)) {
        position = startBefore(position);
    }
    return isLinkBefore(position) ? std::optional(startBefore(position)) : std::nullopt;
}

// The start of the newest traceback; 0 if there is none.
long Worksheet::NewestTraceback() const
{
    Send(*this, SCI_SETSEARCHFLAGS, SCFIND_MATCHCASE);
    Send(*this, SCI_SETTARGETRANGE, Length(*this), 0);
    const long found = SendScintilla(SCI_SEARCHINTARGET, kTraceback.size(), kTraceback.data());
    return std::max(found, 0L);
}

bool Worksheet::GoToNextLink()
{
    AppendPending();
    const long line = Send(*this, SCI_MARKERLINEFROMHANDLE, chosen_);
    auto link = FirstLinkFrom(line < 0 ? NewestTraceback() : LineEnd(*this, line));
    if (!link) {
        link = line < 0 ? LastLinkBefore(Length(*this)) : FirstLinkFrom(0);
    }
    return link && ChooseLinkAt(*link);
}

bool Worksheet::GoToPreviousLink()
{
    AppendPending();
    const long line = Send(*this, SCI_MARKERLINEFROMHANDLE, chosen_);
    auto link = line < 0 ? std::nullopt : LastLinkBefore(LineStart(*this, line));
    link = link ? link : LastLinkBefore(Length(*this));
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

void Worksheet::Click(int position)
{
    // Dragging over a link selects its text.
    if (!hasSelectedText()) {
        ChooseLinkAt(position);
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

void Worksheet::changeEvent(QEvent* event)
{
    QsciScintilla::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) {
        ApplyStyle(*this);
        ApplyLinkStyle();
    }
}
