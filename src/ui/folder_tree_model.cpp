#include "ui/folder_tree_model.h"

#include <QDir>

#include "text/path_text.h"

namespace tidewick {

struct FolderTreeModel::Node {
    QString name;
    QString path;
    Node* parent = nullptr;
    int row = 0;
    bool listed = false;
    bool mayHaveChildren = true;
    std::vector<std::unique_ptr<Node>> children;

    std::unique_ptr<Node> child(const SubFolder& folder) {
        auto node = std::make_unique<Node>();
        node->name = folder.name;
        node->path = withSeparator(path) + folder.name;
        node->parent = this;
        node->mayHaveChildren = folder.mayHaveSubFolders;
        return node;
    }
    void renumber() {
        for (size_t row = 0; row < children.size(); ++row) {
            children[row]->row = int(row);
        }
    }
};

namespace {

bool sameName(const QString& a, const QString& b) {
#ifdef Q_OS_WIN
    return a.compare(b, Qt::CaseInsensitive) == 0;
#else
    return a == b;
#endif
}

}  // namespace

FolderTreeModel::FolderTreeModel(const FileSystem& disk, QObject* parent)
    : QAbstractItemModel(parent), disk_(disk), root_(std::make_unique<Node>()) {}

FolderTreeModel::~FolderTreeModel() = default;

void FolderTreeModel::setRootPath(const QString& path) {
    beginResetModel();
    root_ = std::make_unique<Node>();
    root_->path = path;
    for (const SubFolder& folder : disk_.listFolders(path)) {
        root_->children.push_back(root_->child(folder));
    }
    root_->renumber();
    root_->listed = true;
    endResetModel();
}

const QString& FolderTreeModel::rootPath() const {
    return root_->path;
}

QModelIndex FolderTreeModel::index(const QString& path) {
    const QString root = QDir::fromNativeSeparators(QDir::cleanPath(root_->path));
    const QString wanted = QDir::fromNativeSeparators(QDir::cleanPath(path));
    const QString prefix = root.endsWith(u'/') ? root : root + u'/';
    if (root_->path.isEmpty() || !wanted.startsWith(prefix)) {
        return {};
    }
    Node* node = root_.get();
    for (const QString& name : wanted.sliced(prefix.size()).split(u'/', Qt::SkipEmptyParts)) {
        if (!node->listed) {
            fetchMore(indexOf(*node));
        }
        const auto found =
            std::find_if(node->children.begin(), node->children.end(),
                         [&](const auto& child) { return sameName(child->name, name); });
        if (found == node->children.end()) {
            return {};
        }
        node = found->get();
    }
    return indexOf(*node);
}

QString FolderTreeModel::filePath(const QModelIndex& index) const {
    const Node* node = nodeOf(index);
    return node == root_.get() ? QString() : node->path;
}

void FolderTreeModel::refresh() {
    if (!root_->path.isEmpty()) {
        relist(*root_);
    }
}

void FolderTreeModel::relist(Node& node) {
    if (!node.listed) {
        return;
    }
    const QList<SubFolder> now = disk_.listFolders(node.path);
    const QModelIndex parent = node.parent == nullptr ? QModelIndex() : indexOf(node);
    for (int row = int(node.children.size()) - 1; row >= 0; --row) {
        const QString& name = node.children[size_t(row)]->name;
        if (std::none_of(now.cbegin(), now.cend(),
                         [&](const SubFolder& folder) { return folder.name == name; })) {
            beginRemoveRows(parent, row, row);
            node.children.erase(node.children.begin() + row);
            endRemoveRows();
        }
    }
    // What is left is in the order of the new listing; the new folders fill the gaps.
    for (int row = 0; row < int(now.size()); ++row) {
        if (size_t(row) >= node.children.size() ||
            node.children[size_t(row)]->name != now[row].name) {
            beginInsertRows(parent, row, row);
            node.children.insert(node.children.begin() + row, node.child(now[row]));
            node.renumber();
            endInsertRows();
        }
    }
    node.renumber();
    for (const auto& child : node.children) {
        relist(*child);
    }
}

QModelIndex FolderTreeModel::index(int row, int column, const QModelIndex& parent) const {
    const Node* node = nodeOf(parent);
    if (column != 0 || row < 0 || size_t(row) >= node->children.size()) {
        return {};
    }
    return createIndex(row, 0, node->children[size_t(row)].get());
}

QModelIndex FolderTreeModel::parent(const QModelIndex& child) const {
    const Node* node = nodeOf(child);
    return node->parent == nullptr ? QModelIndex() : indexOf(*node->parent);
}

int FolderTreeModel::rowCount(const QModelIndex& parent) const {
    return parent.column() > 0 ? 0 : int(nodeOf(parent)->children.size());
}

int FolderTreeModel::columnCount(const QModelIndex&) const {
    return 1;
}

QVariant FolderTreeModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) {
        return {};
    }
    const Node* node = nodeOf(index);
    if (role == Qt::DisplayRole) {
        return visibleText(node->name);
    }
    if (role == PathRole) {
        return node->path;
    }
    return {};
}

bool FolderTreeModel::hasChildren(const QModelIndex& parent) const {
    const Node* node = nodeOf(parent);
    return node->listed ? !node->children.empty() : node->mayHaveChildren;
}

bool FolderTreeModel::canFetchMore(const QModelIndex& parent) const {
    return !nodeOf(parent)->listed;
}

void FolderTreeModel::fetchMore(const QModelIndex& parent) {
    Node* node = nodeOf(parent);
    if (node->listed) {
        return;
    }
    node->listed = true;
    const QList<SubFolder> folders = disk_.listFolders(node->path);
    if (folders.isEmpty()) {
        return;
    }
    beginInsertRows(parent, 0, int(folders.size()) - 1);
    for (const SubFolder& folder : folders) {
        node->children.push_back(node->child(folder));
    }
    node->renumber();
    endInsertRows();
}

FolderTreeModel::Node* FolderTreeModel::nodeOf(const QModelIndex& index) const {
    return index.isValid() ? static_cast<Node*>(index.internalPointer()) : root_.get();
}

QModelIndex FolderTreeModel::indexOf(const Node& node) const {
    return node.parent == nullptr ? QModelIndex()
                                  : createIndex(node.row, 0, const_cast<Node*>(&node));
}

}  // namespace tidewick
