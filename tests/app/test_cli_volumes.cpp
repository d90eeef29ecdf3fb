#include <gtest/gtest.h>

#include <QProcess>
#include <QTemporaryDir>

#include "support/reader_fixture.h"  // prints texts in failures

// tidewick-cli as a user runs it, against disks that refuse: full, odd or bound volumes made with
// tmpfs and bind mounts in a mount namespace of the test's own, a file-size limit, a home that
// is no full path. Each case is a shell script that prepares the folders, runs the program and
// lists what is where afterwards; nothing may be lost, and the log must say what happened.
namespace tidewick {
namespace {

// Shell words every case starts from: $W the work folder, S the session folder (set by the
// case), a session that uses nothing, and `move` and `listing` helpers.
const char* const kPrelude = R"(set -e
cd "$W"
session() { mkdir -p "$1"; printf '<?xml version="1.0"?>\n<sesx version="1.7">\n<files>\n</files>\n</sesx>\n' > "$1/mix.sesx"; }
move() { set +e; "$CLI" move "$S" --kind sesx --session mix.sesx --to "$W/Old" "$@"; echo "[exit $?]"; set -e; }
listing() { find "$@" -mindepth 1 -not -type d -printf '%P %s\n' 2>/dev/null | sort; }
)";

struct VolumeCase {
    const char* name;
    bool mounts;         // needs a mount namespace
    const char* script;  // after the prelude
    QStringList shown;   // what the output must hold, in this order
};

const VolumeCase kCases[] = {
    {"AFullVolumeRefusesTheTrashAndTheLogSaysTheSourceWasDeleted",
     true,
     R"(mkdir vol; mount -t tmpfs -o size=256k tmpfs vol
S=vol/S; session "$S"; head -c 100000 /dev/zero > "$S/take.wav"
export XDG_DATA_HOME="$W/vol/data"; mkdir -p vol/data/Trash/files vol/data/Trash/info
head -c 10000000 /dev/zero > vol/filler 2>/dev/null || true
move; listing Old)",
     {"take.wav...OK - 100,000 bytes moved (source deleted: the trash refused it).",
      "Sources Deleted (the trash refused them): 1", "[exit 4]", "take.wav 100000"}},
    {"AVolumeKeepsItsOwnTrash",
     true,
     R"(mkdir vol; mount -t tmpfs tmpfs vol; S=vol/S; session "$S"; printf abc > "$S/take.wav"
move; listing vol/.Trash-0)",
     {"take.wav...OK - 3 bytes moved.\n", "[exit 0]", "files/take.wav 3",
      "info/take.wav.trashinfo"}},
    {"AVolumeTrashThatIsAFileRefuses",
     true,
     R"(mkdir vol; mount -t tmpfs tmpfs vol; S=vol/S; session "$S"; printf abc > "$S/take.wav"
printf x > vol/.Trash-0; move; listing Old)",
     {"take.wav...OK - 3 bytes moved (source deleted: the trash refused it).", "take.wav 3"}},
    {"ABindMountIsTrashedOnItsOwnVolume",
     true,
     R"(mkdir real bound; mount --bind real bound; S=bound/S; session "$S"; printf abc > "$S/take.wav"
move; listing bound/.Trash-0)",
     {"take.wav...OK - 3 bytes moved.\n", "files/take.wav 3"}},
    {"AFileSizeLimitIsAWriteErrorNotAKill",
     false,
     R"(S=S; session S; head -c 100000 /dev/zero > S/take.wav
set +e; prlimit --fsize=65536 "$CLI" move "$S" --kind sesx --session mix.sesx --to "$W/Old"
echo "[exit $?]"; listing S)",
     {"take.wav...Error 27 (File too large)", "[exit 4]", "take.wav 100000"}},
    {"ARelativeDataHomeIsIgnored",
     false,
     R"(S="$W/S"; session S; printf abc > S/take.wav; mkdir cwd; cd cwd
XDG_DATA_HOME=rel HOME="$W/home" move; cd ..; echo "cwd:[$(listing cwd)]"; listing home)",
     {"take.wav...OK - 3 bytes moved.\n", "cwd:[]\n", ".local/share/Trash/files/take.wav 3"}},
    {"ARelativeHomeHasNoTrash",
     false,
     R"(S=S; session S; printf abc > S/take.wav; mkdir cwd; cd cwd
env -u XDG_DATA_HOME HOME=rel "$CLI" move "$W/S" --kind sesx --session mix.sesx --to "$W/Old" || echo "[exit $?]"
cd ..; echo "cwd:[$(listing cwd)]")",
     {"take.wav...OK - 3 bytes moved (source deleted: the trash refused it).", "[exit 4]",
      "cwd:[]"}},
    {"AnImmutableTargetIsSaidOnce",
     false,
     R"(S=S; session S; printf abc > S/take.wav; mkdir Old
chattr +i Old 2>/dev/null || { echo "[exit 4] cannot be written"; exit; }
set +e; move; chattr -i Old)",
     {"cannot be written", "[exit 4]"}},
    {"CopyUsedCopiesWhatALinkLeadsTo",
     false,
     R"(mkdir -p S lib; printf drums > lib/drum.wav; ln -s ../lib/drum.wav S/drum.wav
printf '<sesx>\n<files>\n<file absolutePath="%s/S/drum.wav"/>\n</files>\n</sesx>\n' "$W" > S/mix.sesx
"$CLI" copy-used S --kind sesx --session mix.sesx --to Collect; find Collect -type f -printf '%P %s\n')",
     {"Files Copied: 1 ", "drum.wav 5"}},
    {"NeitherAMoveNorACopyReplacesAUsedFile",
     false,
     R"(set +e; mkdir -p S/Imp S/Imported S/mix_Recorded; printf used > S/take.wav
printf other > S/Imp/take.wav; printf new > S/mix_Recorded/a.wav; printf kept > S/Imported/a.wav
printf '<sesx>\n<files>\n<file absolutePath="%s/S/%s"/>\n<file absolutePath="%s/S/%s"/>\n<file absolutePath="%s/S/%s"/>\n</files>\n</sesx>\n' \
  "$W" take.wav "$W" Imp/take.wav "$W" Imported/a.wav > S/mix.sesx
"$CLI" copy-used S --kind sesx --session mix.sesx --to S --overwrite yes 2>&1
"$CLI" move S --kind sesx --session mix.sesx --to S/Imported --overwrite yes --only 'mix_*' 
cat S/take.wav S/Imported/a.wav)",
     {"Files Copied: 1 ", "the file in the target is used by mix.sesx",
      "a.wav...Skipped - the file in the target is used by mix.sesx", "usedkept"}},
    {"AnOutputThatCannotBeWrittenIsAnError",
     false,
     R"(set +e; "$CLI" --version > /dev/full; echo "[exit $?]"
S=S; session S; "$CLI" scan S --all --json > /dev/full; echo "[exit $?]")",
     {"could not be written: No space left on device", "[exit 1]", "could not be written",
      "[exit 1]"}},
    {"CopyUsedSkipsWhatTheTargetHoldsUnlessToldAndADryRunChangesNothing",
     false,
     R"(mkdir -p S C; printf take > S/take.wav; printf old > C/take.wav
printf '<sesx>\n<files>\n<file absolutePath="%s/S/%s"/>\n<file absolutePath="%s/S/%s"/>\n</files>\n</sesx>\n' \
  "$W" take.wav "$W" gone.wav > S/mix.sesx
copy() { "$CLI" copy-used S --kind sesx --session mix.sesx --to C "$@" 2>&1; echo "[exit $?]"; }
copy --dry-run; copy; cat C/take.wav; echo; copy --overwrite yes --json; cat C/take.wav)",
     {"S/take.wav -> ", "(skipped: a file of that name is in the target)",
      "not on disk, not copied: ", "gone.wav", "[exit 0]",
      "take.wav...Skipped - a file of that name is in the target",
      "Files Copied: 0 - Files Skipped: 1 - Files Missing: 1", "[exit 0]\nold\n",
      "\"format\": \"tidewick-copy-used-1\"", "\"filesCopied\": 1", "[exit 0]\ntake"}},
};

