#include <QFileInfo>

#include "audit/session_index.h"
#include "audit/uses_elsewhere.h"
#include "forms/audit_form.h"
#include "forms/kind_texts.h"
#include "forms/main_form.h"
#include "text/path_text.h"

// The window and the audit of a library: going from the audit's table to a folder.
namespace tidewick {

void MainForm::mnuFileAudit_Click() {
    const QString root =
        ui_.browseForFolder(QStringLiteral("Choose the folder that holds your session folders."),
                            browser_.shownFolder());
    if (root.isEmpty()) {
        return;
    }
    AuditForm audit(ui_, FSO, root, SessionIndex::defaultFile(), resultsRunner());
    if (showAuditForm) {
        showAuditForm(audit);
    } else {
        audit.runToEnd();
    }
    lists_.libraryChanged();  // the index has news for the loads
    if (const std::optional<AuditForm::Chosen> chosen = audit.chosen()) {
        goToSessionFolder(chosen->folder, chosen->kind);
    }
}

void MainForm::goToSessionFolder(const QString& folder, SessionKindId kind) {
    browser_.selectTabByKey(kindTexts(kind).tabKey);
    browser_.pointBrowserAt(folder);
}

}  // namespace tidewick
