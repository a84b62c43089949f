#include "input_history.h"

#include <algorithm>

void InputHistory::SetEntries(const QStringList& entries)
{
    entries_.clear();
    for (const auto& entry : entries) {
        Add(entry);
    }
    added_ = 0;
}

QStringList InputHistory::AppendedTo(const QStringList& entries) const
{
    InputHistory all;
    all.SetEntries(entries);
    for (const auto& entry : entries_.mid(entries_.size() - added_)) {
        all.Add(entry);
    }
    return all.entries_;
}

void InputHistory::Add(const QString& text)
{
    const bool isNew = entries_.isEmpty() || entries_.last() != text;
    if (isNew && !text.trimmed().isEmpty() && text.size() <= kMaxLength) {
        entries_.append(text);
        entries_ = entries_.mid(std::max<QtSize>(0, entries_.size() - kMaxEntries));
        added_ = std::min(added_ + 1, kMaxEntries);
    }
    index_ = entries_.size();
    draft_.clear();
}

QString InputHistory::Text(QtSize index) const
{
    return index < entries_.size() ? entries_[index] : draft_;
}

std::optional<QString> InputHistory::Older(const QString& shown)
{
    if (shown != Text(index_)) {
        index_ = entries_.size();  // The user changed an entry, so it is a new text.
    }
    if (index_ == 0) {
        return std::nullopt;
    }
    if (index_ == entries_.size()) {
        draft_ = shown;
    }
    return Text(--index_);
}

std::optional<QString> InputHistory::Newer(const QString& shown)
{
    if (index_ == entries_.size() || shown != Text(index_)) {
        return std::nullopt;
    }
    return Text(++index_);
}