void PrintTo(const VolumeCase& c, std::ostream* out) {
    *out << c.name;
}

bool mountNamespaces() {
    static const bool allowed =
        QProcess::execute("unshare", {"--user", "--map-root-user", "--mount", "true"}) == 0;
    return allowed;
}

class VolumeCases : public ::testing::TestWithParam<VolumeCase> {};

TEST_P(VolumeCases, NothingIsLostAndTheLogTellsTheTruth) {
    const VolumeCase& c = GetParam();
    if (c.mounts && !mountNamespaces()) {
        GTEST_SKIP() << "mount namespaces are not allowed here: no tmpfs or bind mount to test on";
    }
    QTemporaryDir work;
    QProcess shell;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("W", work.path());
    environment.insert("CLI", TIDEWICK_CLI_PROGRAM);
    environment.insert("XDG_DATA_HOME", work.filePath("data"));
    environment.insert("LC_ALL", "C.UTF-8");
    shell.setProcessEnvironment(environment);
    shell.setProcessChannelMode(QProcess::MergedChannels);
    const QString script = QString(kPrelude) + c.script;
    if (c.mounts) {
        shell.start("unshare", {"--user", "--map-root-user", "--mount", "sh", "-c", script});
    } else {
        shell.start("sh", {"-c", script});
    }
    ASSERT_TRUE(shell.waitForFinished(60000));
    const QString output = QString::fromUtf8(shell.readAll());
    qsizetype from = 0;
    for (const QString& expected : c.shown) {
        const qsizetype at = output.indexOf(expected, from);
        EXPECT_GE(at, 0) << "missing: " << expected.toStdString() << "\nin:\n"
                         << output.toStdString();
        from = std::max(from, at);
    }
}

INSTANTIATE_TEST_SUITE_P(Volumes, VolumeCases, ::testing::ValuesIn(kCases),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
}  // namespace tidewick
