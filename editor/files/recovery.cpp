#include "recovery.h"

#include <QCryptographicHash>
#include <QDataStream>
#include <QIODevice>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <limits>

namespace {

namespace fs = std::filesystem;

// A file is this line, the hash of the rest, and the rest.
const QByteArray kMark = "quilp recovery copy 3\n";
constexpr auto kHash = QCryptographicHash::Sha256;
constexpr auto kStreamVersion = QDataStream::Qt_6_0;
constexpr auto kAnySize = std::numeric_limits<qint64>::max();

QByteArray ToBytes(const RecoveryCopy& copy)
{
    QByteArray rest;
    QDataStream stream(&rest, QIODevice::WriteOnly);
    stream.setVersion(kStreamVersion);
    stream << QByteArray::fromStdString(copy.path) << static_cast<quint8>(copy.encoding)
           << copy.text << copy.stamp.modified << copy.stamp.size;
    return kMark + QCryptographicHash::hash(rest, kHash) + rest;
}

bool IsEncoding(quint8 number)
{
    return number <= static_cast<quint8>(TextEncoding::Latin1);
}

// None when the bytes are not what ToBytes made.
std::optional<RecoveryCopy> FromBytes(const QByteArray& bytes)
{
    const auto hashSize = QCryptographicHash::hashLength(kHash);
    const QByteArray rest = bytes.mid(kMark.size() + hashSize);
    if (!bytes.startsWith(kMark) ||
        QCryptographicHash::hash(rest, kHash) != bytes.mid(kMark.size(), hashSize)) {
        return std::nullopt;
    }
    QDataStream stream(rest);
    stream.setVersion(kStreamVersion);
    QByteArray path;
    quint8 encoding = 0;
    QByteArray text;
    FileStamp stamp;
    stream >> path >> encoding >> text >> stamp.modified >> stamp.size;
    if (stream.status() != QDataStream::Ok || !IsEncoding(encoding)) {
        return std::nullopt;
    }
    return RecoveryCopy{path.toStdString(), TextEncoding(encoding), std::move(text), stamp};
}

// In order; empty when there is no such folder.
std::vector<fs::path> Entries(const std::string& folder)
{
    std::vector<fs::path> entries;
    std::error_code error;
    for (fs::directory_iterator it(folder, error), end; !error && it != end; it.increment(error)) {
        entries.push_back(it->path());
    }
    std::sort(entries.begin(), entries.end());
    return entries;
}

}  // namespace

std::expected<std::string, std::string> RecoveryStore::NewFile()
{
    if (!own_) {
        auto made = ProcessFolder::Make(root_);
        if (!made) {
            return std::unexpected(made.error());
        }
        own_.emplace(std::move(*made));
    }
    return own_->path() + "/" + std::to_string(++made_);
}

std::expected<void, std::string> RecoveryStore::Keep(const std::string& id,
                                                     const RecoveryCopy& copy)
{
    if (!files_.contains(id)) {
        auto file = NewFile();
        if (!file) {
            return std::unexpected(file.error());
        }
        files_.emplace(id, std::move(*file));
    }
    return SaveAtomically(files_.at(id), ToBytes(copy));
}

void RecoveryStore::Discard(const std::string& id)
{
    const auto file = files_.find(id);
    if (file == files_.end()) {
        return;
    }
    std::error_code ignored;
    fs::remove(file->second, ignored);
    files_.erase(file);
}

std::vector<OrphanedCopy> RecoveryStore::Orphans()
{
    std::vector<OrphanedCopy> orphans;
    for (const auto& path : Entries(root_)) {
        if (!ProcessFolder::IsOne(path.filename())) {
            continue;
        }
        auto folder = ProcessFolder::Adopt(path);
        if (!folder) {
            continue;
        }
        auto copies = TakeCopies(path);
        if (!copies.empty()) {
            adopted_.push_back(std::move(*folder));
            std::move(copies.begin(), copies.end(), std::back_inserter(orphans));
        }
    }
    return orphans;
}

std::vector<OrphanedCopy> RecoveryStore::TakeCopies(const std::string& folder)
{
    std::vector<OrphanedCopy> copies;
    for (const auto& file : Entries(folder)) {
        const std::string name = file.filename();
        if (name.starts_with(kTemporaryPrefix)) {
            std::error_code ignored;
            fs::remove(file, ignored);  // The copy before it is whole.
        } else if (!ProcessFolder::IsLock(name)) {
            const auto bytes = ReadFileBytes(file, kAnySize);
            if (auto copy = bytes ? FromBytes(*bytes) : std::nullopt) {
                files_.emplace(file, file);
                copies.push_back({file, std::move(*copy)});
            }
        }
    }
    return copies;
}
