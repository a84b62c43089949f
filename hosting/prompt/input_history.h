#pragma once

#include "qt_version.h"

#include <QString>
#include <QStringList>

#include <optional>

// What the user has entered in a field, and the entry that is shown while walking through it. [any]
class InputHistory {
  public:
    static constexpr QtSize kMaxEntries = 500;
    // Longer entries are not kept, because the history is stored with the settings.
    static constexpr QtSize kMaxLength = 10'000;  // UTF-16 units

    // From the oldest to the newest.
    const QStringList& entries() const { return entries_; }
    void SetEntries(const QStringList& entries);
    // These entries, followed by those that were added here since SetEntries.
    QStringList AppendedTo(const QStringList& entries) const;

    // Ends walking. Adds the text, unless it equals the newest entry.
    void Add(const QString& text);

    // The entry before or after the shown one; nothing at the ends. `shown` is the field's text,
    // which the user may have changed. The text of the start comes back after the newest entry.
    std::optional<QString> Older(const QString& shown);
    std::optional<QString> Newer(const QString& shown);

  private:
    QString Text(QtSize index) const;

    QStringList entries_;
    QtSize added_ = 0;  // The number of entries since SetEntries.
    QtSize index_ = 0;  // The number of entries before the shown text.
    QString draft_;     // The text of the start.
};
