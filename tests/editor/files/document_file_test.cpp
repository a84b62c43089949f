#include "document_file.h"

#include "forked_child.h"
#include "wait.h"

#include <gtest/gtest.h>

#include <grp.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

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

TEST(DocumentFile, EveryFileComesBackByteForByte)
{
    using enum TextEncoding;
    using namespace std::string_literals;
    const std::string bom = "\xEF\xBB\xBF";
    const struct {
        std::string bytes;
        TextEncoding encoding;
        QString text;
    } rows[] = {
        {"", Utf8, ""},
        {"π\0\r\nb\rc\n\n😀\0"s, Utf8, QString::fromUtf8("π\0\r\nb\rc\n\n😀\0"s)},
        {bom + "π", Utf8WithBom, "π"},
        {bom + bom, Utf8WithBom, QChar(QChar::ByteOrderMark)},
        {"\xEF\xBF\xBD\xEF\xBF\xBF", Utf8, QString(QChar(0xFFFD)) + QChar(0xFFFF)},
        {EveryByte(), Latin1, QString::fromLatin1(EveryByte())},
        {"broken off \xCF", Latin1, "broken off Ï"},
        {bom + "\xFF", Latin1, "ï»¿ÿ"},
        {"overlong \xC0\xAF", Latin1, "overlong À¯"},
        {"surrogate \xED\xA0\xBD", Latin1, "surrogate í\u00A0½"},
    };
    const TemporaryFolder folder;
    for (const auto& row : rows) {
        const auto path = folder.Write("f", row.bytes);
        const auto loaded = LoadText(path);
        ASSERT_TRUE(loaded) << loaded.error();
        EXPECT_EQ(loaded->encoding, row.encoding) << row.bytes;
        EXPECT_EQ(loaded->text, row.text) << row.bytes;
        ASSERT_TRUE(SaveAtomically(path, Encode(loaded->text, loaded->encoding).value()));
        EXPECT_EQ(ReadFile(path), row.bytes);
    }
    EXPECT_EQ(LoadText("/proc/self/status")->text.first(5), "Name:") << "has no size";
}

TEST(DocumentFile, ACharacterThatTheEncodingLacksIsNamed)
{
    ExpectError(Encode("é\r\nb\rπ", TextEncoding::Latin1),
                "The character π (U+03C0) on line 3 cannot be encoded in Latin-1");
    ExpectError(Encode("😀", TextEncoding::Latin1), "😀 (U+1F600)");
    ExpectError(Encode(QChar(0xD83D), TextEncoding::Utf8), "(U+D83D)");
}

TEST(DocumentFile, WhatCannotBeReadIsRefusedWithASentence)
{
    const TemporaryFolder folder;
    ASSERT_EQ(mkfifo((folder / "fifo").c_str(), 0600), 0);
    fs::create_symlink("fifo", folder / "link");
    fs::resize_file(folder.Write("largest", ""), kMaxDocumentSize);
    fs::resize_file(folder.Write("larger", ""), kMaxDocumentSize + 1);
    EXPECT_EQ(ReadFileBytes(folder / "largest")->size(), kMaxDocumentSize);
    for (const auto& [path, reason] :
         {std::pair(folder / "missing", "cannot be read: No such file"),
          {folder.path(), "is a folder"},
          {folder / "link", "is not a regular file"},
          {folder / "larger", "is larger than 64 MiB"},
          {"/proc/self/mem", "cannot be read: Input/output error"}}) {
        ExpectError(LoadText(path), path + " " + reason);
    }
}

TEST(DocumentFile, SavingReplacesTheFileButKeepsItsModeOwnerAndLinks)
{
    const TemporaryFolder folder;
    const auto file = folder.Write("real/f", "old");
    folder.Write("links/x", "");
    fs::create_symlink("../real/f", folder / "links/to-file");
    fs::create_symlink("links/to-file", folder / "to-link");
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
    EXPECT_EQ(ReadFile(folder / "old"), "old") << "written over";
    EXPECT_EQ(StatusOf(file).st_mode, old.st_mode);
    EXPECT_EQ(StatusOf(file).st_uid, old.st_uid);
    EXPECT_EQ(StatusOf(file).st_gid, old.st_gid);
    EXPECT_EQ(StatusOf(folder / "real/new").st_mode & 07777, 0640u);
    ExpectError(SaveAtomically(folder / "circle", ""), "symbolic links");
    ASSERT_EQ(mkfifo((folder / "fifo").c_str(), 0600), 0);
    ExpectError(SaveAtomically(folder / "fifo", ""), "is not a regular file");
}

TEST(DocumentFile, WithoutPermissionNothingIsTouched)
{
    const TemporaryFolder folder;
    fs::permissions(folder.path(), fs::perms::all);
    for (const auto& [name, mode] :
         {std::pair("secret", 0), {"protected", 0444}, {"shared", 04666}, {"closed/f", 0666}}) {
        chmod(folder.Write(name, "old").c_str(), static_cast<mode_t>(mode));
    }
    fs::permissions(folder / "closed", fs::perms(0555));
    const auto work = [&] {
        ExpectError(LoadText(folder / "secret"), "/secret cannot be read: Permission denied");
        ExpectError(SaveAtomically(folder / "protected", "new"),
                    "/protected cannot be saved: Permission denied");
        ExpectError(SaveAtomically(folder / "closed/f", "new"),
                    "cannot create a file in " + folder / "closed");
        EXPECT_TRUE(SaveAtomically(folder / "shared", "new"));
        return HasFailure();
    };
    if (geteuid() != 0) {
        work();
    } else {
        ForkedChild nobody([&] { return setgroups(0, nullptr) | setuid(65534) | work(); });
        EXPECT_EQ(nobody.Wait(), 0);
        EXPECT_EQ(StatusOf(folder / "shared").st_mode & 07777, 0666u) << "lends root's rights";
    }
    EXPECT_EQ(ReadFile(folder / "protected"), "old");
    EXPECT_EQ(ReadFile(folder / "closed/f"), "old");
    EXPECT_EQ(ReadFile(folder / "shared"), "new");
    fs::permissions(folder / "closed", fs::perms::all);
}

#ifdef __linux__
TEST(DocumentFile, AFullOrReadOnlyDiskLeavesTheOldFileAndNothingElse)
{
    const TemporaryFolder folder;
    constexpr int kCannotMount = 77;
    ForkedChild child([&] {  // In a view of the disks of its own, which ends with it.
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
        GTEST_SKIP() << "this user may not mount a small disk here";
    }
    EXPECT_EQ(status, 0);
}
#endif

TEST(DocumentFile, TheFirstLineThatIsTooLongIsFound)
{
    const QString line(kMaxSmoothLineLength, 'x');
    EXPECT_FALSE(FirstTooLongLine(line + "\r\n" + line));
    EXPECT_EQ(FirstTooLongLine("\r\n" + line + "\n" + line + "x\r"), 3);
    EXPECT_EQ(FirstTooLongLine(line + "x"), 1);
}

TEST(DocumentFile, TheEndingOfMostLinesIsFound)
{
    using enum LineEnding;
    const std::pair<const char*, LineEnding> rows[] = {{"", Lf},         {"a\nb\nc\r\n", Lf},
                                                       {"\r\n\n", Lf},   {"\r\n\r\n\nd\r", CrLf},
                                                       {"\r\r\r\n", Cr}, {"\r\n\r\r", Cr}};
    for (const auto& [text, ending] : rows) {
        EXPECT_EQ(DominantLineEnding(text), ending) << text;
    }
}
