#include "audit/audit_report.h"

#include "sweep/sweep.h"
#include "text/path_text.h"

namespace tidewick {

qsizetype FolderReport::sessionCount() const {
    qsizetype count = 0;
    for (const auto& [kind, names] : sessions) {
        count += names.size();
    }
    return count;
}

QString FolderReport::reclaimablePath(const QString& text) const {
    return otherFilePath(withSeparator(folder), text);  // as the folder's load names it
}

}  // namespace tidewick
