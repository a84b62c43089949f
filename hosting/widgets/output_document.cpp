#include "output_document.h"

#include "output_colors.h"
#include "qt_version.h"

#include <QPlainTextDocumentLayout>
#include <QTextCursor>

namespace {

// Removing lines is slow, so many are removed at once.
constexpr int kLinesAfterDrop = OutputDocument::kMaxLines - OutputDocument::kMaxLines / 10;

}  // namespace

OutputDocument::OutputDocument(QObject* parent)
    : QTextDocument(parent),
      feed_({.lastColumn = [this] { return lastBlock().length() - 1; },
             .apply = [this](const OutputChange& change) { Apply(change); },
             .removeAll = [this] { RemoveAll(); }},
            {.lines = kMaxLines, .bytes = kMaxBytes})
{
    setDocumentLayout(new QPlainTextDocumentLayout(this));
    setUndoRedoEnabled(false);
}

void OutputDocument::SetColors(const QColor& background, const QColor& link)
{
    background_ = background;
    link_ = link;
}

void OutputDocument::FollowEnd()
{
    feed_.Then([this] { Q_EMIT FollowEndRequested(); });
}

void OutputDocument::ClearAll()
{
    feed_.Clear();
    clear();
}

void OutputDocument::RemoveAll()
{
    const int dropped = blockCount();
    clear();
    Q_EMIT LinesDropped(dropped);
}

void OutputDocument::Apply(const OutputChange& change)
{
    QTextCursor cursor(this);
    cursor.beginEditBlock();
    cursor.movePosition(QTextCursor::End);
    if (change.erasesLastLine) {
        cursor.movePosition(QTextCursor::StartOfBlock, QTextCursor::KeepAnchor);
        cursor.removeSelectedText();
    }
    const int firstLine = cursor.blockNumber();
    Insert(cursor, change);
    MarkLinks(cursor, firstLine);
    DropOldLines(cursor);
    cursor.endEditBlock();
}

void OutputDocument::Insert(QTextCursor& cursor, const OutputChange& change) const
{
    qsizetype at = 0;
    TextStyle style;
    const auto insertUntil = [&](qsizetype end) {
        const auto part = change.text.mid(static_cast<QtSize>(at), static_cast<QtSize>(end - at));
        cursor.insertText(part, FormatOf(style));
        at = end;
    };
    for (const auto& part : change.parts) {
        insertUntil(part.start);
        style = part.style;
    }
    insertUntil(change.text.size());
}

QTextCharFormat OutputDocument::FormatOf(const TextStyle& style) const
{
    QTextCharFormat format;
    if (style.color >= 0) {
        format.setForeground(OutputColors(background_).at(static_cast<std::size_t>(style.color)));
    }
    if (style.isBold) {
        format.setFontWeight(QFont::Bold);
    }
    return format;
}

void OutputDocument::MarkLinks(QTextCursor& cursor, int firstLine) const
{
    QTextCharFormat format;
    format.setForeground(link_);
    format.setFontUnderline(true);
    format.setAnchor(true);
    for (auto line = findBlockByNumber(firstLine); line.isValid(); line = line.next()) {
        const QString text = line.text();
        const auto link =
            text.contains(QLatin1String("File ")) ? FindSourceLink(text) : std::nullopt;
        if (link) {
            const int start = line.position() + static_cast<int>(link->start);
            cursor.setPosition(start);
            cursor.setPosition(start + static_cast<int>(link->length), QTextCursor::KeepAnchor);
            format.setAnchorHref(QString::number(link->start));
            cursor.mergeCharFormat(format);
        }
    }
}

void OutputDocument::DropOldLines(QTextCursor& cursor)
{
    const int dropped = blockCount() > kMaxLines ? blockCount() - kLinesAfterDrop : 0;
    if (dropped > 0) {
        cursor.setPosition(0);
        cursor.setPosition(findBlockByNumber(dropped).position(), QTextCursor::KeepAnchor);
        cursor.removeSelectedText();
        Q_EMIT LinesDropped(dropped);
    }
}
