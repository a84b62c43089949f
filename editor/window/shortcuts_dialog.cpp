#include "shortcuts_dialog.h"

#include "plugin_commands.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QToolButton>

ShortcutsDialog::ShortcutsDialog(Shortcuts& shortcuts,
                                 const std::vector<RegisteredCommand>& commands, QWidget* parent)
    : QDialog(parent), shortcuts_(shortcuts), commands_(commands)
{
    setWindowTitle(tr("Shortcuts"));
    auto* const form = new QFormLayout(this);
    for (const auto& command : commands_) {
        const QString label = CommandLabel(command);
        auto* const row = new QHBoxLayout;
        auto* const edit = new QKeySequenceEdit(shortcuts_.Shortcut(command.name), this);
        edit->setAccessibleName(label);
        edit->setToolTip(QString::fromStdString(command.description));
        edits_.push_back(edit);
        auto* const clear = new QToolButton(this);
        clear->setText(tr("Clear"));
        clear->setAccessibleName(tr("Clear the shortcut of %1").arg(label));
        row->addWidget(edit, 1);
        row->addWidget(clear);
        form->addRow(label, row);
        connect(clear, &QToolButton::clicked, edit, &QKeySequenceEdit::clear);
        connect(edit, &QKeySequenceEdit::keySequenceChanged, this, &ShortcutsDialog::Check);
    }
    problem_ = new QLabel(this);
    problem_->setWordWrap(true);
    problem_->setObjectName("problem");
    form->addRow(problem_);
    auto* const buttons =
        new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    ok_ = buttons->button(QDialogButtonBox::Ok);
    form->addRow(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, &ShortcutsDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &ShortcutsDialog::reject);
    Check();
}

ShortcutsDialog::~ShortcutsDialog()
{
    hide();  // A field that loses the focus emits keySequenceChanged once more.
}

QString ShortcutsDialog::LabelOf(const std::string& command) const
{
    for (const auto& known : commands_) {
        if (known.name == command) {
            return CommandLabel(known);
        }
    }
    return QString::fromStdString(command);
}

namespace {

// Whether the first key types a character, with or without Shift.
bool IsPlainCharacter(const QKeySequence& keys)
{
    if (keys.isEmpty()) {
        return false;
    }
    const auto modifiers = keys[0].keyboardModifiers() & ~Qt::ShiftModifier;
    return modifiers == Qt::NoModifier && keys[0].key() < Qt::Key_Escape;
}

}  // namespace

std::expected<Shortcuts, QString> ShortcutsDialog::EditedShortcuts() const
{
    Shortcuts wanted = shortcuts_;
    // Remove all shortcuts first, so that two commands can exchange theirs.
    for (const auto& command : commands_) {
        std::ignore = wanted.SetShortcut(command.name, {});
    }
    for (std::size_t i = 0; i < commands_.size(); ++i) {
        const auto keys = edits_[i]->keySequence();
        if (IsPlainCharacter(keys)) {
            return std::unexpected(tr("%1 types a character. Add Ctrl or Alt to the shortcut.")
                                       .arg(keys.toString(QKeySequence::NativeText)));
        }
        if (const auto set = wanted.SetShortcut(commands_[i].name, keys); !set) {
            return std::unexpected(
                tr("%1 is already assigned to “%2”.")
                    .arg(keys.toString(QKeySequence::NativeText), LabelOf(set.error())));
        }
    }
    return wanted;
}

void ShortcutsDialog::Check()
{
    const auto wanted = EditedShortcuts();
    problem_->setText(wanted ? QString() : wanted.error());
    ok_->setEnabled(wanted.has_value());
}

void ShortcutsDialog::accept()
{
    if (auto wanted = EditedShortcuts()) {
        shortcuts_ = std::move(*wanted);
        QDialog::accept();
    }
}
