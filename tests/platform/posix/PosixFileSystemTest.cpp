#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "platform/FileSystem.h"
#include "support/TemporaryFolder.h"

namespace pw {
namespace {

namespace fs = std::filesystem;
using test::TemporaryFolder;

class PosixFileSystem : public testing::Test {
  protected:
    std::vector<std::string> Names(const std::string& path) {
        std::vector<FolderEntry> entries;
        EXPECT_EQ(files->List(path, entries), FileError::None);
        std::vector<std::string> names;
        for (const auto& entry : entries)
            names.push_back(entry.name + (entry.isFolder ? "\\" : entry.isLink ? "@" : ""));
        return names;
    }

    TemporaryFolder folder;
    std::unique_ptr<FileSystem> files = MakePosixFileSystem();
};

TEST_F(PosixFileSystem, RefusesPathsThatTheProgramCannotWrite) {
    std::string bytes;
    const std::string withZero = folder.Path("a") + std::string("\0b", 2);
    for (const std::string& path : {std::string(), std::string("a.txt"), folder.Native("a.txt"),
                                    folder.Path("a/b.txt"), withZero}) {
        SCOPED_TRACE(path);
        EXPECT_EQ(files->Write(path, "x"), FileError::BadName);
        EXPECT_EQ(files->Read(path, bytes), FileError::BadName);
        EXPECT_FALSE(files->Stat(path).exists);
    }
    EXPECT_EQ(files->Write(folder.Path(std::string(300, 'n')), "x"), FileError::BadName);
    folder.Put("seen.txt", "");
    std::ofstream(folder.Native("un\\seen.txt")) << "x";
    EXPECT_EQ(Names(folder.Path()), std::vector<std::string>{"seen.txt"});
    EXPECT_EQ(FromNativeArgument("/a/../b/./c.txt"), "\\b\\c.txt");
    EXPECT_EQ(FromNativeArgument("a\\b"), "");
}

TEST_F(PosixFileSystem, WritesWholeFilesInEachWay) {
    struct Row {
        const char* name;
        Durability durability;
    };
    for (const Row& row : {Row{"lazy", Durability::Lazy}, Row{"synced", Durability::Synced},
                           Row{"in place", Durability::InPlace}}) {
        SCOPED_TRACE(row.name);
        const std::string path = folder.Path(row.name);
        EXPECT_EQ(files->Write(path, std::string(300000, 'a'), row.durability), FileError::None);
        EXPECT_EQ(files->Write(path, std::string("b\0c", 3), row.durability), FileError::None);
        EXPECT_EQ(folder.Get(row.name), std::string("b\0c", 3));
        EXPECT_EQ(files->Write(folder.Path("none\\a"), "x", row.durability), FileError::NotFound);
        EXPECT_EQ(files->Write(folder.Path(), "x", row.durability), FileError::IsFolder);
    }
    EXPECT_EQ(Names(folder.Path()).size(), 3u) << "no temporary file stays behind";
}

TEST_F(PosixFileSystem, WritingKeepsTheRightsAndLeavesTheTargetOfALinkAlone) {
    folder.Put("script", "old");
    fs::permissions(folder.Native("script"), fs::perms(0750));
    EXPECT_EQ(files->Write(folder.Path("script"), "new"), FileError::None);
    EXPECT_EQ(fs::status(folder.Native("script")).permissions(), fs::perms(0750));

    fs::create_symlink("script", folder.Native("link"));
    EXPECT_EQ(files->Write(folder.Path("link"), "mine"), FileError::None);
    EXPECT_EQ(folder.Get("script"), "new");
    EXPECT_EQ(folder.Get("link"), "mine");
}

TEST_F(PosixFileSystem, ReadsOnlyWhatEnds) {
    std::string bytes = "left over";
    EXPECT_EQ(files->Read(folder.Path("none"), bytes), FileError::NotFound);
    EXPECT_EQ(bytes, "");
    EXPECT_EQ(files->Read(folder.Path(), bytes), FileError::IsFolder);
    ASSERT_EQ(::mkfifo(folder.Native("pipe").c_str(), 0600), 0);
    EXPECT_EQ(files->Read(folder.Path("pipe"), bytes), FileError::IO);
    folder.Put("empty", "");
    EXPECT_EQ(files->Read(folder.Path("empty"), bytes), FileError::None);
    // Files of the kernel tell a size of 0.
    EXPECT_EQ(files->Read("\\proc\\self\\status", bytes), FileError::None);
    EXPECT_GT(bytes.size(), 100u);
    EXPECT_EQ(files->Append(folder.Path("log"), "a"), FileError::None);
    EXPECT_EQ(files->Append(folder.Path("log"), "b"), FileError::None);
    EXPECT_EQ(folder.Get("log"), "ab");
}

TEST_F(PosixFileSystem, RenameRefusesATakenNameInAnyLetterCase) {
    struct Row {
        const char* name;
        const char* from;
        const char* to;
        FileError expected;
    };
    for (const Row& row : {Row{"free", "a.html", "b.html", FileError::None},
                           Row{"taken", "a.html", "Taken.html", FileError::Exists},
                           Row{"taken in other case", "a.html", "TAKEN.HTML", FileError::Exists},
                           Row{"taken beyond ASCII", "a.html", "\xC3\x84.html", FileError::Exists},
                           Row{"only its own case", "a.html", "A.HTML", FileError::None},
                           Row{"itself", "a.html", "a.html", FileError::None},
                           Row{"the same name elsewhere", "a.html", "sub\\A.html", FileError::None},
                           Row{"no source", "none", "c.html", FileError::NotFound},
                           Row{"no folder", "a.html", "none\\a.html", FileError::NotFound},
                           Row{"a folder's name", "a.html", "SUB", FileError::Exists}}) {
        SCOPED_TRACE(row.name);
        const TemporaryFolder place;
        place.Put("a.html", "a");
        place.Put("Taken.html", "t");
        place.Put("\xC3\xA4.html", "u");
        fs::create_directory(place.Native("sub"));
        EXPECT_EQ(files->Rename(place.Path(row.from), place.Path(row.to)), row.expected);
        if (row.expected == FileError::None)
            EXPECT_EQ(place.Get(row.to), "a");
        else
            EXPECT_EQ(place.Get("a.html"), "a");
        EXPECT_EQ(place.Get("Taken.html"), "t");
    }
}

TEST_F(PosixFileSystem, RemovesReadOnlyTreesButFollowsNoLink) {
    folder.Put("outside\\keep.txt", "keep");
    folder.Put("tree\\a\\b\\c.txt", "c");
    std::ofstream(folder.Native("tree/back\\slash")) << "x";
    fs::create_directory_symlink(folder.Native("outside"), folder.Native("tree/a/link"));
    fs::permissions(folder.Native("tree/a/b/c.txt"), fs::perms(0400));
    fs::permissions(folder.Native("tree/a/b"), fs::perms(0500));
    EXPECT_EQ(files->RemoveFolder(folder.Path("tree")), FileError::None);
    EXPECT_FALSE(folder.Has("tree"));
    EXPECT_EQ(folder.Get("outside\\keep.txt"), "keep");

    fs::create_directory_symlink(folder.Native("outside"), folder.Native("link"));
    EXPECT_EQ(files->RemoveFolder(folder.Path("link")), FileError::None);
    EXPECT_EQ(folder.Get("outside\\keep.txt"), "keep");
    EXPECT_EQ(files->RemoveFolder(folder.Path("outside\\keep.txt")), FileError::NotFolder);
    EXPECT_EQ(files->RemoveFile(folder.Path("outside")), FileError::IsFolder);
    EXPECT_EQ(files->RemoveFolder(folder.Path("none")), FileError::NotFound);
}

TEST_F(PosixFileSystem, MakesFoldersWithTheirParents) {
    EXPECT_EQ(files->MakeFolder(folder.Path("a\\b\\c\\")), FileError::None);
    EXPECT_EQ(files->MakeFolder(folder.Path("a\\b\\c")), FileError::None);
    EXPECT_TRUE(files->Stat(folder.Path("a\\b\\c")).isFolder);
    folder.Put("file", "");
    EXPECT_EQ(files->MakeFolder(folder.Path("file")), FileError::NotFolder);
    EXPECT_EQ(files->MakeFolder(folder.Path("file\\below")), FileError::NotFolder);
    EXPECT_EQ(files->MakeFolder("\\"), FileError::None);
}

TEST_F(PosixFileSystem, CopiesFiles) {
    for (const std::size_t size : {0u, 1u, 131072u, 131073u, 3000000u}) {
        SCOPED_TRACE(size);
        std::string bytes(size, 'x');
        for (std::size_t i = 0; i < size; i += 7)
            bytes[i] = char(i);
        folder.Put("from", bytes);
        folder.Put("to", "something longer that was there");
        EXPECT_EQ(files->Copy(folder.Path("from"), folder.Path("to")), FileError::None);
        EXPECT_EQ(folder.Get("to"), bytes);
    }
    folder.Put("self", "me");
    fs::create_hard_link(folder.Native("self"), folder.Native("other"));
    EXPECT_EQ(files->Copy(folder.Path("self"), folder.Path("other")), FileError::None);
    EXPECT_EQ(files->Copy(folder.Path("self"), folder.Path("self")), FileError::None);
    EXPECT_EQ(folder.Get("self"), "me");
    EXPECT_EQ(files->Copy(folder.Path(), folder.Path("x")), FileError::IsFolder);
    EXPECT_EQ(files->Copy(folder.Path("none"), folder.Path("x")), FileError::NotFound);
    EXPECT_FALSE(folder.Has("x"));
}

TEST_F(PosixFileSystem, TakesWhatAStrangerNamesWithCare) {
    folder.Put("a\\b.txt", "12345");
    folder.Put("secret\\b.txt", "secret");
    fs::create_symlink("b.txt", folder.Native("a/link"));
    fs::create_directory_symlink("secret", folder.Native("c"));
    ASSERT_EQ(::mkfifo(folder.Native("pipe").c_str(), 0600), 0);
    struct Row {
        const char* name;
        std::string path;
        FileError expected;
        std::string bytes;
    };
    const auto own = [&](const char* name) { return folder.Path(name); };
    for (const Row& row : {Row{"a file", own("a\\b.txt"), FileError::None, "12345"},
                           Row{"a link", own("a\\link"), FileError::BadName, ""},
                           Row{"a link on the way", own("c\\b.txt"), FileError::NotFolder, ""},
                           Row{"a folder", own("a"), FileError::IsFolder, ""},
                           Row{"nothing", own("a\\no"), FileError::NotFound, ""},
                           Row{"a pipe", own("pipe"), FileError::IO, ""},
                           Row{"a device", "\\dev\\zero", FileError::IO, ""},
                           Row{"without end", "\\proc\\" + std::to_string(::getpid()) + "\\pagemap",
                               FileError::None, ""}}) {
        SCOPED_TRACE(row.name);
        std::string bytes;
        EXPECT_EQ(files->ReadResolved(row.path, bytes), row.expected);
        EXPECT_EQ(bytes, row.bytes);
        EXPECT_EQ(files->ReadResolved(row.path, bytes, 2), row.expected);
        EXPECT_EQ(bytes, row.bytes.substr(0, 2));
        EXPECT_EQ(files->CopyResolved(row.path, own("copy")), row.expected);
        EXPECT_EQ(folder.Has("copy") ? folder.Get("copy") : "", row.bytes);
        EXPECT_TRUE(files->Stat(row.path).isRegular == (row.expected == FileError::None) ||
                    row.path == own("c\\b.txt"));
        files->RemoveFile(own("copy"));
    }
    EXPECT_EQ(files->Copy("\\proc\\self\\pagemap", own("copy")), FileError::None);
    EXPECT_EQ(folder.Get("copy"), "") << "no more than it said that it has";
}

TEST_F(PosixFileSystem, ACopyCanBeCancelled) {
    folder.Put("big", std::string(40'000'000, 'x'));
    folder.Put("tree\\small", "x");
    folder.Put("to", "former");
    int asked = 0;
    files->isCancelled = [&] { return ++asked > 1; };
    const FileError error = files->Copy(folder.Path("big"), folder.Path("to"));
    // A disk that shares blocks is done at once.
    EXPECT_TRUE(error == FileError::Cancelled ? folder.Get("to") == "former" : asked == 0);
    asked = 1;
    EXPECT_EQ(files->CopyTree(folder.Path("tree"), folder.Path("out")), FileError::Cancelled);
    EXPECT_FALSE(folder.Has("out\\small"));
}

TEST_F(PosixFileSystem, CopiesTreesAndGoesOnAfterAnError) {
    folder.Put("from\\index.html", "index");
    folder.Put("from\\media\\a.gif", "gif");
    folder.Put("from\\media\\deep\\b.gif", "b");
    folder.Put("elsewhere\\secret.txt", "secret");
    fs::create_symlink("index.html", folder.Native("from/alias.html"));
    folder.Put("to\\index.html", "old");
    fs::permissions(folder.Native("to/index.html"), fs::perms(0400));
    folder.Put("to\\other.html", "stays");
    EXPECT_EQ(files->CopyTree(folder.Path("from"), folder.Path("to")), FileError::None);
    EXPECT_EQ(folder.Get("to\\index.html"), "index");
    EXPECT_EQ(folder.Get("to\\alias.html"), "index");
    EXPECT_FALSE(fs::is_symlink(folder.Native("to/alias.html")));
    EXPECT_EQ(folder.Get("to\\media\\deep\\b.gif"), "b");
    EXPECT_EQ(folder.Get("to\\other.html"), "stays");

    fs::create_symlink(folder.Native("elsewhere/secret.txt"), folder.Native("from/0-link"));
    EXPECT_EQ(files->CopyTree(folder.Path("from"), folder.Path("to")), FileError::NoPermission);
    EXPECT_FALSE(folder.Has("to\\0-link"));
    fs::remove(folder.Native("from/0-link"));
    fs::create_directory_symlink(folder.Native("elsewhere"), folder.Native("from/a-link"));
    fs::create_symlink("gone", folder.Native("from/b-link"));
    folder.Put("from\\zz.html", "last");
    EXPECT_EQ(files->CopyTree(folder.Path("from"), folder.Path("to")), FileError::IsFolder);
    EXPECT_FALSE(folder.Has("to\\a-link"));
    EXPECT_EQ(folder.Get("to\\zz.html"), "last");

    EXPECT_EQ(files->CopyTree(folder.Path("to"), folder.Path("to\\media\\copy")),
              FileError::BadName)
        << "a tree does not go on for ever when it is copied into itself";
    EXPECT_EQ(folder.Get("to\\media\\copy\\zz.html"), "last");
    EXPECT_EQ(files->CopyTree(folder.Path("none"), folder.Path("x")), FileError::NotFound);
    EXPECT_EQ(files->CopyTree(folder.Path("to\\zz.html"), folder.Path("x")), FileError::NotFolder);
}

TEST_F(PosixFileSystem, TellsWhereLinksLead) {
    folder.Put("a\\b.txt", "12345");
    fs::create_directory_symlink(folder.Native("a"), folder.Native("link"));
    EXPECT_EQ(files->Canonical(folder.Path("link\\..\\link\\b.txt")), folder.Path("a\\b.txt"));
    EXPECT_EQ(files->Canonical(folder.Path("none")), "");
    const FileInfo link = files->Stat(folder.Path("link"));
    EXPECT_TRUE(link.exists && link.isLink && !link.isFolder);
    EXPECT_EQ(files->Stat(folder.Path("a\\b.txt")).size, 5u);
    EXPECT_GT(files->Stat(folder.Path("a\\b.txt")).modified, 1'500'000'000'000'000'000);
    EXPECT_EQ(files->Sync(folder.Path("a")), FileError::None);
    EXPECT_EQ(files->Replace(folder.Path("a\\b.txt"), folder.Path("c.txt")), FileError::None);
    EXPECT_EQ(Names(folder.Path()), (std::vector<std::string>{"a\\", "c.txt", "link@"}));
}

}  // namespace
}  // namespace pw
