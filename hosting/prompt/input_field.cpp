#include "input_field.h"

#include "input_text.h"
#include "prompt_code.h"

#include <QAbstractItemView>
#include <QCompleter>
#include <QHBoxLayout>
#include <QLabel>
#include <QScrollBar>
#include <QStringListModel>

#include <algorithm>

namespace {

constexpr int kPadding = 9;         // pixels
constexpr int kMaxNameLength = 24;  // characters in the label
constexpr int kMaxListHeight = 10;  // lines

// The typed start of the name at the end of the text.
QString StemOf(const QString& text)
{
    const auto request = FindCompletion(text.toStdString());
    return request ? QString::fromStdString(request->stem) : QString();
}

QString Shorten(const QString& name)
{
    return name.size() <= kMaxNameLength ? name : name.left(kMaxNameLength - 1) + QChar(u'…');
}

}  // namespace

InputField::InputField(QWidget* parent)
    : QWidget(parent),
      label_(new QLabel(this)),
      text_(new InputText(promptHistory_, this)),
      completer_(new QCompleter(this)),
      names_(new QStringListModel(this))
{
    setBackgroundRole(QPalette::Base);
    setAutoFillBackground(true);
    auto* const row = new QHBoxLayout(this);
    row->setContentsMargins(kPadding, 0, 0, 0);
    row->setSpacing(0);
    label_->setTextFormat(Qt::PlainText);
    label_->setBuddy(text_);
    row->addWidget(label_, 0, Qt::AlignTop);
    row->addWidget(text_, 1);
    setFocusProxy(text_);
    MakeCompleter();
    connect(text_, &InputText::ReturnPressed, this,
            [this] { Q_EMIT Entered(text_->toPlainText()); });
    connect(text_, &InputText::EndRequested, this, [this] {
        if (!isPrompt_) {
            Q_EMIT EndOfInput();
        }
    });
    connect(text_, &InputText::TabPressed, this, &InputField::PressTab);
    connect(text_, &InputText::Left, this, &InputField::Left);
    SetTextFont(font());
    ShowPrompt();
}

void InputField::MakeCompleter()
{
    completer_->setModel(names_);
    completer_->setWidget(text_);
    completer_->setCaseSensitivity(Qt::CaseSensitive);
    completer_->setMaxVisibleItems(kMaxListHeight);
    text_->SetList(*completer_->popup());
    completer_->popup()->setAccessibleName(tr("Completions"));
    connect(completer_, qOverload<const QString&>(&QCompleter::activated), this,
            &InputField::InsertCompletion);
    connect(text_, &QPlainTextEdit::textChanged, this, &InputField::NarrowCompletions);
}

void InputField::ShowPrompt(bool isInputWaiting)
{
    const QString hint = isInputWaiting ? tr("The input runs when the board is free")
                                        : tr("Python for the board – Return runs it");
    Show(true, QStringLiteral(">>>"), tr("Board prompt"), hint);
}

void InputField::ShowInput(const QString& program)
{
    const QString shown = Shorten(program);
    const QString label = program.isEmpty() ? tr("Input:") : tr("Input to %1:").arg(shown);
    Show(false, label,
         program.isEmpty() ? tr("Input to the program") : tr("Input to %1").arg(program),
         tr("Return sends a line – Control-D ends the input"));
}

void InputField::Show(bool isPrompt, const QString& label, const QString& name, const QString& hint)
{
    isPrompt_ = isPrompt;
    text_->SetHistory(isPrompt ? promptHistory_ : inputHistory_);
    label_->setText(label);
    text_->setAccessibleName(name);
    text_->setPlaceholderText(hint);
    completer_->popup()->hide();
}

void InputField::Accept()
{
    (isPrompt_ ? promptHistory_ : inputHistory_).Add(text_->toPlainText());
    text_->SetText({});
}

void InputField::SetTextFont(const QFont& font)
{
    label_->setFont(font);
    // One space between the label and the text, as in the worksheet.
    const int margin = static_cast<int>(text_->document()->documentMargin());
    const int space = QFontMetrics(font).horizontalAdvance(u' ');
    label_->setContentsMargins(0, margin, std::max(0, space - margin), 0);
    text_->SetTextFont(font);
    completer_->popup()->setFont(font);
}

// A tab at the start of a line indents it, as in a document.
void InputField::PressTab()
{
    const QString before = text_->TextBeforeCaret();
    const QString line = before.mid(before.lastIndexOf('\n') + 1);
    if (line.trimmed().isEmpty()) {
        text_->insertPlainText(QStringLiteral("    "));
    } else if (isPrompt_) {
        asked_ = before;
        Q_EMIT CompletionRequested(before);
    }
}

void InputField::Complete(const std::string& stem, const std::vector<std::string>& names)
{
    if (names.empty() || !text_->hasFocus() || text_->TextBeforeCaret() != asked_) {
        return;
    }
    const auto common = CommonPrefix(names);
    text_->insertPlainText(QString::fromStdString(common.substr(stem.size())));
    if (names.size() == 1) {
        return;
    }
    QStringList list;
    for (const auto& name : names) {
        list.append(QString::fromStdString(name));
    }
    names_->setStringList(list);
    completer_->setCompletionPrefix(QString::fromStdString(common));
    auto* const popup = completer_->popup();
    popup->setCurrentIndex(completer_->completionModel()->index(0, 0));
    QRect place = text_->cursorRect();
    place.setWidth(popup->sizeHintForColumn(0) + popup->verticalScrollBar()->sizeHint().width());
    completer_->complete(place);
}

// While the list is open, the typed characters choose among its names.
void InputField::NarrowCompletions()
{
    auto* const popup = completer_->popup();
    if (!popup->isVisible()) {
        return;
    }
    completer_->setCompletionPrefix(StemOf(text_->TextBeforeCaret()));
    if (completer_->completionPrefix().isEmpty() || completer_->completionCount() == 0) {
        popup->hide();
    } else {
        popup->setCurrentIndex(completer_->completionModel()->index(0, 0));
    }
}

void InputField::InsertCompletion(const QString& name)
{
    const QString stem = StemOf(text_->TextBeforeCaret());
    if (name.startsWith(stem)) {
        text_->insertPlainText(name.mid(stem.size()));
    }
}
