#include "help_window.h"

#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QMenuBar>
#include <QMessageBox>
#include <QTextBrowser>
#include <QVBoxLayout>

namespace {

constexpr QSize kSize(620, 640);

constexpr const char* kIntroduction = R"(
<h1>Quilp</h1>
<p>Quilp runs the Python document that you are editing on a MicroPython board. Press <b>Run</b>, and
the output appears in the worksheet, the text below the documents. No board is needed: attach the
virtual one by the button in the lower right corner.</p>
<ul>
<li><a href="#running">Running a program</a></li>
<li><a href="#worksheet">The worksheet</a></li>
<li><a href="#prompt">The prompt and the input of programs</a></li>
<li><a href="#boards">Boards</a></li>
<li><a href="#device">The Device window</a></li>
<li><a href="#keys">Keys</a></li>
<li><a href="#plugin">The plug-in</a></li>
</ul>
<h2><a name="running"></a>Running a program</h2>
<p>The document is saved before a command acts on it, unless you switch that off in the Commands
menu. If the front document is not Python, Run takes the <b>target</b>: the file that you chose in the
Project menu, or <code>main.py</code> of the open folder.</p>
<p><b>Upload</b> copies the document to the board under its own name, <b>Upload as main.py</b> under
the name of the program that the board runs at power-on. The arrow beside Run opens the menu of all
commands. A document whose name contains a single quote runs, but cannot be uploaded.</p>
<h2><a name="worksheet"></a>The worksheet</h2>
<p>The worksheet shows the output of programs, and you can edit it like a document. Click a line of a
traceback to go to the source, or step through all of them with the keys below.</p>
<p>The worksheet also is a command line: type a command of your shell and press Control-Return to run
it in the folder of the project or of the front document. If text is selected, the selection runs.
The text is kept when you quit, and its oldest lines are removed when it becomes very long.</p>
<h2><a name="prompt"></a>The prompt and the input of programs</h2>
<p>The line below the worksheet is the board's prompt. Return runs what you have typed on the board, and
the value of an expression is printed. The board keeps its names from one line to the next until you
run a program or restart the board. Shift-Return adds a line, Up and Down bring back earlier input,
Tab completes a name, and Escape returns to the document. In a document, Control-Return runs the
selection or the caret's line in the same way.</p>
<p>While a program runs, the same line is its input: Return sends it, and Control-D in the empty line
ends the input. A bar in the margin of the worksheet marks where the output of each command begins.</p>
<h2><a name="boards"></a>Boards</h2>
<p>Plug in a board, and the lower right corner of the window shows its port. The virtual board is
the only one while it is attached. If a command reports <i>no device found</i>, there is no board, or
another program uses its port. If it reports <i>failed to access</i>, you lack the permission: run
<code>sudo usermod -aG dialout "$USER"</code> and log in again.</p>
<p><b>Show Board</b> in the Board menu shows the virtual board beside the documents: its LED, its
NeoPixels and the pins that the program uses. Click the button of an input to press it, or Shift-click
to keep it pressed. The slider of an analog pin sets its voltage.</p>
<h2><a name="device"></a>The Device window</h2>
<p>The Device window shows the files on the board. Double-click a folder to open it; the menu above
the list leads back. Drop a file or a folder on the list to copy it to the board. Control-Backspace
deletes the selected files without a question. F5 refreshes the list.</p>
<h2><a name="keys"></a>Keys</h2>
)";

QString Translate(const char* text)
{
    return QCoreApplication::translate("HelpWindow", text);
}

// The text of a menu or an action as it is shown, with its keys if the text contains them.
QStringList ShownText(const QAction& action)
{
    return action.text().remove('&').split('\t');
}

QString RowOf(const QAction& action)
{
    const auto text = ShownText(action);
    QStringList keys;
    for (const auto& shortcut : action.shortcuts()) {
        keys.append(shortcut.toString(QKeySequence::NativeText));
    }
    if (text.size() > 1) {
        keys.append(QKeySequence(text[1]).toString(QKeySequence::NativeText));
    }
    if (keys.isEmpty()) {
        return {};
    }
    return QStringLiteral("<tr><td>%1&nbsp;&nbsp;&nbsp;</td><td><b>%2</b></td></tr>")
        .arg(text[0].toHtmlEscaped(), keys.join(", ").toHtmlEscaped());
}

QString TableOf(const QAction& title)
{
    QString rows;
    for (const auto* const action : title.menu()->actions()) {
        rows += RowOf(*action);
    }
    return rows.isEmpty() ? QString()
                          : QStringLiteral("<h3>%1</h3><table>%2</table>")
                                .arg(ShownText(title)[0].toHtmlEscaped(), rows);
}

QString PageWith(const QMenuBar& menus, const QString& pluginHelp)
{
    QString page = Translate(kIntroduction);
    for (const auto* const title : menus.actions()) {
        page += TableOf(*title);
    }
    return page +
           QStringLiteral("<h2><a name=\"plugin\"></a>%1</h2><p>%2</p>")
               .arg(Translate("The plug-in"), pluginHelp.toHtmlEscaped().replace('\n', "<br>"));
}

}  // namespace

HelpWindow::HelpWindow(QWidget* parent) : QDialog(parent), page_(new QTextBrowser(this))
{
    setWindowTitle(Translate("Quilp Help"));
    page_->setFrameShape(QFrame::NoFrame);
    page_->setAccessibleName(windowTitle());
    page_->document()->setDocumentMargin(16);
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* const column = new QVBoxLayout(this);
    column->addWidget(page_);
    column->addWidget(buttons);
    resize(kSize);
}

void HelpWindow::Open(const QMenuBar& menus, const QString& pluginHelp)
{
    page_->setHtml(PageWith(menus, pluginHelp));
    show();
    raise();
    activateWindow();
    page_->setFocus();
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
