#include "sweep/main_form.h"

// The other files of the session folder that no scanned session uses: "Files to be Moved".
namespace tidewick {

void MainForm::UpdateUnusedFileSpec() {}

void MainForm::FillUnused(QString& mpath, QString& sFolder, QString& extn,
                          QString& sesFileToIgnore) {
    Q_UNUSED(mpath);
    Q_UNUSED(sFolder);
    Q_UNUSED(extn);
    Q_UNUSED(sesFileToIgnore);
}

void MainForm::KeepPKCheck_Click() {}
void MainForm::ExcludedCheck_Click() {}

}  // namespace tidewick
