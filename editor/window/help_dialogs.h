#pragma once

#include <QString>

class QWidget;

// Both return when the user has closed the dialog.
void ShowPluginHelp(QWidget* parent, const QString& text);
void ShowAbout(QWidget* parent);
