#pragma once

#include <QComboBox>

// Drop-down lists that open wide enough for their longest line.
namespace tidewick {

/// Widens the drop-down list of `ctl` so that its widest item (measured in the combo's font,
/// plus 20 pixels) fits, but never beyond the screen's width less 20 pixels. A list already
/// wider than that keeps its width. False when `ctl` is no combo box or has no items, or when
/// the list ends with no width.
bool SetComboDropWidth(QWidget* ctl);

/// The media type combo: it fits its drop-down width each time the list opens.
class FileTypesComboBox : public QComboBox {
    Q_OBJECT

public:
    using QComboBox::QComboBox;
    void showPopup() override;
};

}  // namespace tidewick
