#pragma once

#include <QKeyEvent>

// While it lives, modifiers() gives the modifiers of this event.
class HandledKey {
  public:
    explicit HandledKey(const QKeyEvent& event);
    HandledKey(const HandledKey&) = delete;
    HandledKey& operator=(const HandledKey&) = delete;
    ~HandledKey();

  private:
    const QKeyEvent* outer_;
};

// The bytes of a key as views get them, see BOutlineTableView; empty for a key without any.
QByteArray KeyBytes(const QKeyEvent& event);

// modifiers() for these of Qt's, and the way back.
unsigned ModifierMask(Qt::KeyboardModifiers held);
Qt::KeyboardModifiers ModifiersOfMask(unsigned mask);
