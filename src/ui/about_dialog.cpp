#include "ui/about_dialog.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QVBoxLayout>

#include "forms/main_form.h"

namespace tidewick {

AboutDialog::AboutDialog(const QString& caption, const QString& webPage, QWidget* parent)
    : QDialog(parent) {
    setObjectName(QStringLiteral("About"));
    setWindowTitle(QStringLiteral("About ") + programName());
    auto* text = new QLabel(this);
    text->setObjectName(QStringLiteral("AboutText"));
    text->setTextFormat(Qt::RichText);
    text->setOpenExternalLinks(true);
    text->setWordWrap(true);
    text->setText(
        QStringLiteral("<p><b>%1</b></p>"
                       "<p>Lists the media files that a multitrack session uses and moves the "
                       "other files of its folder aside.</p>"
                       "<p>This program is provided as is, without warranty of any kind. Moved "
                       "files go to the target folder and their originals to the recycle bin; "
                       "check the list before you move anything.</p>"
                       "<p><a href=\"%2\">%2</a></p>")
            .arg(caption.toHtmlEscaped(), webPage.toHtmlEscaped()));
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(text);
    layout->addWidget(buttons);
    setFixedWidth(420);
}

}  // namespace tidewick
