#include <gtest/gtest.h>

#include <QDir>
#include <QTemporaryDir>

#include "forms/audit_form.h"
#include "forms/core_messages.h"
#include "support/reader_fixture.h"
#include "support/recording_interaction.h"
#include "support/ses_writer.h"

namespace tidewick {
namespace {

using enum SessionKindId;

const QString kIncomplete = " is incomplete: the file ends before its closing ";
const QString kUnknown = ", so the media it names cannot all be known.";

// What a reader finds wrong with a file reaches the user in the same words, title and icon
// whichever kind found it, from the file on disk to the message box.
TEST(ReaderMessages, EveryProblemOfAFileIsToldInItsKindsWords) {
    const QByteArray rpp = test::sessionBytes(Rpp, {"a.wav"});
    const QByteArray sesx = test::sessionBytes(Sesx, {"/a.wav"});
    const QByteArray xml = test::sessionBytes(Xml, {"a.wav"});
    const auto critical = MessageIcon::Critical;
    const struct {
        SessionKindId kind;
        const char* name;
        QByteArray bytes;  // a folder of that name when null
        QString text;
        const char* title;
        MessageIcon icon;
    } rows[] = {
        {Rpp, "a.rpp", "\r\n junk\t\r\n",
         "This is not a properly formated Reaper Project file\njunk", "Processing RPP File",
         critical},
        {Rpp, "b.rpp", rpp.left(rpp.lastIndexOf('>')),
         "This REAPER project" + kIncomplete + "\">\"" + kUnknown, "Processing RPP File", critical},
        {Xml, "a.xml", "<?xml?>\r\n<auditionsession>",
         "This is not a properly formated Adobe Audition XML file.\n<auditionsession>",
         "Processing XML File", MessageIcon::Information},
        {Xml, "b.xml", xml.left(xml.indexOf("</Audition")),
         "This Adobe Audition XML session" + kIncomplete + "</AuditionSession>" + kUnknown,
         "Processing XML File", critical},
        {Sesx, "a.sesx", "", "This is not an Adobe Audition session (.sesx) file.",
         "Processing SESX File", critical},
        {Sesx, "b.sesx", sesx.left(sesx.indexOf("</sesx>")),
         "This Adobe Audition session" + kIncomplete + "</sesx>" + kUnknown, "Processing SESX File",
         critical},
        {Veg, "a.veg", "", "This is not a Vegas project file.", "Processing VEG File", critical},
        {Ses, "a.ses", test::SesWriter().version("Cool Edit Pro 2.0").bytes(),
         "Cool Edit Pro 2.0 is not currently supported", "Importing Audition Session file",
         MessageIcon::Information},
        {Ses, "b.ses", "COOLNESS",
         "An error occurred accessing the selected SES file.  Input past end of file", "File Error",
         critical},
        {Veg,
         "c.veg",
         {},
         "An error occurred accessing the selected VEG file.  \"c.veg\": It is not an ordinary "
         "file.",
         "File Error",
         critical},
    };
    test::ReaderFixture f;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const QString path =
            row.bytes.isNull() ? f.dir.filePath(row.name) : f.write(row.name, row.bytes);
        if (row.bytes.isNull()) {
            ASSERT_TRUE(QDir(f.dir.path()).mkdir(row.name));
        }
        const SessionRead read = readSessionFile(sessionKind(row.kind), path, f.place());
        ASSERT_TRUE(read.problem);
        EXPECT_EQ(readProblemMessage(*read.problem),
                  (MessageBoxRequest{row.text, row.title, row.icon}));
    }
    // A binary session that never names its version is named by the load, which says so.
    const ReadProblem invalid{
        ReadFailure::NotThisKind, Ses, ReadSeverity::Error, {}, f.dir.filePath("mix.ses")};
    EXPECT_EQ(readProblemMessage(invalid),
              (MessageBoxRequest{"\"mix.ses\" does not appear to be a valid session file.",
                                 "SES File Error", critical}));
}

// An audit stopped by a session says where, in the words of the message the load would show,
// on one line.
TEST(ReaderMessages, AStoppedAuditFolderQuotesTheProblem) {
    QTemporaryDir home;
    const QString folder = home.filePath("Library/Cut");
    const QByteArray sesx = test::sessionBytes(Sesx, {"a.wav"});
    ASSERT_TRUE(test::writeFile(folder + "/mix.sesx", sesx.left(sesx.indexOf("</sesx>"))));
    RecordingInteraction ui;
    const FileSystem fs;
    AuditForm audit(ui, fs, home.filePath("Library"), home.filePath("index.sqlite"));
    audit.runToEnd();
    ASSERT_EQ(audit.rows().size(), 1);
    EXPECT_EQ(audit.rows()[0].reason,
              "Reading stopped at \"mix.sesx\": This Adobe Audition "
              "session" +
                  kIncomplete + "</sesx>" + kUnknown);
}

}  // namespace
}  // namespace tidewick
