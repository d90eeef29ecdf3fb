#include "fileops/disk_types.h"

#include <QFileInfo>

namespace tidewick {

QString usedBy(const UsedFileOwners& owners, const QString& path) {
    if (owners.isEmpty()) {
        return {};
    }
    const QString canonical = QFileInfo(path).canonicalFilePath();
    return canonical.isEmpty() ? QString() : owners.value(canonical);
}

}  // namespace tidewick
