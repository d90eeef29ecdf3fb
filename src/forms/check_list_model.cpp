#include "forms/check_list_model.h"

#include "sweep/sweep.h"
#include "text/path_text.h"

namespace tidewick {

void CheckListModel::addItem(const QString& text, bool checked) {
    addItems({{text, checked}});
}

void CheckListModel::addItems(const QList<CheckItem>& items) {
    if (items.isEmpty()) {
        return;
    }
    const int first = count();
    beginInsertRows({}, first, first + static_cast<int>(items.size()) - 1);
    items_.append(items);
    // A repeated text keeps its first row.
    firstRows_.insertEachNew(first, items.size(), rowTexts());
    endInsertRows();
}

int CheckListModel::indexOf(const QString& text) const {
    return int(firstRows_.find(text, TextIndex::hashOf(text), rowTexts()));
}

void CheckListModel::setChecked(int row, bool checked) {
    if (row < 0 || row >= count() || items_.at(row).checked == checked) {
        return;
    }
    items_[row].checked = checked;
    const QModelIndex changed = index(row);
    Q_EMIT dataChanged(changed, changed, {Qt::CheckStateRole});
}

void CheckListModel::setAllChecked(bool checked) {
    if (items_.isEmpty()) {
        return;
    }
    for (CheckItem& item : items_) {
        item.checked = checked;
    }
    Q_EMIT dataChanged(index(0), index(count() - 1), {Qt::CheckStateRole});
}

void CheckListModel::invertChecks() {
    if (items_.isEmpty()) {
        return;
    }
    for (CheckItem& item : items_) {
        item.checked = !item.checked;
    }
    Q_EMIT dataChanged(index(0), index(count() - 1), {Qt::CheckStateRole});
}

void CheckListModel::setTooltip(int row, const QString& text) {
    tooltips_.insert(row, text);
    Q_EMIT dataChanged(index(row), index(row), {Qt::ToolTipRole});
}

void CheckListModel::clear() {
    beginResetModel();
    items_.clear();
    firstRows_.clear();
    tooltips_.clear();
    endResetModel();
}

int CheckListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : count();
}

QVariant CheckListModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= count()) {
        return {};
    }
    const CheckItem& line = items_.at(index.row());
    switch (role) {
        case Qt::DisplayRole:
            return visibleText(line.text);
        case Qt::ToolTipRole:  // the whole line, also where the list is too narrow for it
            if (const auto told = tooltips_.constFind(index.row()); told != tooltips_.constEnd()) {
                QStringList lines = told->split(u'\n');  // its own lines break; a name's do not
                for (QString& text : lines) {
                    text = visibleText(text);
                }
                return lines.join(u'\n');
            }
            return visibleText(tooltipFolder_.isEmpty() ? line.text
                                                        : otherFilePath(tooltipFolder_, line.text));
        case Qt::CheckStateRole:
            return line.checked ? Qt::Checked : Qt::Unchecked;
        default:
            return {};
    }
}

bool CheckListModel::setData(const QModelIndex& index, const QVariant& value, int role) {
    if (!index.isValid() || index.row() >= count() || role != Qt::CheckStateRole) {
        return false;
    }
    const bool checked = value.toInt() == Qt::Checked;
    if (items_.at(index.row()).checked != checked) {
        items_[index.row()].checked = checked;
        Q_EMIT dataChanged(index, index, {Qt::CheckStateRole});
    }
    Q_EMIT itemCheck(index.row());
    return true;
}

Qt::ItemFlags CheckListModel::flags(const QModelIndex& index) const {
    if (!index.isValid()) {
        return Qt::NoItemFlags;
    }
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable |
           Qt::ItemNeverHasChildren;
}

}  // namespace tidewick
