#include "scintilla_text.h"

using Sci = QsciScintillaBase;

long Length(const QsciScintillaBase& editor)
{
    return Send(editor, Sci::SCI_GETLENGTH);
}

long LineAt(const QsciScintillaBase& editor, long position)
{
    return Send(editor, Sci::SCI_LINEFROMPOSITION, position);
}

long LineStart(const QsciScintillaBase& editor, long line)
{
    return Send(editor, Sci::SCI_POSITIONFROMLINE, line);
}

long LineEnd(const QsciScintillaBase& editor, long line)
{
    return Send(editor, Sci::SCI_GETLINEENDPOSITION, line);
}

QByteArray BytesBetween(const QsciScintillaBase& editor, long start, long end)
{
    QByteArray bytes(end - start + 1, Qt::Uninitialized);  // Terminated by a NUL.
    editor.SendScintilla(Sci::SCI_GETTEXTRANGE, start, end, bytes.data());
    bytes.chop(1);
    return bytes;
}

QString TextBetween(const QsciScintillaBase& editor, long start, long end)
{
    return QString::fromUtf8(BytesBetween(editor, start, end));
}

QString TextOf(const QsciScintillaBase& editor)
{
    return TextBetween(editor, 0, Length(editor));
}

QString CodeAtCaret(const QsciScintillaBase& editor)
{
    long start = Send(editor, QsciScintilla::SCI_GETSELECTIONSTART);
    long end = Send(editor, QsciScintilla::SCI_GETSELECTIONEND);
    const long line = LineAt(editor, start);
    const long lineStart = LineStart(editor, line);
    const bool isWholeLine = start == end;
    if (isWholeLine) {
        end = LineEnd(editor, line);
    }
    // The first line's indentation belongs to the code.
    if (isWholeLine || TextBetween(editor, lineStart, start).trimmed().isEmpty()) {
        start = lineStart;
    }
    return TextBetween(editor, start, end);
}

void ReplaceBetween(QsciScintillaBase& editor, long start, long end, const QByteArray& utf8)
{
    Send(editor, Sci::SCI_SETTARGETRANGE, start, end);
    editor.SendScintilla(Sci::SCI_REPLACETARGET, static_cast<unsigned long>(utf8.size()),
                         utf8.constData());
}

void SelectBetween(QsciScintillaBase& editor, long anchor, long caret)
{
    const long line = Send(editor, Sci::SCI_VISIBLEFROMDOCLINE, LineAt(editor, caret));
    const long visible = Send(editor, Sci::SCI_LINESONSCREEN);
    const long first = Send(editor, Sci::SCI_GETFIRSTVISIBLELINE);
    if (line < first || line >= first + visible) {
        Send(editor, Sci::SCI_SETFIRSTVISIBLELINE, line - visible / 2);
    }
    Send(editor, Sci::SCI_SETSEL, anchor, caret);
}
