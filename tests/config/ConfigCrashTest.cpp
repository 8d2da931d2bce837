// A process saving settings is killed at random moments, a thousand times: configure.xml must
// always be there and whole, with every custom backup folder the user had, the setting the
// process last saved or the one it was saving, and at most a couple of stray temporaries
// beside it.

#include "ConfigTestSupport.h"
#include "KillLoop.h"

#include <algorithm>
#include <iostream>
#include <set>
#include <string>

using namespace pallix::test;

namespace {

constexpr int kFolders = 20;

std::string folder(int index) {
    return "/Volumes/Backups/device-" + std::to_string(index);
}

class ConfigCrashTest : public ConfigTest {};

} // namespace

TEST_F(ConfigCrashTest, AFileSavedWhileKilledIsAlwaysWholeAndTheLastOrNextState) {
    config()->initialize();
    for (int i = 0; i < kFolders; ++i) {
        config()->customBackupAppend(NString(folder(i)));
    }
    ASSERT_NE(readCurrent().find(folder(kFolders - 1)), std::string::npos);

    PRuntimeConfig* component = config();
    const auto writer = [component](WriterProgress& progress) {
        component->initialize();
        for (long long state = progress.done.load() + 1;; ++state) {
            progress.started.store(state);
            component->setPopupTimeADAPP(static_cast<unsigned long long>(state));
            progress.done.store(state);
        }
    };
    int mostStrays = 0;
    const auto check = [&](long long started, long long done) {
        ASSERT_TRUE(exists(currentFile())) << "no file after a kill (state " << done << ")";
        const int strays = strayTemporaries(configDirectory(), "configure.xml");
        mostStrays = std::max(mostStrays, strays);
        ASSERT_LE(strays, kMostStrayTemporaries);

        const std::string text = readCurrent();
        pugi::xml_document document;
        const pugi::xml_parse_result parsed = document.load_buffer(text.data(), text.size());
        ASSERT_TRUE(parsed) << parsed.description() << "\n" << text;
        const pugi::xml_node root = document.child("Nevor");
        std::set<std::string> folders;
        for (pugi::xml_node item : root.child("CustomBackup").children("Item")) {
            folders.insert(item.attribute("Path").value());
        }
        ASSERT_EQ(folders.size(), static_cast<std::size_t>(kFolders)) << text;
        const long long state = root.child("PopupTimeADAPP").attribute("Value").as_llong(-1);
        const bool last = state == done;
        const bool next = started == done + 1 && state == started;
        ASSERT_TRUE(last || next) << "file holds state " << state << ", writer had finished "
                                  << done << " and started " << started;
    };
    const auto statistics = killRepeatedly(kKillRounds, 20261124u, writer, check);
    EXPECT_EQ(statistics.rounds, kKillRounds);
    std::cout << statistics.rounds << " kills, " << statistics.duringWrite
              << " while a save was under way, at most " << mostStrays << " stray temporaries\n";

    // A save that runs to its end clears what the kills left.
    config()->initialize();
    EXPECT_GT(config()->getPopupTimeADAPP(), 0u);
    config()->setLastSkin("101010");
    EXPECT_EQ(strayTemporaries(configDirectory(), "configure.xml"), 0);
}
