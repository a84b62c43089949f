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

constexpr const char* kTooHard = "Too hard an expression for this text";

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
      words_(new QLineEdit(this)),
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
    connect(words_, &QLineEdit::textEdited, this, &FindBar::FindWhileTyping);
    for (auto* option : {matchCase_, wholeWords_, regularExpression_}) {
        connect(option, &QCheckBox::toggled, this, &FindBar::FindWhileTyping);
    }
}

QWidget* FindBar::MakeFindRow()
{
    auto* row = new QWidget;
    auto* layout = MakeRowLayout(row);
    words_->setAccessibleName(tr("Find"));
    words_->setClearButtonEnabled(true);
    message_->setAccessibleName(tr("Result of the search"));
    auto* close = new QToolButton;
    close->setText(QStringLiteral("×"));
    close->setAutoRaise(true);
    close->setFocusPolicy(Qt::TabFocus);
    close->setAccessibleName(tr("Close"));
    close->setToolTip(tr("Close (Esc)"));
    connect(close, &QToolButton::clicked, this, &FindBar::Close);
    layout->addWidget(MakeLabel(tr("Fi&nd:"), words_));
    layout->addWidget(words_, 1);
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
    Say({});
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
        words_->setText(selected);
    }
    Say({});
    replaceRow_->setVisible(replaces);
    show();
    words_->setFocus();
    words_->selectAll();
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

// From where the selection starts, so that a longer word can be found where a shorter was.
void FindBar::FindWhileTyping()
{
    Find(Selection().start, true);
}

std::optional<TextSearch> FindBar::Search()
{
    Say({});
    if (!editor_ || words_->text().isEmpty()) {
        return std::nullopt;
    }
    auto search = TextSearch::Make(
        words_->text(),
        {matchCase_->isChecked(), wholeWords_->isChecked(), regularExpression_->isChecked()});
    if (!search) {
        Say(search.error(), Kind::Bad);
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
        found = search->FindFrom(text, from + 1);  // A match of nothing would be found for ever.
    }
    const bool goesOn = found && !*found;
    if (goesOn) {
        found = forward ? search->FindFrom(text, 0) : search->FindBefore(text, text.size() + 1);
    }
    if (!found || !*found) {
        Say(found ? tr("No match") : tr(kTooHard), Kind::Bad);
        show();
        return;
    }
    if (goesOn) {
        Say(tr("Went on at the other end"));
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
        Say(tr("The text cannot be changed"), Kind::Bad);
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
        Say(tr(kTooHard), Kind::Bad);
        return;
    }
    if (replaced->count == 0) {
        Say(tr("No match"), Kind::Bad);
        return;
    }
    ReplaceBetween(*editor_, PositionOf(text, replaced->range.start),
                   PositionOf(text, replaced->range.start + replaced->range.length),
                   replaced->text.toUtf8());
    Say(replaced->count == 1 ? tr("1 replaced") : tr("%1 replaced").arg(replaced->count));
}

void FindBar::Say(const QString& text, Kind kind)
{
    kind_ = kind;
    QPalette colors = palette();
    if (kind == Kind::Bad) {
        colors.setColor(QPalette::WindowText, ColorsFor(colors).bad);
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
        Say(message_->text(), kind_);
    }
}
