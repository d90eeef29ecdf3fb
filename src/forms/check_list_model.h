#pragma once

#include <QAbstractListModel>
#include <QHash>
#include <QList>
#include <QString>

#include "text/text_index.h"

// A list of check-box lines: the data of UsedFiles and UnusedFiles. A QListView shows it
// directly, also with a hundred thousand lines.
namespace tidewick {

/// One line of a check-box list.
struct CheckItem {
    QString text;
    bool checked = false;

    bool operator==(const CheckItem&) const = default;
};

class CheckListModel : public QAbstractListModel {
    Q_OBJECT

public:
    using QAbstractListModel::QAbstractListModel;

    int count() const { return static_cast<int>(items_.size()); }
    const CheckItem& item(int row) const { return items_.at(row); }
    const QString& text(int row) const { return items_.at(row).text; }
    bool isChecked(int row) const { return items_.at(row).checked; }

    /// The row of the first line whose text equals `text` exactly, or −1.
    int indexOf(const QString& text) const;
    bool contains(const QString& text) const { return indexOf(text) >= 0; }

    /// Appends one line.
    void addItem(const QString& text, bool checked = false);
    /// Appends many lines in one go, which a view takes in far faster than one by one.
    void addItems(const QList<CheckItem>& items);
    /// Sets the check mark of one line by code; raises no itemCheck().
    void setChecked(int row, bool checked);
    /// Sets the check mark of every line by code; raises no itemCheck().
    void setAllChecked(bool checked);
    /// Turns every line's check mark over, by code; raises no itemCheck().
    void invertChecks();
    /// Each line's tooltip is its whole text; with a folder set here (with its separator), the
    /// whole path of the file that the line names in that folder.
    void setTooltipFolder(const QString& folder) { tooltipFolder_ = folder; }
    /// Gives line `row` a tooltip of its own instead (until the list is cleared).
    void setTooltip(int row, const QString& text);
    /// The tooltip of line `row`, as the view shows it.
    QString tooltip(int row) const { return data(index(row), Qt::ToolTipRole).toString(); }
    void clear();

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    /// A check mark changed from the view: the line changes and itemCheck() is raised.
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

Q_SIGNALS:
    /// The user changed the check mark of `row`.
    void itemCheck(int row);

private:
    auto rowTexts() const {
        return [this](qsizetype row) -> const QString& { return items_.at(row).text; };
    }

    QList<CheckItem> items_;
    TextIndex firstRows_;  // the first row of each text
    QString tooltipFolder_;
    QHash<int, QString> tooltips_;
};

}  // namespace tidewick
