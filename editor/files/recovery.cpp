#include "recovery.h"

#include "file_save.h"

#include <QCryptographicHash>
#include <QDataStream>
#include <QIODevice>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <limits>

namespace {

namespace fs = std::filesystem;

// A file consists of this line, the hash of the payload, and the payload.
const QByteArray kHeader = "quilp recovery copy 3\n";
constexpr auto kHash = QCryptographicHash::Sha256;
constexpr auto kStreamVersion = QDataStream::Qt_6_0;
constexpr auto kAnySize = std::numeric_limits<qint64>::max();

QByteArray Serialize(const RecoveryCopy& copy)
{
    QByteArray payload;
    QDataStream stream(&payload, QIODevice::WriteOnly);
    stream.setVersion(kStreamVersion);
    stream << QByteArray::fromStdString(copy.path) << static_cast<quint8>(copy.encoding)
           << copy.text << copy.stamp.modified << copy.stamp.size;
    return kHeader + QCryptographicHash::hash(payload, kHash) + payload;
}

bool IsEncoding(quint8 number)
{
    return number <= static_cast<quint8>(TextEncoding::Latin1);
}

// None if the bytes are corrupted.
std::optional<RecoveryCopy> Deserialize(const QByteArray& bytes)
{
    const auto hashSize = QCryptographicHash::hashLength(kHash);
    const QByteArray payload = bytes.mid(kHeader.size() + hashSize);
    if (!bytes.startsWith(kHeader) ||
        QCryptographicHash::hash(payload, kHash) != bytes.mid(kHeader.size(), hashSize)) {
        return std::nullopt;
    }
    QDataStream stream(payload);
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

// Sorted by name; empty if the folder does not exist.
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
    return own_->path() + "/" + std::to_string(++fileCount_);
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
    // On a slow disk each wait delays the next copy. An older copy after a power failure is valid.
    return SaveAtomically(files_.at(id), Serialize(copy), FolderSync::ForNewFiles);
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
        if (!ProcessFolder::IsProcessFolder(path.filename())) {
            continue;
        }
        auto folder = ProcessFolder::Adopt(path);
        if (!folder) {
            continue;
        }
        auto copies = ReadCopies(path);
        if (!copies.empty()) {
            adopted_.push_back(std::move(*folder));
            std::move(copies.begin(), copies.end(), std::back_inserter(orphans));
        }
    }
    return orphans;
}

std::vector<OrphanedCopy> RecoveryStore::ReadCopies(const std::string& folder)
{
    std::vector<OrphanedCopy> copies;
    for (const auto& file : Entries(folder)) {
        const std::string name = file.filename();
        if (name.starts_with(kTemporaryPrefix)) {
            std::error_code ignored;
            fs::remove(file, ignored);  // An incomplete version of a copy that exists as well.
        } else if (!ProcessFolder::IsLock(name)) {
            const auto bytes = ReadFileBytes(file, kAnySize);
            if (auto copy = bytes ? Deserialize(*bytes) : std::nullopt) {
                files_.emplace(file, file);
                copies.push_back({file, std::move(*copy)});
            }
        }
    }
    return copies;
}
