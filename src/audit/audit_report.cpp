#include "audit/audit_report.h"

namespace tidewick {

qsizetype FolderReport::sessionCount() const {
    qsizetype count = 0;
    for (const auto& [kind, names] : sessions) {
        count += names.size();
    }
    return count;
}

}  // namespace tidewick
