#pragma once

#include <QAbstractItemModel>
#include <QHash>
#include <memory>
#include <vector>

#include "vexqt/core/VexQTAtom.h"

namespace vexqt::inspector_app {

/// The atoms of a movie as a tree: type, name, size and place.
///
/// It refers to the atoms and copies nothing of them. What it keeps of a level, it makes when
/// somebody first asks for that level. Atoms are taken out of the movie and put into it here, so
/// that views learn of it in time.
class AtomTreeModel : public QAbstractItemModel {
    Q_OBJECT

public:
    using Atoms = std::vector<std::unique_ptr<VexQTAtom>>;
    enum Column { TypeColumn, NameColumn, SizeColumn, OffsetColumn, kColumns };

    explicit AtomTreeModel(QObject* parent = nullptr);
    ~AtomTreeModel() override;

    /// Shows other atoms; null for none. They are not owned.
    void setRoots(Atoms* roots);

    /// Null for an index that is none.
    VexQTAtom* atomAt(const QModelIndex& index) const;
    QModelIndex indexOf(const VexQTAtom* atom) const;
    /// Null for a root atom.
    VexQTAtom* holderOf(const VexQTAtom* atom) const;
    /// "moov.trak[1].tkhd"; empty for an atom that is not here.
    QString pathOf(const VexQTAtom* atom) const;

    /// Takes an atom out of what holds it, whose size it loses; null holds the root atoms.
    std::unique_ptr<VexQTAtom> take(VexQTAtom* holder, int row);
    /// Puts it in; the holder and all above it grow by its size.
    void insert(VexQTAtom* holder, int row, std::unique_ptr<VexQTAtom> atom);

    /// An atom's values have changed, and perhaps the children of others with them.
    void refresh(const VexQTAtom* atom);
    /// What is wrong with an atom, shown beside it.
    void setProblems(const QHash<const VexQTAtom*, QString>& problems);

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& index) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    bool hasChildren(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;

private:
    struct Node;

    Node* nodeAt(const QModelIndex& index) const;
    QModelIndex indexOf(const Node* node, int column = 0) const;
    Atoms* childrenOf(const Node* node) const;
    void populate(Node* node) const;
    Node* nodeOf(const VexQTAtom* atom) const;
    void forget(Node* node);
    void renumber(Node* parent, std::size_t from) const;
    void synchronise(Node* node);
    QString toolTipFor(const VexQTAtom& atom) const;

    Atoms* roots_ = nullptr;
    std::unique_ptr<Node> root_;
    mutable QHash<const VexQTAtom*, Node*> nodes_;
    QHash<const VexQTAtom*, QString> problems_;
};

/// The name by which people know an atom: that of its class, or the key of an item of metadata.
QString nameFor(const VexQTAtom& atom);
/// The type, its unprintable characters as they are written in paths.
QString typeFor(const VexQTAtom& atom);

}  // namespace vexqt::inspector_app
