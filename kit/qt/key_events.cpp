#include "key_events.h"

#include "Keyboard.h"

#include <QGuiApplication>
#include <QHash>

#include <array>
#include <utility>

namespace {

const QKeyEvent* handledEvent = nullptr;

// On keyboards with a Command key, Qt calls that key Control, and the Control key Meta.
constexpr std::array<std::pair<Qt::KeyboardModifier, unsigned>, 4> kModifiers{{
    {Qt::ShiftModifier, kShiftKey},
    {Qt::ControlModifier, kCommandKey},
    {Qt::MetaModifier, kControlKey},
    {Qt::AltModifier, kOptionKey},
}};

}  // namespace

KeyEventScope::KeyEventScope(const QKeyEvent& event) : outer_(std::exchange(handledEvent, &event))
{
}

KeyEventScope::~KeyEventScope()
{
    handledEvent = outer_;
}

QByteArray KeyBytes(const QKeyEvent& event)
{
    static const QHash<int, char> codes{
        {Qt::Key_Home, 1},    {Qt::Key_End, 4},      {Qt::Key_Backspace, 8}, {Qt::Key_Tab, 9},
        {Qt::Key_Return, 10}, {Qt::Key_Enter, 10},   {Qt::Key_PageUp, 11},   {Qt::Key_PageDown, 12},
        {Qt::Key_Escape, 27}, {Qt::Key_Left, 28},    {Qt::Key_Right, 29},    {Qt::Key_Up, 30},
        {Qt::Key_Down, 31},   {Qt::Key_Delete, 127},
    };
    const auto code = codes.find(event.key());
    return code != codes.end() ? QByteArray(1, *code) : event.text().toUtf8();
}

unsigned FromQtModifiers(Qt::KeyboardModifiers modifiers)
{
    unsigned flags = 0;
    for (const auto& [modifier, flag] : kModifiers) {
        flags |= modifiers.testFlag(modifier) ? flag : 0;
    }
    return flags;
}

Qt::KeyboardModifiers ToQtModifiers(unsigned flags)
{
    Qt::KeyboardModifiers modifiers;
    for (const auto& [modifier, flag] : kModifiers) {
        modifiers.setFlag(modifier, (flags & flag) != 0);
    }
    return modifiers;
}

unsigned modifiers()
{
    return FromQtModifiers(handledEvent != nullptr ? handledEvent->modifiers()
                                                   : QGuiApplication::keyboardModifiers());
}
