#include "audit/audited_library.h"

#include <QFileInfo>
#include <algorithm>

#include "audit/session_index.h"
#include "audit/uses_elsewhere.h"
#include "text/path_text.h"

namespace tidewick {

AuditedLibrary::AuditedLibrary(QString indexFile) : indexFile_(std::move(indexFile)) {}

AuditedLibrary::~AuditedLibrary() = default;

Result<QList<SessionElsewhere>> AuditedLibrary::sessionsUsing(const QStringList& folders,
                                                              const FileSystem& disk,
                                                              SessionCache& cache) {
    const QString file = indexFile_.isEmpty() ? SessionIndex::defaultFile() : indexFile_;
    if (!index_) {
        if (file.isEmpty() || !QFileInfo::exists(file)) {
            return QList<SessionElsewhere>();  // no library has been audited
        }
        index_ = std::make_shared<SessionIndex>(file);
        if (const std::optional<QString>& aside = index_->setAside()) {
            // What it knew of the library is gone: the sessions of other folders that it said
            // use these files are unknown until the library is audited again.
            return Error{0, file +
                                QStringLiteral(" (the index of audited libraries could not be "
                                               "used and was set aside as ") +
                                *aside + QStringLiteral("; audit the library again)")};
        }
    }
    const Result<QStringList> indexed = index_->roots();
    if (!indexed) {
        return Error{0, file + QStringLiteral(" (") + indexed.error().cause + u')'};
    }
    QStringList audited;
    const QStringList& roots = *indexed;
    for (const QString& folder : folders) {
        const QString each = withSeparator(folder);
        if (std::any_of(roots.cbegin(), roots.cend(), [&each](const QString& root) {
                return each.startsWith(withSeparator(root));
            })) {
            audited.append(each);
        }
    }
    QList<SessionElsewhere> sessions;
    const Result<QHash<QString, QStringList>> found =
        audited.isEmpty() ? QHash<QString, QStringList>() : index_->usersOf(audited);
    if (!found) {
        return Error{0, file + QStringLiteral(" (") + found.error().cause + u')'};
    }
    const QHash<QString, QStringList>& users = *found;
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
