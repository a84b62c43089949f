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

// None if the file cannot be read or is corrupted.
std::optional<RecoveryCopy> ReadCopy(const fs::path& file)
{
    const auto bytes = ReadFileBytes(file, kAnySize);
    return bytes ? Deserialize(*bytes) : std::nullopt;
}

// Gives a temporary file a name with which it is not one, and returns the new path.
fs::path RenameTemporary(const fs::path& file)
{
    const auto renamed = file.parent_path() / ("copy-" + file.filename().string());
    std::error_code ignored;
    fs::rename(file, renamed, ignored);
    return renamed;
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
    std::vector<fs::path> temporary;
    const auto add = [&](const fs::path& file, std::optional<RecoveryCopy> copy) {
        if (copy) {
            files_.emplace(file, file);
            copies.push_back({file, std::move(*copy)});
        }
    };
    for (const auto& file : Entries(folder)) {
        const std::string name = file.filename();
        if (name.starts_with(kTemporaryPrefix)) {
            temporary.push_back(file);
        } else if (!ProcessFolder::IsLock(name)) {
            add(file, ReadCopy(file));
        }
    }
    // An editor that was killed while it waited for the disk leaves a temporary file, which may be
    // complete.
    for (const auto& file : temporary) {
        auto copy = ReadCopy(file);
        const auto isOlder = [&](const OrphanedCopy& other) {
            return copy->path == other.copy.path;
        };
        if (copy && std::ranges::none_of(copies, isOlder)) {
            add(RenameTemporary(file), std::move(copy));
        } else {
            std::error_code ignored;
            fs::remove(file, ignored);
        }
    }
    return copies;
}
