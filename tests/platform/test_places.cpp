#include <gtest/gtest.h>

#include "platform/places.h"
#include "support/reader_fixture.h"  // texts(); prints texts in failures

namespace tidewick {
namespace {

// Mounts as "root:type|…", home, the places expected as "a|b|…"; the user is "me".
TEST(UserPlaces, AreHomeThenRootThenTheUsersDisksWithoutPseudoFileSystems) {
    const char* const cases[][3] = {
        {"/:ext4|/boot:ext4|/run/user/1000:tmpfs|/snap/core22/1380:squashfs|/mnt/wsl:tmpfs|"
         "/media/me/My Passport:exfat|/media/other/Disk:ext4|/run/media/me/STICK:vfat|"
         "/media/me:ext4|/mnt/data:ext4|/mnt/data:ext4|/mnt/tools/env/python:ext4",
         "/home/me", "/home/me|/|/media/me/My Passport|/mnt/data|/run/media/me/STICK"},
        {"/:apfs|/dev:devfs|/System/Volumes/Data:apfs|/Volumes/Recordings:hfs", "/Users/me",
         "/Users/me|/|/Volumes/Recordings"},
        {"/mnt/home/:ext4|/:ext4", "/mnt/home", "/mnt/home|/"},
        {"", "", "/"},
    };
    for (const auto& [mountTexts, home, places] : cases) {
        QList<Mount> mounts;
        for (const QString& mount : test::texts(mountTexts)) {
            mounts.append({mount.section(u':', 0, 0), mount.section(u':', 1)});
        }
        EXPECT_EQ(userPlaces(mounts, home, "me"), test::texts(places)) << home;
    }
    // A folder belongs to the deepest place that holds it, by whole names.
    EXPECT_EQ(placeOf({"/home/me", "/"}, "/home/meg"), "/");
    EXPECT_EQ(placeOf({"/", "/media/me/Disk", "/media"}, "/media/me/Disk/x"), "/media/me/Disk");
}

}  // namespace
}  // namespace tidewick
