#include "audit/audited_library.h"

#include <QFileInfo>
#include <algorithm>

#include "audit/session_index.h"
#include "audit/uses_elsewhere.h"
#include "text/path_text.h"

namespace tidewick {

AuditedLibrary::AuditedLibrary(QString indexFile) : indexFile_(std::move(indexFile)) {}

AuditedLibrary::~AuditedLibrary() = default;

QList<SessionElsewhere> AuditedLibrary::sessionsUsing(const QStringList& folders,
                                                      const FileSystem& disk, SessionCache& cache) {
    if (!index_) {
        const QString file = indexFile_.isEmpty() ? SessionIndex::defaultFile() : indexFile_;
        if (file.isEmpty() || !QFileInfo::exists(file)) {
            return {};  // no library has been audited
        }
        index_ = std::make_shared<SessionIndex>(file);
    }
    QStringList audited;
    const QStringList roots = index_->roots();
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
        audited.isEmpty() ? QHash<QString, QStringList>() : index_->usersOf(audited);
    for (auto it = users.cbegin(); it != users.cend(); ++it) {
        const SessionKind* kind = sessionKindForName(GetFileName(it.key()));
        if (kind == nullptr || !disk.FileExists(it.key())) {
            continue;  // a session gone uses nothing
        }
        if (std::optional<SessionCache::Entry> held = index_->session(it.key(), disk)) {
            cache.remember(it.key(), std::move(*held));
        } else if (const SessionRead read = cache.read(*kind, it.key(), disk);
                   read.outcome == ReaderOutcome::Read) {
            // Changed since the audit: read again here, and the index learns it.
            index_->update(it.key(), cache.entries().value(it.key()),
                           usedElsewhere(it.key(), *kind, read));
        }
        sessions.append({it.key(), kind, it.value()});
    }
    std::sort(sessions.begin(), sessions.end(),
              [](const SessionElsewhere& a, const SessionElsewhere& b) { return a.path < b.path; });
    return sessions;
}

}  // namespace tidewick
