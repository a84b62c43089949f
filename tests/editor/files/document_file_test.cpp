#include "document_file.h"

#include "file_save.h"
#include "forked_child.h"
#include "wait.h"

#include <gtest/gtest.h>

#include <grp.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <tuple>

#ifdef __linux__
#include <sched.h>
#include <sys/mount.h>
#endif

namespace {

namespace fs = std::filesystem;

struct stat StatusOf(const std::string& path)
{
    struct stat status {};
    stat(path.c_str(), &status);
    return status;
}

template <typename Result>
void ExpectError(const Result& result, const std::string& part)
{
    ASSERT_FALSE(result) << part;
    EXPECT_NE(result.error().find(part), std::string::npos) << result.error();
}

}  // namespace

TEST(DocumentFile, EveryFileIsSavedByteForByte)
{
    using enum TextEncoding;
    using namespace std::string_literals;
    const std::string bom = "\xEF\xBB\xBF";
    const struct {
        std::string bytes;
        TextEncoding encoding;
        QString text;
    } rows[] = {
        {"π\0\r\nb\rc\n\n😀\0"s, Utf8, QString::fromUtf8("π\0\r\nb\rc\n\n😀\0"s)},
        {bom + bom, Utf8WithBom, QChar(QChar::ByteOrderMark)},
        {EveryByte(), Latin1, QString::fromLatin1(EveryByte())},
        {bom + "\xFF", Latin1, "ï»¿ÿ"},
        {"surrogate \xED\xA0\xBD", Latin1, "surrogate í\u00A0½"},
    };
    const TemporaryFolder folder;
    for (const auto& row : rows) {
        const auto path = folder.Write("f", row.bytes);
        const auto loaded = LoadText(path).value();
        EXPECT_EQ(loaded.encoding, row.encoding) << row.bytes;
        EXPECT_EQ(loaded.text, row.text) << row.bytes;
        ASSERT_TRUE(SaveAtomically(path, Encode(loaded.text, loaded.encoding).value()));
        EXPECT_EQ(ReadFile(path), row.bytes);
    }
    ExpectError(Encode("é\r\nb\rπ", Latin1),
                "The character π (U+03C0) on line 3 cannot be encoded in Latin-1");
    ExpectError(Encode(QChar(0xD83D), Utf8), "(U+D83D)");
}

TEST(DocumentFile, AFileThatCannotBeReadIsReported)
{
    const TemporaryFolder folder;
    ASSERT_EQ(mkfifo((folder / "fifo").c_str(), 0600), 0);
    fs::create_symlink("fifo", folder / "link");
    fs::resize_file(folder.Write("larger", ""), kMaxDocumentSize + 1);
    for (const auto& [path, reason] :
         {std::pair(folder / "missing", "cannot be read: No such file"),
          {folder.path(), "is a folder"},
          {folder / "link", "is not a regular file"},
          {folder / "larger", "is larger than 64 MiB"}}) {
        ExpectError(LoadText(path), path + " " + reason);
    }
}

TEST(DocumentFile, SavingReplacesTheFileButKeepsItsModeOwnerAndLinks)
{
    const TemporaryFolder folder;
    const auto file = folder.Write("real/f", "old");
    fs::create_symlink("real/f", folder / "to-link");
    fs::create_symlink("real/new", folder / "to-new");
    fs::create_symlink("circle", folder / "circle");
    fs::create_hard_link(file, folder / "old");
    EXPECT_EQ(chown(file.c_str(), 1234, 4321), geteuid() == 0 ? 0 : -1);
    chmod(file.c_str(), 04751);
    const auto old = StatusOf(file);

    const mode_t mask = umask(027);
    ASSERT_TRUE(SaveAtomically(folder / "to-link", "new"));
    ASSERT_TRUE(SaveAtomically(folder / "to-new", "new"));
    umask(mask);
    EXPECT_TRUE(fs::is_symlink(folder / "to-link"));
    EXPECT_EQ(ReadFile(file), "new");
    EXPECT_EQ(ReadFile(folder / "old"), "old") << "the old file was overwritten";
    const auto saved = StatusOf(file);
    EXPECT_EQ(std::tie(saved.st_mode, saved.st_uid, saved.st_gid),
              std::tie(old.st_mode, old.st_uid, old.st_gid));
    EXPECT_EQ(StatusOf(folder / "real/new").st_mode & 07777, 0640u);
    ExpectError(SaveAtomically(folder / "circle", ""), "symbolic links");
}

TEST(DocumentFile, WithoutPermissionNothingIsTouchedExceptInPlace)
{
    const TemporaryFolder folder;
    fs::permissions(folder.path(), fs::perms::all);
    for (const auto& [name, mode] :
         {std::pair("protected", 0444), {"shared", 04666}, {"closed/f", 0666}}) {
        chmod(folder.Write(name, "old").c_str(), static_cast<mode_t>(mode));
    }
    fs::permissions(folder / "closed", fs::perms(0555));
    const auto work = [&] {
        ExpectError(SaveAtomically(folder / "protected", "new"),
                    "/protected cannot be saved: Permission denied");
        ExpectError(SaveAtomically(folder / "closed/f", "new"),
                    "cannot create a file in " + folder / "closed");
        EXPECT_EQ(ReplaceFile(folder / "closed/f", "").error().kind,
                  SaveError::Kind::NotReplaceable);
        EXPECT_TRUE(WriteInPlace(folder / "closed/f", "ne"));
        EXPECT_TRUE(SaveAtomically(folder / "shared", "new"));
        return HasFailure();
    };
    if (geteuid() != 0) {
        work();
    } else {
        ForkedChild nobody([&] { return setgroups(0, nullptr) | setuid(65534) | work(); });
        EXPECT_EQ(nobody.Wait(), 0);
        EXPECT_EQ(StatusOf(folder / "shared").st_mode & 07777, 0666u) << "grants root's rights";
    }
    EXPECT_EQ(ReadFile(folder / "protected"), "old");
    EXPECT_EQ(ReadFile(folder / "closed/f"), "ne");
    EXPECT_EQ(ReadFile(folder / "shared"), "new");
    fs::permissions(folder / "closed", fs::perms::all);
}

#ifdef __linux__
TEST(DocumentFile, AFullOrReadOnlyDiskLeavesTheOldFileAndNothingElse)
{
    const TemporaryFolder folder;
    constexpr int kCannotMount = 77;
    ForkedChild child([&] {  // In a mount namespace of its own.
        const std::string disk = folder.path();
        if (unshare(CLONE_NEWNS) != 0 || mount("", "/", "", MS_REC | MS_PRIVATE, "") != 0 ||
            mount("none", disk.c_str(), "tmpfs", 0, "size=64k") != 0) {
            return kCannotMount;
        }
        const auto file = folder.Write("f", "old");
        ExpectError(SaveAtomically(file, QByteArray(100'000, 'x')), "No space left on device");
        EXPECT_EQ(mount("none", disk.c_str(), "", MS_REMOUNT | MS_RDONLY, ""), 0);
        ExpectError(SaveAtomically(file, "new"), "Read-only file system");
        EXPECT_EQ(ReadFile(file), "old");
        EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), {}), 1);
        return HasFailure() ? 1 : 0;
    });
    const int status = child.Wait();
    if (status == kCannotMount) {
        GTEST_SKIP() << "this user may not mount a file system here";
    }
    EXPECT_EQ(status, 0);
}
#endif
