#include "source_link.h"

#include <QRegularExpression>

namespace {

constexpr qsizetype kPrefixLength = 5;  // "File "

// A quoted path must be followed by its closing quote.
bool IsWhole(QStringView path)
{
    return !path.startsWith(u'"') || (path.size() > 1 && path.endsWith(u'"'));
}

QStringView WithoutQuotes(QStringView path)
{
    return path.startsWith(u'"') ? path.mid(1, path.size() - 2) : path;
}

bool IsFile(QStringView path)
{
    return !path.isEmpty() && !(path.startsWith(u'<') && path.endsWith(u'>'));
}

bool Contains(const SourceLink& link, qsizetype column)
{
    return column >= link.start && column - link.start < link.length;
}

}  // namespace

std::optional<SourceLink> FindSourceLink(const QString& line, qsizetype column)
{
    // Matches the start and the end of a link separately: with one pattern for the whole link, the
    // time would grow quadratically with the length of the line.
    static const QRegularExpression ends(R"(\bFile (?=["/])|, line (\d+)(?=[,;:)\s]|\.?$|\.\s))");
    qsizetype start = -1;
    for (auto it = ends.globalMatch(line); it.hasNext();) {
        const auto match = it.next();
        if (match.capturedStart(1) < 0) {
            start = match.capturedStart();
            continue;
        }
        if (start < 0) {
            continue;
        }
        const auto path = QStringView(line).left(match.capturedStart()).mid(start + kPrefixLength);
        if (!IsWhole(path)) {
            continue;
        }
        SourceLink link{WithoutQuotes(path).toString(), match.captured(1).toInt(), start,
                        match.capturedEnd(1) - start};
        // toInt returns 0 if the number is too large.
        if (IsFile(link.path) && link.line > 0 && (column < 0 || Contains(link, column))) {
            return link;
        }
        start = -1;
    }
    return std::nullopt;
}
