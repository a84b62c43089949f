#include "link_marks.h"

#include "scintilla_text.h"
#include "source_link.h"

void MarkLinks(const QsciScintilla& editor, long start, long end)
{
    start = LineStart(editor, LineAt(editor, start));
    end = LineEnd(editor, LineAt(editor, end));
    Send(editor, QsciScintilla::SCI_SETINDICATORCURRENT, kLinkIndicator);
    Send(editor, QsciScintilla::SCI_INDICATORCLEARRANGE, start, end - start);
    const auto bytes = BytesBetween(editor, start, end);
    for (qsizetype at = 0; (at = bytes.indexOf("File ", at)) >= 0;) {
        const long line = LineAt(editor, start + at);
        const long lineStart = LineStart(editor, line);
        const auto text = TextBetween(editor, lineStart, LineEnd(editor, line));
        if (const auto link = FindSourceLink(text)) {
            const auto before = QStringView(text).first(link->start).toUtf8().size();
            const auto all = QStringView(text).first(link->start + link->length).toUtf8().size();
            Send(editor, QsciScintilla::SCI_INDICATORFILLRANGE, lineStart + before, all - before);
        }
        at = LineEnd(editor, line) - start;
    }
}

std::optional<long> FirstLinkFrom(const QsciScintilla& editor, long position)
{
    // At the end of the text Scintilla returns the value of the last character.
    const auto isLink = [&editor](long at) {
        return at < Length(editor) &&
               Send(editor, QsciScintilla::SCI_INDICATORVALUEAT, kLinkIndicator, at) != 0;
    };
    if (isLink(position)) {
        return position;
    }
    const long next = Send(editor, QsciScintilla::SCI_INDICATOREND, kLinkIndicator, position);
    return next > position && isLink(next) ? std::optional(next) : std::nullopt;
}

std::optional<long> LastLinkBefore(const QsciScintilla& editor, long position)
{
    const auto startBefore = [&editor](long at) {
        return Send(editor, QsciScintilla::SCI_INDICATORSTART, kLinkIndicator, at - 1);
    };
    const auto isLinkBefore = [&editor](long at) {
        return at > 0 &&
               Send(editor, QsciScintilla::SCI_INDICATORVALUEAT, kLinkIndicator, at - 1) != 0;
    };
    if (position > 0 && !isLinkBefore(position)) {
        position = startBefore(position);
    }
    return isLinkBefore(position) ? std::optional(startBefore(position)) : std::nullopt;
}
