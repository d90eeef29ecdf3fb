#pragma once

#include <QIcon>
#include <QProxyStyle>

// Pictures drawn in code, and standard icons read from their files only when first needed:
// reading the first image file makes Qt load and probe every image-format plugin, which costs
// more than a tenth of the window's start-up.
namespace tidewick {

/// The folder picture of the folder buttons, drawn in code: a yellow folder with a darker rim.
QIcon drawnFolderIcon();

/// A plus (`plus`) or a minus sign for adding to and removing from a list, drawn in code.
QIcon drawnSignIcon(bool plus);

/// The application's style, except that a standard icon is read from its file only when it is
/// first drawn or measured. Widgets such as the menu bar ask for icons they seldom show.
class DeferredIconStyle : public QProxyStyle {
    Q_OBJECT

public:
    QIcon standardIcon(StandardPixmap which, const QStyleOption* option = nullptr,
                       const QWidget* widget = nullptr) const override;
};

}  // namespace tidewick
