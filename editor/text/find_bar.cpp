#include "find_bar.h"

#include "editor_style.h"
#include "scintilla_text.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
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

QString LineEndingOf(const QsciScintilla& editor)
{
    switch (editor.eolMode()) {
        case QsciScintilla::EolWindows: return "\r\n";
        case QsciScintilla::EolMac: return "\r";
        case QsciScintilla::EolUnix: break;
    }
    return "\n";
}

void Select(QsciScintilla& editor, const QString& text, FoundText range)
{
    SelectBetween(editor, PositionOf(text, range.start),
                  PositionOf(text, range.start + range.length));
}

QHBoxLayout* MakeRowLayout(QWidget* row)
{
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(kSpacing);
    return layout;
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
      message_(new QLabel(this))
{
    hide();
    auto* rows = new QVBoxLayout(this);
    rows->setContentsMargins(kMargin, kSpacing, kMargin, kSpacing);
    rows->setSpacing(kSpacing);
    rows->addWidget(MakeFindRow());
    replaceRow_ = MakeReplaceRow();
    replaceRow_->hide();
    rows->addWidget(replaceRow_);
    connect(searchText_, &QLineEdit::textEdited, this, &FindBar::FindWhileTyping);
    for (auto* option : {matchCase_, wholeWords_, regularExpression_}) {
        connect(option, &QCheckBox::toggled, this, &FindBar::FindWhileTyping);
    }
}

QWidget* FindBar::MakeFindRow()
{
    auto* row = new QWidget;
    auto* layout = MakeRowLayout(row);
    searchText_->setAccessibleName(tr("Find"));
    searchText_->setClearButtonEnabled(true);
    message_->setAccessibleName(tr("Search result"));
    auto* close = new QToolButton;
    close->setText(QStringLiteral("×"));
    close->setAutoRaise(true);
    close->setFocusPolicy(Qt::TabFocus);
    close->setAccessibleName(tr("Close"));
    close->setToolTip(tr("Close (Esc)"));
    connect(close, &QToolButton::clicked, this, &FindBar::Close);
    layout->addWidget(MakeLabel(tr("Fi&nd:"), searchText_));
    layout->addWidget(searchText_, 1);
    layout->addWidget(MakeButton(tr("Ne&xt"), this, &FindBar::FindNext));
    layout->addWidget(MakeButton(tr("Previo&us"), this, &FindBar::FindPrevious));
    for (auto* option : {matchCase_, wholeWords_, regularExpression_}) {
        layout->addWidget(option);
    }
    layout->addWidget(message_);
    layout->addWidget(close);
    return row;
}

QWidget* FindBar::MakeReplaceRow()
{
    auto* row = new QWidget;
    auto* layout = MakeRowLayout(row);
    replacement_->setAccessibleName(tr("Replace with"));
    layout->addWidget(MakeLabel(tr("Replace w&ith:"), replacement_));
    layout->addWidget(replacement_, 1);
    layout->addWidget(MakeButton(tr("Rep&lace"), this, &FindBar::Replace));
    layout->addWidget(MakeButton(tr("Replace &all"), this, &FindBar::ReplaceAll));
    return row;
}

void FindBar::SetEditor(QsciScintilla* editor)
{
    editor_ = editor;
    ShowMessage({});
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
    ShowMessage({});
    replaceRow_->setVisible(replaces);
    show();
    searchText_->setFocus();
    searchText_->selectAll();
}

void FindBar::Close()
{
    hide();
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
    Find(Selection().start, true);
}

std::optional<TextSearch> FindBar::Search()
{
    ShowMessage({});
    if (!editor_ || searchText_->text().isEmpty()) {
        return std::nullopt;
    }
    auto search = TextSearch::Make(
        searchText_->text(),
        {matchCase_->isChecked(), wholeWords_->isChecked(), regularExpression_->isChecked()});
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
    const bool wraps = found && !*found;
    if (wraps) {
        found = forward ? search->FindFrom(text, 0) : search->FindBefore(text, text.size() + 1);
    }
    if (!found || !*found) {
        ShowMessage(found ? tr("No match") : tr(kTooComplex), Kind::Error);
        show();
        return;
    }
    if (wraps) {
        ShowMessage(tr("The search wrapped around"));
    }
    Select(*editor_, text, **found);
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
    if (const auto replacement =
            search->Replacement(text, selection, replacement_->text(), LineEndingOf(*editor_))) {
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
    const auto replaced = search->ReplaceAll(text, replacement_->text(), LineEndingOf(*editor_));
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

void FindBar::ShowMessage(const QString& text, Kind kind)
{
    kind_ = kind;
    QPalette colors = palette();
    if (kind == Kind::Error) {
        colors.setColor(QPalette::WindowText, ColorsFor(colors).error);
    }
    message_->setPalette(colors);
    message_->setText(text);
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
        ShowMessage(message_->text(), kind_);
    }
}
