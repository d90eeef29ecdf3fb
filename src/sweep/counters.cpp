#include "sweep/main_form.h"

// The counts in the list frames' captions and the sizes on the information line.
namespace tidewick {

void MainForm::UpdateSelCounter() {}
void MainForm::UpdateSizes() {}
void MainForm::UnusedFiles_Click() {}
void MainForm::UnusedFiles_ItemCheck(int item) {
    Q_UNUSED(item);
}

}  // namespace tidewick
