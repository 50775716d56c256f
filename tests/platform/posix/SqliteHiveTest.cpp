#include <sys/stat.h>

#include <filesystem>

#include "platform/SettingsHive.h"
#include "support/TemporaryFolder.h"

namespace pw {
namespace {

using test::TemporaryFolder;

std::string Text(const SettingsHive& hive, std::string_view key, std::string_view name,
                 std::uint32_t root = kUserRoot) {
    const HiveValue value = hive.Get(root, key, name);
    if (const auto* text = std::get_if<std::string>(&value)) return *text;
    if (const auto* number = std::get_if<std::uint32_t>(&value)) return std::to_string(*number);
    return "(none)";
}

TEST(SqliteHive, KeepsValuesWithoutRegardToCase) {
    const auto hive = MakeMemoryHive();
    EXPECT_TRUE(hive->Set(kUserRoot, "Software\\Ombrino\\X", "Name", std::string("ann")));
    EXPECT_TRUE(hive->Set(kUserRoot, "software\\ombrino\\x\\", "NAME", std::uint32_t(0xFFFFFFFF)));
    EXPECT_EQ(Text(*hive, "SOFTWARE\\OMBRINO\\X", "name"), "4294967295") << "the last one counts";
    EXPECT_TRUE(hive->Set(kUserRoot, "Software\\Ombrino\\X", "", std::string()));
    EXPECT_EQ(Text(*hive, "Software\\Ombrino\\X", ""), "") << "an empty text is a value";
    EXPECT_EQ(Text(*hive, "Software\\Ombrino", "Name"), "(none)");
    EXPECT_EQ(Text(*hive, "Software\\Ombrino\\X", "Name", 0x80000003), "(none)");
    EXPECT_TRUE(hive->DeleteValue(kUserRoot, "Software\\Ombrino\\X", "name"));
    EXPECT_FALSE(hive->DeleteValue(kUserRoot, "Software\\Ombrino\\X", "name"));
    EXPECT_TRUE(hive->KeyExists(kUserRoot, "software\\ombrino"));
}

TEST(SqliteHive, ListsAndDeletesKeys) {
    const auto hive = MakeMemoryHive();
    for (const char* key : {"WHP\\b\\Account", "WHP\\A", "WHP2\\x", "WHP\\b\\Second"})
        EXPECT_TRUE(hive->CreateKey(kUserRoot, key));
    EXPECT_EQ(hive->EnumKey(kUserRoot, "whp", 0), "A");
    EXPECT_EQ(hive->EnumKey(kUserRoot, "whp", 1), "b");
    EXPECT_EQ(hive->EnumKey(kUserRoot, "whp", 2), "");
    EXPECT_EQ(hive->EnumKey(kUserRoot, "WHP\\B", 1), "Second");
    EXPECT_EQ(hive->EnumKey(kUserRoot, "", 1), "WHP2");
    ASSERT_TRUE(hive->Set(kUserRoot, "WHP\\b\\Account", "v", std::uint32_t(1)));
    EXPECT_TRUE(hive->DeleteKey(kUserRoot, "whp\\B"));
    EXPECT_FALSE(hive->KeyExists(kUserRoot, "WHP\\b\\Account"));
    EXPECT_EQ(Text(*hive, "WHP\\b\\Account", "v"), "(none)");
    EXPECT_TRUE(hive->KeyExists(kUserRoot, "WHP2\\x")) << "only what lies below goes";
    EXPECT_FALSE(hive->DeleteKey(kUserRoot, "whp\\B"));
}

TEST(SqliteHive, AnswersForTheMachineAndWritesNothingThere) {
    const auto hive = MakeMemoryHive({"102.0.5005", "\\usr\\bin\\browser"});
    EXPECT_EQ(Text(*hive, "Software\\Microsoft\\Internet Explorer", "Version", kMachineRoot),
              "102.0.5005");
    EXPECT_EQ(Text(*hive, "software\\microsoft\\ie4\\setup", "PATH", kMachineRoot),
              "\\usr\\bin\\browser");
    EXPECT_TRUE(hive->KeyExists(kMachineRoot, "Software\\Microsoft"));
    EXPECT_FALSE(hive->KeyExists(kMachineRoot, "Software\\Micro"));
    EXPECT_FALSE(hive->Set(kMachineRoot, "Software\\Microsoft", "a", std::string("b")));
    EXPECT_FALSE(hive->CreateKey(kMachineRoot, "Other"));
    EXPECT_EQ(Text(*MakeMemoryHive({""}), "Software\\Microsoft\\Internet Explorer", "Version",
                   kMachineRoot),
              "(none)");
}

TEST(SqliteHive, KeepsItsFilePrivateAndSharesItBetweenPrograms) {
    const TemporaryFolder folder;
    const std::string file = folder.Native("settings.db");
    std::string message;
    {
        const auto window = MakeFileHive(file, &message);
        const auto commandLine = MakeFileHive(file, &message);
        window->Begin();
        EXPECT_TRUE(window->Set(kUserRoot, "K", "a", std::string("1")));
        EXPECT_EQ(Text(*commandLine, "K", "a"), "(none)") << "not before the commit";
        window->Commit();
        EXPECT_EQ(Text(*commandLine, "K", "a"), "1");
        EXPECT_TRUE(commandLine->Set(kUserRoot, "K", "b", std::string("2")));
    }
    EXPECT_EQ(message, "");
    struct stat status;
    ASSERT_EQ(::stat(file.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600u);
    EXPECT_EQ(Text(*MakeFileHive(file, &message), "K", "b"), "2");
}

TEST(SqliteHive, SetsADamagedFileAside) {
    const std::string noise(5000, 'x');
    struct Row {
        const char* name;
        std::string bytes;
    };
    for (const Row& row : {Row{"text", noise}, Row{"cut", std::string("SQLite format 3\0ab", 18)},
                           Row{"header and noise", std::string("SQLite format 3\0", 16) + noise}}) {
        SCOPED_TRACE(row.name);
        const TemporaryFolder folder;
        folder.Put("settings.db", row.bytes);
        std::string message;
        {
            const auto hive = MakeFileHive(folder.Native("settings.db"), &message);
            EXPECT_TRUE(hive->Set(kUserRoot, "K", "a", std::string("kept")));
        }
        EXPECT_NE(message.find("set aside as"), message.npos) << message;
        bool aside = false;
        for (const auto& entry : std::filesystem::directory_iterator(folder.Native()))
            aside |= folder.Get(entry.path().filename().string()) == row.bytes;
        EXPECT_TRUE(aside) << "nothing of the user's is deleted";
        message.clear();
        EXPECT_EQ(Text(*MakeFileHive(folder.Native("settings.db"), &message), "K", "a"), "kept");
        EXPECT_EQ(message, "");
    }
}

TEST(SqliteHive, WorksInMemoryWhereNoFileCanBe) {
    const TemporaryFolder folder;
    std::string message;
    const auto hive = MakeFileHive(folder.Native("none/settings.db"), &message);
    EXPECT_NE(message.find("changes to them will not be kept"), message.npos) << message;
    EXPECT_TRUE(hive->Set(kUserRoot, "K", "a", std::string("1")));
    EXPECT_EQ(Text(*hive, "K", "a"), "1");
}

}  // namespace
}  // namespace pw
