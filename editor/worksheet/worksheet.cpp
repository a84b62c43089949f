#include "worksheet.h"

#include "editor_style.h"
#include "on_demand_accessibility.h"
#include "scintilla_text.h"
#include "source_link.h"

#include <QKeyEvent>

#include <algorithm>
#include <utility>

namespace {

constexpr std::size_t kPart = 65'536;            // bytes a turn
constexpr std::size_t kMostWaiting = 8'388'608;  // bytes
// Dropping moves the whole text, so it is done rarely.
constexpr int kLinesAfterDrop = 95'000;
constexpr long kBytesAfterDrop = Worksheet::kMaxBytes / 16 * 15;
constexpr std::string_view kTraceback = "Traceback (most recent call last):";
constexpr int kLinkIndicator = 8;
constexpr int kChosenMarker = 1;
constexpr int kMargin = 1;
constexpr int kMarginWidth = 8;  // pixels

// Appending to a million lines takes seconds instead of minutes while nobody is told of each.
class Unannounced {
  public:
    explicit Unannounced(QsciScintilla& editor)
        : editor_(editor),
          isReadOnly_(editor.isReadOnly()),
          mask_(Send(editor, QsciScintilla::SCI_GETMODEVENTMASK))
    {
        Send(editor_, QsciScintilla::SCI_SETMODEVENTMASK, 0);
        Send(editor_, QsciScintilla::SCI_SETREADONLY, 0);
        Send(editor_, QsciScintilla::SCI_SETUNDOCOLLECTION, 0);
    }
    Unannounced(const Unannounced&) = delete;
    Unannounced& operator=(const Unannounced&) = delete;
    ~Unannounced()
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
    turn_.setSingleShot(true);
    connect(&turn_, &QTimer::timeout, this, &Worksheet::AppendPart);
    marking_.setSingleShot(true);
    connect(&marking_, &QTimer::timeout, this, &Worksheet::MarkChanged);
}

void Worksheet::SetUpLinks()
{
    Send(*this, SCI_MARKERDEFINE, kChosenMarker, SC_MARK_EMPTY);
    indicatorDefine(PlainIndicator, kLinkIndicator);
    setIndicatorHoverStyle(TextColorIndicator, kLinkIndicator);  // Brings the hand, too.
    ApplyLinkStyle();
    connect(this, &QsciScintillaBase::SCN_MODIFIED, this,
            [this](int position, int type, const char*, int length) {
                NoteChange(position, type, length);
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
    waiting_ += utf8;
    while (waiting_.size() - taken_ > kMostWaiting) {
        AppendPart();
    }
    if (taken_ < waiting_.size() && !turn_.isActive()) {
        turn_.start();
    }
}

void Worksheet::AppendPart()
{
    const auto part = std::string_view(waiting_).substr(taken_, kPart);
    const long lastLine = LineStart(*this, lines() - 1);
    const long column = Send(*this, SCI_COUNTCODEUNITS, lastLine, Length(*this));
    const auto change = parser_.Feed(part, column);
    taken_ += part.size();
    if (taken_ >= waiting_.size() / 2) {
        waiting_.erase(0, std::exchange(taken_, 0));
    }
    Change(change);
    if (!waiting_.empty()) {
        turn_.start();
    }
}

void Worksheet::AppendAllThatWaits()
{
    while (!waiting_.empty()) {
        AppendPart();
    }
    turn_.stop();
}

void Worksheet::Change(const OutputChange& change)
{
    MarkChanged();  // What it goes by is moved here.
    const Unannounced whileChanging(*this);
    const bool follows = IsEndInSight(*this);
    const long lastLine = LineStart(*this, lines() - 1);
    if (change.erasesLastLine) {
        ReplaceBetween(*this, lastLine, Length(*this), {});
        Send(*this, SCI_EMPTYUNDOBUFFER);  // Its positions are no longer right.
    }
    const long oldEnd = Length(*this);
    const auto bytes = change.text.toUtf8();
    SendScintilla(SCI_APPENDTEXT, static_cast<unsigned long>(bytes.size()), bytes.constData());
    MarkLinks(lastLine, Length(*this));
    if (FirstLinkFrom(oldEnd)) {
        Send(*this, SCI_MARKERDELETEHANDLE, std::exchange(chosen_, -1));  // That one is old news.
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
    AppendAllThatWaits();
    return TextOf(*this);
}

void Worksheet::SetContent(const QString& text)
{
    Clear();
    const Unannounced whileChanging(*this);
    ReplaceBetween(*this, 0, 0, text.toUtf8());
    MarkLinks(0, Length(*this));
    DropOldLines();
    Send(*this, SCI_SETFIRSTVISIBLELINE, lines());
}

void Worksheet::Clear()
{
    waiting_.clear();
    taken_ = 0;
    turn_.stop();
    unchanged_.reset();
    parser_ = {};
    chosen_ = -1;
    const Unannounced whileChanging(*this);
    Send(*this, SCI_MARKERDELETEALL, kChosenMarker);
    Send(*this, SCI_CLEARALL);
    Send(*this, SCI_EMPTYUNDOBUFFER);
    Send(*this, SCI_SETSCROLLWIDTH, 1);
}

// All of the lines that the range touches.
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

// Before a change, the only time that Scintilla tells of it.
void Worksheet::NoteChange(int position, int type, int length)
{
    if ((type & kBeforeChange) == 0) {
        return;
    }
    const long deleted = (type & SC_MOD_BEFOREDELETE) != 0 ? length : 0;
    const Unchanged own{position, Length(*this) - position - deleted};
    if (unchanged_) {
        unchanged_->before = std::min(unchanged_->before, own.before);
        unchanged_->after = std::min(unchanged_->after, own.after);
        return;
    }
    unchanged_ = own;
    marking_.start();
}

void Worksheet::MarkChanged()
{
    if (const auto unchanged = std::exchange(unchanged_, std::nullopt)) {
        MarkLinks(unchanged->before, Length(*this) - unchanged->after);
    }
}

std::optional<long> Worksheet::FirstLinkFrom(long position) const
{
    // At the text's end Scintilla gives the value before it.
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

// Where it begins; the text's start when there is none.
long Worksheet::NewestTraceback() const
{
    Send(*this, SCI_SETSEARCHFLAGS, SCFIND_MATCHCASE);
    Send(*this, SCI_SETTARGETRANGE, Length(*this), 0);
    const long found = SendScintilla(SCI_SEARCHINTARGET, kTraceback.size(), kTraceback.data());
    return std::max(found, 0L);
}

bool Worksheet::GoToNextLink()
{
    AppendAllThatWaits();
    const long line = Send(*this, SCI_MARKERLINEFROMHANDLE, chosen_);
    auto link = FirstLinkFrom(line < 0 ? NewestTraceback() : LineEnd(*this, line));
    if (!link) {
        link = line < 0 ? LastLinkBefore(Length(*this)) : FirstLinkFrom(0);
    }
    return link && ChooseLinkAt(*link);
}

bool Worksheet::GoToPreviousLink()
{
    AppendAllThatWaits();
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
    SelectBetween(*this, LineEnd(*this, line), start);  // A long line's start is to be seen.
    Q_EMIT LinkChosen(link->path, link->line);
    return true;
}

void Worksheet::Click(int position)
{
    // Who drags over a link wants its text.
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
