#include "sweep/main_form.h"

// The events of the move and the copy. Each is wired to its control; until its behaviour is
// built it leaves everything as it is.
namespace tidewick {

void MainForm::CopyFilesButton_Click() {}

}  // namespace tidewick
