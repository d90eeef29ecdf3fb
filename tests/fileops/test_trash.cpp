#include <gtest/gtest.h>

#include <QDir>
#include <QDirIterator>
#include <QRegularExpression>
#include <QTemporaryDir>

#include "fileops/trash.h"
#include "support/reader_fixture.h"

// The trash on the real disk, in a temporary folder that the environment names as the user's:
// what goes where, what its record says, and which trash a test's environment leads to.
namespace tidewick {
namespace {

struct TrashCase {
    const char* name;
    const char* dataHome;  // XDG_DATA_HOME in the test's folder; "~x" is the relative "x"
    const char* home;      // HOME, likewise
    const char* before;    // files made first in the test's folder ("data/Trash" as a file)
    QByteArray trashed;    // files made ("!" for none), then put into the trash in this order
    QByteArray outcome;    // each one's name in the trash, or its error number
    const char* trash;     // the home trash, in the test's folder; "" for none
};

void PrintTo(const TrashCase& c, std::ostream* out) {
    *out << c.name;
}

const QByteArray kLong = QByteArray(250, 'n');
const QByteArray kShortened = QByteArray(241, 'n');  // with ".wav" and ".trashinfo": 255 bytes

// clang-format off
const TrashCase kCases[] = {
    {"AFileGoesToTheHomeTrash", "data", "home", "", "Song/take.wav", "take.wav", "data/Trash"},
    {"ClashingNamesAreNumberedBeforeTheirExtension", "data", "home", "",
     "A/take.wav|B/take.wav|C/take.wav|A/notes|B/notes|A/.cfg|B/.cfg",
     "take.wav|take 2.wav|take 3.wav|notes|notes 2|.cfg|.cfg 2", "data/Trash"},
    {"AMissingTrashAndItsFoldersAreMade", "no/such/data", "home", "", "Song/take.wav", "take.wav",
     "no/such/data/Trash"},
    {"ARelativeDataHomeGivesWayToHome", "~data", "home", "", "Song/take.wav", "take.wav",
     "home/.local/share/Trash"},
    {"ARelativeHomeHasNoTrash", "", "~home", "", "Song/take.wav", "2", ""},
    {"ATrashThatIsAFileTakesNothingOfItsDisk", "data", "home", "data/Trash", "Song/take.wav", "20",
     "data/Trash"},
    {"AMissingFileFails", "data", "home", "", "!Song/gone.wav", "2", "data/Trash"},
    {"ANameTooLongForItsRecordIsShortened", "data", "home", "", "Song/" + kLong + ".wav",
     kShortened + ".wav", "data/Trash"},
    {"ANameIsEscapedInItsRecord", "data", "home", "", "Song/a b%#é.wav", "a b%#é.wav",
     "data/Trash"},
};
// clang-format on

// A test's folder, which holds the current folder, and the environment as it was before.
class TrashTest : public ::testing::Test {
protected:
    void SetUp() override {
        saved = {qgetenv("XDG_DATA_HOME"), qgetenv("HOME")};
        previousCurrent = QDir::currentPath();
        ASSERT_TRUE(QDir().mkpath(root.filePath("cwd")) && QDir::setCurrent(root.filePath("cwd")));
    }
    void TearDown() override {
        qputenv("XDG_DATA_HOME", saved[0]);
        qputenv("HOME", saved[1]);
        QDir::setCurrent(previousCurrent);
    }
    void setPath(const char* variable, const QString& value) const {
        if (value.isEmpty()) {
            qunsetenv(variable);
        } else {
            qputenv(variable,
                    (value.startsWith('~') ? value.mid(1) : root.filePath(value)).toUtf8());
        }
    }
    // The entries under `folder`, by their paths from it.
    static QStringList listing(const QString& folder) {
        QStringList found;
        for (QDirIterator it(folder, QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                             QDirIterator::Subdirectories);
             it.hasNext();) {
            found.append(QDir(folder).relativeFilePath(it.next()));
        }
        found.sort();
        return found;
    }

