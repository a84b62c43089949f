#include "find_bar.h"

#include "editor_style.h"
#include "line_ending_table.h"
#include "line_label.h"
#include "match_marker.h"
#include "scintilla_text.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPushButton>
#include <QToolButton>

namespace {

constexpr int kMargin = 12;  // pixels
constexpr int kSpacing = 8;

constexpr const char* kTooComplex = "The expression is too complex for this text";

long PositionOf(const QString& text, qsizetype units)
{
    return QStringView(text).first(units).toUtf8().size();
}

void Select(QsciScintilla& editor, const QString& text, FoundText range)
{
    SelectBetween(editor, PositionOf(text, range.start),
                  PositionOf(text, range.start + range.length));
}

QLabel* MakeLabel(const QString& text, QWidget* field)
{
    auto* label = new QLabel(text);
    label->setBuddy(field);
    return label;
}

template <typename Action>
QPushButton* MakeButton(const QString& text, FindBar* bar, Action action)
{
    auto* button = new QPushButton(text);
    QObject::connect(button, &QPushButton::clicked, bar, action);
    return button;
}

}  // namespace

FindBar::FindBar(QWidget* parent)
    : QWidget(parent),
      searchText_(new QLineEdit(this)),
      replacement_(new QLineEdit(this)),
      matchCase_(new QCheckBox(tr("&Match case"), this)),
      wholeWords_(new QCheckBox(tr("Whole w&ords"), this)),
      regularExpression_(new QCheckBox(tr("Re&gular expression"), this)),
      result_(new LineLabel(this)),
      marker_(new MatchMarker(this))
{
    hide();
    auto* rows = new QGridLayout(this);
    rows->setContentsMargins(kMargin, kSpacing, kMargin, kSpacing);
    rows->setSpacing(kSpacing);
    rows->setColumnStretch(1, 1);
    MakeFindRow(*rows);
    MakeReplaceRow(*rows);
    MakeOptionsRow(*rows);
    setTabOrder(searchText_, replacement_);
    connect(marker_, &MatchMarker::Changed, this, &FindBar::ShowResult);
    connect(searchText_, &QLineEdit::textEdited, this, &FindBar::FindWhileTyping);
    for (auto* option : {matchCase_, wholeWords_, regularExpression_}) {
        connect(option, &QCheckBox::toggled, this, &FindBar::FindWhileTyping);
    }
}

void FindBar::MakeFindRow(QGridLayout& rows)
{
    searchText_->setAccessibleName(tr("Find"));
    rows.addWidget(MakeLabel(tr("Fi&nd:"), searchText_), 0, 0);
    rows.addWidget(searchText_, 0, 1);
    rows.addWidget(MakeButton(tr("Ne&xt"), this, &FindBar::FindNext), 0, 2);
    rows.addWidget(MakeButton(tr("Previo&us"), this, &FindBar::FindPrevious), 0, 3);
    rows.addWidget(MakeCloseButton(), 0, 4);
}

void FindBar::MakeReplaceRow(QGridLayout& rows)
{
    replacement_->setAccessibleName(tr("Replace with"));
    replaceRow_ = {MakeLabel(tr("Replace w&ith:"), replacement_), replacement_,
                   MakeButton(tr("Rep&lace"), this, &FindBar::Replace),
                   MakeButton(tr("Replace &all"), this, &FindBar::ReplaceAll)};
    for (int column = 0; auto* const widget : replaceRow_) {
        rows.addWidget(widget, 1, column++);
        widget->hide();
    }
}

void FindBar::MakeOptionsRow(QGridLayout& rows)
{
    auto* const row = new QHBoxLayout;
    row->setSpacing(kSpacing);
    for (auto* option : {matchCase_, wholeWords_, regularExpression_}) {
        row->addWidget(option);
    }
    result_->setAccessibleName(tr("Search result"));
    row->addWidget(result_, 1);
    rows.addLayout(row, 2, 0, 1, rows.columnCount());
}

QWidget* FindBar::MakeCloseButton()
{
    auto* close = new QToolButton;
    close->setText(QStringLiteral("×"));
    close->setAutoRaise(true);
    close->setFocusPolicy(Qt::TabFocus);
    close->setAccessibleName(tr("Close"));
    close->setToolTip(tr("Close (Esc)"));
    connect(close, &QToolButton::clicked, this, &FindBar::Close);
    return close;
}

void FindBar::SetEditor(QsciScintilla* editor)
{
    if (editor_ == editor) {
        return;
    }
    editor_ = editor;
    ShowMessage({});
    MarkMatches();
}

void FindBar::OpenForFind()
{
    Open(false);
}

void FindBar::OpenForReplace()
{
    Open(true);
}

void FindBar::Open(bool replaces)
{
    const QString selected = editor_ ? editor_->selectedText() : QString();
    if (!selected.isEmpty() && !selected.contains(u'\n') && !selected.contains(u'\r')) {
        searchText_->setText(selected);
    }
    searchText_->setClearButtonEnabled(true);  // Not at the start: finding its icon takes a while.
    ShowMessage({});
    for (auto* const widget : replaceRow_) {
        widget->setVisible(replaces);
    }
    show();
    MarkMatches();
    searchText_->setFocus();
    searchText_->selectAll();
}

void FindBar::Close()
{
    hide();
    marker_->Clear();
    if (editor_) {
        editor_->setFocus();
    }
}

void FindBar::FindNext()
{
    const auto selection = Selection();
    Find(selection.start + selection.length, true);
}

void FindBar::FindPrevious()
{
    Find(Selection().start, false);
}

// Starts at the selection's start, so that a match can grow with the search text.
void FindBar::FindWhileTyping()
{
    MarkMatches();
    Find(Selection().start, true);
}

