#pragma once

#include <QString>

class QWidget;

// Both functions return when the user closes the dialog. [ui]
void ShowPluginHelp(QWidget* parent, const QString& text);
void ShowAbout(QWidget* parent);
