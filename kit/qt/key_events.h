#pragma once

#include <QKeyEvent>

// Makes modifiers() return the modifiers of this event, until the object is destroyed. [ui]
class KeyEventScope {
  public:
    explicit KeyEventScope(const QKeyEvent& event);
    KeyEventScope(const KeyEventScope&) = delete;
    KeyEventScope& operator=(const KeyEventScope&) = delete;
    ~KeyEventScope();

  private:
    const QKeyEvent* outer_;
};

// The bytes of a key that are passed to views (see BOutlineTableView); empty if the key has none.
QByteArray KeyBytes(const QKeyEvent& event);

// Convert between Qt's modifiers and the flags of Keyboard.h.
unsigned FromQtModifiers(Qt::KeyboardModifiers modifiers);
Qt::KeyboardModifiers ToQtModifiers(unsigned flags);