std::expected<TextSearch, QString> FindBar::MakeSearch() const
{
    return TextSearch::Make(searchText_->text(), {matchCase_->isChecked(), wholeWords_->isChecked(),
                                                  regularExpression_->isChecked()});
}

// Marks the matches, unless the bar is hidden.
void FindBar::MarkMatches()
{
    const auto search = MakeSearch();
    if (editor_ && !isHidden() && search && !searchText_->text().isEmpty()) {
        marker_->Show(*editor_, *search);
    } else {
        marker_->Clear();
    }
    ShowResult();
}

std::optional<TextSearch> FindBar::Search()
{
    ShowMessage({});
    if (!editor_ || searchText_->text().isEmpty()) {
        return std::nullopt;
    }
    auto search = MakeSearch();
    if (!search) {
        ShowMessage(search.error(), Kind::Error);
        return std::nullopt;
    }
    return std::move(*search);
}

void FindBar::Find(qsizetype from, bool forward)
{
    const auto search = Search();
    if (!search) {
        return;
    }
    const QString text = TextOf(*editor_);
    auto found = forward ? search->FindFrom(text, from) : search->FindBefore(text, from);
    if (forward && found && *found == FoundText{from, 0}) {
        found = search->FindFrom(text, from + 1);  // Do not find the same empty match again.
    }
    hasWrapped_ = found && !*found;
    if (hasWrapped_) {
        found = forward ? search->FindFrom(text, 0) : search->FindBefore(text, text.size() + 1);
    }
    if (!found || !*found) {
        ShowMessage(found ? tr("No match") : tr(kTooComplex), Kind::Error);
        show();
        return;
    }
    Select(*editor_, text, **found);
    ShowResult();
}

FoundText FindBar::Selection() const
{
    if (!editor_) {
        return {};
    }
    const long start = Send(*editor_, QsciScintilla::SCI_GETSELECTIONSTART);
    const long end = Send(*editor_, QsciScintilla::SCI_GETSELECTIONEND);
    return {Send(*editor_, QsciScintilla::SCI_COUNTCODEUNITS, 0, start),
            Send(*editor_, QsciScintilla::SCI_COUNTCODEUNITS, start, end)};
}

bool FindBar::CanReplace()
{
    if (editor_ && editor_->isReadOnly()) {
        ShowMessage(tr("The text is read-only"), Kind::Error);
        return false;
    }
    return editor_;
}

void FindBar::Replace()
{
    const auto search = Search();
    if (!search || !CanReplace()) {
        return;
    }
    const QString text = TextOf(*editor_);
    const auto selection = Selection();
    if (const auto replacement = search->Replacement(text, selection, replacement_->text(),
                                                     LineEndingOf(*editor_).characters)) {
        const long start = PositionOf(text, selection.start);
        const auto bytes = replacement->toUtf8();
        ReplaceBetween(*editor_, start, PositionOf(text, selection.start + selection.length),
                       bytes);
        Send(*editor_, QsciScintilla::SCI_SETEMPTYSELECTION, start + bytes.size());
    }
    FindNext();
}

void FindBar::ReplaceAll()
{
    const auto search = Search();
    if (!search || !CanReplace()) {
        return;
    }
    const QString text = TextOf(*editor_);
    const auto replaced =
        search->ReplaceAll(text, replacement_->text(), LineEndingOf(*editor_).characters);
    if (!replaced) {
        ShowMessage(tr(kTooComplex), Kind::Error);
        return;
    }
    if (replaced->count == 0) {
        ShowMessage(tr("No match"), Kind::Error);
        return;
    }
    ReplaceBetween(*editor_, PositionOf(text, replaced->range.start),
                   PositionOf(text, replaced->range.start + replaced->range.length),
                   replaced->text.toUtf8());
    ShowMessage(replaced->count == 1 ? tr("1 match replaced")
                                     : tr("%1 matches replaced").arg(replaced->count));
}

// Another message, and the next search, replaces it.
void FindBar::ShowMessage(const QString& text, Kind kind)
{
    message_ = text;
    kind_ = kind;
    hasWrapped_ = false;
    ShowResult();
}

void FindBar::ShowResult()
{
    if (message_.isEmpty() && marker_->IsBusy()) {
        return;  // The old result remains for a moment, instead of nothing.
    }
    QPalette colors = palette();
    if (kind_ == Kind::Error) {
        colors.setColor(QPalette::WindowText, ColorsFor(colors).error);
    }
    result_->setPalette(colors);
    QString text = message_.isEmpty() ? CountText() : message_;
    if (message_.isEmpty() && hasWrapped_) {
        text = text.isEmpty() ? tr("Wrapped around") : tr("%1, wrapped around").arg(text);
    }
    result_->setText(text);
}

QString FindBar::CountText() const
{
    const auto count = marker_->count();
    if (!count || count->total == 0) {
        return {};
    }
    const QString total = (count->isLimited ? tr("over %1") : QStringLiteral("%1"))
                              .arg(QLocale().toString(static_cast<qulonglong>(count->total)));
    if (count->selected == 0) {
        return count->total == 1 ? tr("1 match") : tr("%1 matches").arg(total);
    }
    return tr("%1 of %2").arg(QLocale().toString(static_cast<qulonglong>(count->selected)), total);
}

void FindBar::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
        case Qt::Key_Escape: Close(); return;
        case Qt::Key_Return:
        case Qt::Key_Enter:
            if ((event->modifiers() & Qt::ShiftModifier) != 0) {
                FindPrevious();
            } else {
                FindNext();
            }
            return;
        default: QWidget::keyPressEvent(event);
    }
}

void FindBar::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) {
        marker_->Clear();
        MarkMatches();
    }
}
