#include <QFileInfo>

#include "audit/session_index.h"
#include "forms/audit_form.h"
#include "forms/kind_texts.h"
#include "forms/main_form.h"
#include "platform/path_text.h"

// The window and the audit of a library: going from the audit's table to a folder.
namespace tidewick {

void MainForm::mnuFileAudit_Click() {
    const QString root = ui_.browseForFolder(
        QStringLiteral("Choose the folder that holds your session folders."), SESDir.text());
    if (root.isEmpty()) {
        return;
    }
    AuditForm audit(ui_, FSO, root, SessionIndex::defaultFile(), resultsRunner());
    if (showAuditForm) {
        showAuditForm(audit);
    } else {
        audit.runToEnd();
    }
    auditedIndex_.reset();  // the index has news for the loads
    if (const std::optional<AuditForm::Chosen> chosen = audit.chosen()) {
        goToSessionFolder(chosen->folder, chosen->kind);
    }
}

void MainForm::goToSessionFolder(const QString& folder, SessionKindId kind) {
    selectTabByKey(kindTexts(kind).tabKey);
    pointBrowserAt(folder);
}

QList<SessionElsewhere> MainForm::sessionsElsewhere(const QStringList& folders) {
    if (!auditedIndex_) {
        const QString file = SessionIndex::defaultFile();
        if (file.isEmpty() || !QFileInfo::exists(file)) {
            return {};  // no library has been audited
        }
        auditedIndex_ = std::make_shared<SessionIndex>(file);
    }
    QStringList audited;
    const QStringList roots = auditedIndex_->roots();
    for (const QString& folder : folders) {
        const QString each = withSeparator(folder);
        if (std::any_of(roots.cbegin(), roots.cend(), [&each](const QString& root) {
                return each.startsWith(withSeparator(root));
            })) {
            audited.append(each);
        }
    }
    QList<SessionElsewhere> sessions;
    const QHash<QString, QStringList> users =
        audited.isEmpty() ? QHash<QString, QStringList>() : auditedIndex_->usersOf(audited);
    for (auto it = users.cbegin(); it != users.cend(); ++it) {
        const SessionKind* kind = sessionKindForName(GetFileName(it.key()));
        if (kind == nullptr || !FSO.FileExists(it.key())) {
            continue;  // a session gone uses nothing
        }
        if (std::optional<SessionCache::Entry> held = auditedIndex_->session(it.key(), FSO)) {
            sessionCache_.remember(it.key(), std::move(*held));
        } else if (const SessionRead read = sessionCache_.read(*kind, it.key(), FSO);
                   read.outcome == ReaderOutcome::Read) {
            // Changed since the audit: read again here, and the index learns it.
            auditedIndex_->update(it.key(), sessionCache_.entries().value(it.key()),
                                  usedElsewhere(it.key(), *kind, read));
        }
        sessions.append({it.key(), kind, it.value()});
    }
    std::sort(sessions.begin(), sessions.end(),
              [](const SessionElsewhere& a, const SessionElsewhere& b) { return a.path < b.path; });
    return sessions;
}

}  // namespace tidewick
