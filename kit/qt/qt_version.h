#pragma once

#include <QKeySequence>
#include <QPoint>
#include <QString>

// What is named differently in Qt 5.15, with which some hosts' programs are built. [any]

// The type of sizes and positions in texts and lists.
using QtSize = decltype(QString().size());

// The position of a mouse or drop event, in the widget's coordinates.
template <class Event>
QPoint PositionOf(const Event& event)
{
    if constexpr (requires { event.position(); }) {
        return event.position().toPoint();
    } else {
        return event.pos();
    }
}

// The key and the modifiers of a sequence that is not empty, combined into one number.
template <class Keys>
int FirstKey(const Keys& keys)
{
    if constexpr (requires { keys[0].toCombined(); }) {
        return keys[0].toCombined();
    } else {
        return keys[0];
    }
}
