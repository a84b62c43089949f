#include "help_dialogs.h"

#include <QCoreApplication>
#include <QMessageBox>

namespace {

QString Translate(const char* text)
{
    return QCoreApplication::translate("HelpDialogs", text);
}

}  // namespace

void ShowPluginHelp(QWidget* parent, const QString& text)
{
    QMessageBox box(QMessageBox::Information, Translate("Plug-in Help"), text, QMessageBox::Ok,
                    parent);
    box.setTextFormat(Qt::PlainText);
    box.exec();
}

void ShowAbout(QWidget* parent)
{
    QMessageBox::about(
        parent, Translate("About Quilp"),
        Translate("<b>Quilp %1</b><p>Runs the Python document that you are editing on a "
                  "MicroPython board.</p><p>The source code is available under the MIT licence. "
                  "This program contains QScintilla and is therefore distributed under the GNU "
                  "General Public License, version 3.</p>")
            .arg(QUILP_VERSION));
}
