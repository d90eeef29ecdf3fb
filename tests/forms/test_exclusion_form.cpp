#include <gtest/gtest.h>

#include <functional>

#include "forms/exclusion_form.h"
#include "support/recording_interaction.h"

namespace tidewick {
namespace {

const MessageBoxRequest kEmpty{"You haven't specified anything to add to the list.", "Error"};
const MessageBoxRequest kListed{"The file specification is already listed.", "Error"};
const MessageBoxRequest kUnsaved{
    "Changes have been made to the Exclusion List.  Are you sure you wish abandon those changes?",
    "Unsaved Changes", MessageIcon::Question, MessageButtons::YesNo, MessageAnswer::No};

MessageBoxRequest removeQuestion(int count) {
    return {"Are you sure you wish to Remove the " + QString::number(count) + " selected items?",
            "Remove Selected Items", MessageIcon::Question, MessageButtons::YesNo,
            MessageAnswer::No};
}

void add(ExclusionForm& form, const QString& text) {
    form.SpecText = text;
    form.ActionButton_Click(0);
}

// Removes with `selected` selected and the focus mark on `current`, as the window leaves them.
void remove(ExclusionForm& form, QList<int> selected, int current) {
    form.SelectedEntries = selected;
    form.CurrentEntry = current;
    form.ActionButton_Click(1);
}

// The editor opened over a stored list, what the user does in it, and what is left: the working
// copy, the text box, the changed flag, the boxes shown, whether it closed, and the list itself.
TEST(ExclusionForm, EditsAWorkingCopyThatOnlyOkMakesTheList) {
    struct Row {
        const char* name;
        QStringList stored;
        std::function<void(ExclusionForm&)> act;
        QList<MessageAnswer> answers;
        QStringList specList;
        QString specText;
        bool changed;
        QList<MessageBoxRequest> messages;
        bool closed;
        QStringList excluded;
    };
    const QStringList abcd = {"a.doc", "b.doc", "*.bak", "c?.txt"};
    const Row rows[] = {
        {"adds an entry without its blanks",
         {},
         [](auto& f) { add(f, "  *.tmp  "); },
         {},
         {"*.tmp"},
         "",
         true,
         {},
         false,
         {}},
        {"adds a name differing only in case",
         {"*.tmp"},
         [](auto& f) { add(f, "*.TMP"); },
         {},
         {"*.tmp", "*.TMP"},
         "",
         true,
         {},
         false,
         {"*.tmp"}},
        {"refuses a listed entry",
         {"*.tmp"},
         [](auto& f) { add(f, " *.tmp"); },
         {},
         {"*.tmp"},
         " *.tmp",
         false,
         {kListed},
         false,
         {"*.tmp"}},
        {"refuses blanks",
         {},
         [](auto& f) { add(f, "   "); },
         {},
         {},
         "   ",
         false,
         {kEmpty},
         false,
         {}},
        {"puts a removed entry back into the box",
         abcd,
         [](auto& f) { remove(f, {1}, 1); },
         {},
         {"a.doc", "*.bak", "c?.txt"},
         "b.doc",
         true,
         {},
         false,
         abcd},
        {"removes nothing when none is selected, whatever has the focus mark",
         abcd,
         [](auto& f) { remove(f, {}, 3); },
         {},
         abcd,
         "",
         false,
         {},
         false,
         abcd},
        {"removes the selected entry, not the one with the focus mark",
         abcd,
         [](auto& f) { remove(f, {2}, 0); },
         {},
         {"a.doc", "b.doc", "c?.txt"},
         "*.bak",
         true,
         {},
         false,
         abcd},
        {"removes nothing without a current entry",
         abcd,
         [](auto& f) { remove(f, {}, -1); },
         {},
         abcd,
         "",
         false,
         {},
         false,
         abcd},
        {"asks before removing three and removes them on Yes",
         abcd,
         [](auto& f) {
             remove(f, {3, 0, 2}, 2);
         },
         {MessageAnswer::Yes},
         {"b.doc"},
         "",
         true,
         {removeQuestion(3)},
         false,
         abcd},
        {"keeps all on No",
         abcd,
         [](auto& f) {
             remove(f, {0, 1}, 1);
         },
         {MessageAnswer::No},
         abcd,
         "",
         false,
         {removeQuestion(2)},
         false,
         abcd},
        {"makes the working copy the list on OK",
         {"a.doc"},
         [](auto& f) {
             add(f, "b.doc");
             f.OKButton_Click();
         },
         {},
         {"a.doc", "b.doc"},
         "",
         false,
         {},
         true,
         {"a.doc", "b.doc"}},
        {"leaves an empty list on OK after the last removal",
         {"a.doc"},
         [](auto& f) {
             remove(f, {0}, 0);
             f.OKButton_Click();
         },
         {},
         {},
         "a.doc",
         false,
         {},
         true,
         {}},
        {"closes on Cancel at once when nothing changed",
         abcd,
         [](auto& f) { f.CancelButton_Click(); },
         {},
         abcd,
         "",
         false,
         {},
         true,
         abcd},
        {"stays open on Cancel answered No after a removal",
         abcd,
         [](auto& f) {
             remove(f, {0}, 0);
             f.CancelButton_Click();
         },
         {MessageAnswer::No},
         {"b.doc", "*.bak", "c?.txt"},
         "a.doc",
         true,
         {kUnsaved},
         false,
         abcd},
        {"drops the edits on Cancel answered Yes",
         abcd,
         [](auto& f) {
             add(f, "new.doc");
             f.CancelButton_Click();
         },
         {MessageAnswer::Yes},
         abcd + QStringList{"new.doc"},
         "",
         true,
         {kUnsaved},
         true,
         abcd},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        RecordingInteraction ui;
        ui.answers = row.answers;
        QStringList excluded = row.stored;
        ExclusionForm form(ui, excluded);
        bool closed = false;
        QObject::connect(&form, &ExclusionForm::closeRequested, [&closed] { closed = true; });
        form.Form_Load();
        row.act(form);
        EXPECT_EQ(form.SpecList, row.specList);
        EXPECT_EQ(form.SpecText, row.specText);
        EXPECT_EQ(form.ListChanged, row.changed);
        EXPECT_EQ(ui.messages, row.messages);
        EXPECT_EQ(closed, row.closed);
        EXPECT_EQ(excluded, row.excluded);
    }
}

// Only names and patterns get into the box: no folder separators, drive colons, semicolons or
// control characters, whether typed or pasted.
TEST(ExclusionForm, TheBoxTakesNamesAndPatternsOnly) {
    for (const char c : QByteArray("azAZ09 &'@{}[],$=!-#()%.+~_*?\b")) {
        if (c != '\0') {
            EXPECT_EQ(ExclusionForm::SpecText_KeyPress(c), c) << c;
        }
    }
    for (const int code : std::initializer_list<int>{'\\', '/', ':', ';', '"', '<', '>', '|', '^',
                                                     '`', 3, 22, 24, 13, 0, 0xE9, 0x41A}) {
        EXPECT_EQ(ExclusionForm::SpecText_KeyPress(code), 0) << code;
    }
    EXPECT_EQ(ExclusionForm::admittedSpecText("C:\\Music\\take?.wav;\r\n\b*.pk\u00E9"),
              "CMusictake?.wav*.pk");
}

}  // namespace
}  // namespace tidewick
