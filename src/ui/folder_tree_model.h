#pragma once

#include <QAbstractItemModel>
#include <memory>
#include <vector>

#include "platform/file_system.h"

// The folders under one place, as the folder tree shows them: each folder is listed when it is
// first opened, in the window's own thread, with no watcher and no background listing, so the
// tree is there the moment the window is.
namespace tidewick {

class FolderTreeModel : public QAbstractItemModel {
    Q_OBJECT

public:
    /// The role under which a folder's whole path is given.
    static constexpr int PathRole = Qt::UserRole + 1;

    explicit FolderTreeModel(const FileSystem& disk, QObject* parent = nullptr);
    ~FolderTreeModel() override;

    /// Shows the folders of `path`, listed afresh.
    void setRootPath(const QString& path);
    const QString& rootPath() const;

    /// The folder `path` under the root, listing the folders on its way there; invalid for the
    /// root itself and for a path that is not under it or does not exist.
    QModelIndex index(const QString& path);
    QString filePath(const QModelIndex& index) const;

    /// Lists every folder listed so far again, keeping those still there (and so what the tree
    /// has opened): folders made or removed meanwhile appear or go.
    void refresh();

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    bool hasChildren(const QModelIndex& parent = {}) const override;
    bool canFetchMore(const QModelIndex& parent) const override;
    void fetchMore(const QModelIndex& parent) override;

private:
    struct Node;

    const FileSystem& disk_;
    std::unique_ptr<Node> root_;

    Node* nodeOf(const QModelIndex& index) const;
    QModelIndex indexOf(const Node& node) const;
    void list(Node& node);
    void relist(Node& node);
};

}  // namespace tidewick
