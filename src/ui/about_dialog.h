#pragma once

#include <QDialog>

// The About box: the program's name and version, a disclaimer and a link to its web page.
namespace tidewick {

class AboutDialog : public QDialog {
    Q_OBJECT

public:
    AboutDialog(const QString& caption, const QString& webPage, QWidget* parent = nullptr);
};

}  // namespace tidewick