    QTemporaryDir root;
    QByteArrayList saved;
    QString previousCurrent;
};

class TrashCases : public TrashTest, public ::testing::WithParamInterface<TrashCase> {};

TEST_P(TrashCases, PutsEachFileWhereItSaysWithARecordThatNamesIt) {
    const TrashCase& c = GetParam();
    setPath("XDG_DATA_HOME", c.dataHome);
    setPath("HOME", c.home);
    for (const QString& made : test::texts(c.before)) {
        ASSERT_TRUE(test::writeFile(root.filePath(made), "x"));
    }
    const QString trash = QString(c.trash).isEmpty() ? QString() : root.filePath(c.trash);
    EXPECT_EQ(Trash().home(), trash);
    const QStringList outcomes = test::texts(c.outcome.constData());
    const QStringList trashed = test::texts(c.trashed.constData());
    for (qsizetype i = 0; i < trashed.size(); ++i) {
        const QString path = root.filePath(QString(trashed[i]).remove(QRegularExpression("^!")));
        if (!trashed[i].startsWith('!')) {
            ASSERT_TRUE(test::writeFile(path, path.toUtf8()));
        }
        const Result<TrashPlace> put = Trash().put(path);
        bool number = false;
        if (const int code = outcomes[i].toInt(&number); number) {
            ASSERT_FALSE(put.ok()) << path.toStdString();
            EXPECT_EQ(put.error().code, code) << errorText(put.error()).toStdString();
            EXPECT_EQ(QFileInfo::exists(path), !trashed[i].startsWith('!'));  // left as it was
            continue;
        }
        ASSERT_TRUE(put.ok()) << errorText(put.error()).toStdString();
        const TrashPlace expected{trash + "/files/" + outcomes[i],
                                  trash + "/info/" + outcomes[i] + ".trashinfo"};
        EXPECT_EQ(put->file, expected.file);
        EXPECT_EQ(put->info, expected.info);
        EXPECT_FALSE(QFileInfo::exists(path));
        EXPECT_EQ(test::readFile(put->file), path.toUtf8());
        const QString record = QString::fromUtf8(test::readFile(put->info));
        EXPECT_TRUE(
            QRegularExpression("^\\[Trash Info\\]\nPath=" +
                               QRegularExpression::escape(path.toUtf8().toPercentEncoding("/")) +
                               "\nDeletionDate=\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d\n$")
                .match(record)
                .hasMatch())
            << record.toStdString();
    }
    EXPECT_EQ(listing(root.filePath("cwd")), QStringList());  // never a trash in the current folder
}

INSTANTIATE_TEST_SUITE_P(Trash, TrashCases, ::testing::ValuesIn(kCases),
                         [](const auto& info) { return std::string(info.param.name); });

// A copy of a file taken out of the trash goes back into the place the file left, its record
// naming the copy; a place taken meanwhile is given up for a new one, its record kept.
TEST_F(TrashTest, ACopyTakesThePlaceThatItsFileLeft) {
    setPath("XDG_DATA_HOME", "data");
    const QString source = root.filePath("Song/take.wav"), copy = root.filePath("Old/take.wav");
    for (const bool placeTaken : {false, true}) {
        ASSERT_TRUE(test::writeFile(source, "take") && test::writeFile(copy, "take"));
        const Result<TrashPlace> moved = Trash().put(source);
        ASSERT_TRUE(moved.ok());
        ASSERT_TRUE(QFile::rename(moved->file, source));  // restored from the trash
        if (placeTaken) {
            ASSERT_TRUE(test::writeFile(moved->file, "another"));
        }
        const Result<TrashPlace> put = Trash().putInPlaceOf(*moved, copy);
        ASSERT_TRUE(put.ok());
        EXPECT_EQ(*put == *moved, !placeTaken);
        EXPECT_EQ(test::readFile(put->file), "take");
        EXPECT_TRUE(
            test::readFile(put->info).contains("Path=" + copy.toUtf8().toPercentEncoding("/")));
        EXPECT_TRUE(QFileInfo::exists(moved->info));
        QFile::remove(source);
    }
}

}  // namespace
}  // namespace tidewick
