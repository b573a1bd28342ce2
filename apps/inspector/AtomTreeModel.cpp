#include "apps/inspector/AtomTreeModel.h"

#include <QFontDatabase>
#include <QGuiApplication>
#include <QLocale>
#include <QPalette>

#include "apps/inspector/theme.h"
#include "apps/inspector/words.h"
#include "vexqt/asset/AtomPath.h"
#include "vexqt/inspector/qt_value.h"

namespace vexqt::inspector_app {

struct AtomTreeModel::Node {
    VexQTAtom* atom = nullptr;  ///< Null for what holds the root atoms.
    Node* parent = nullptr;
    int row = 0;
    bool isPopulated = false;
    std::vector<std::unique_ptr<Node>> children{};
};

QString typeFor(const VexQTAtom& atom) {
    // A code of four zeroes and the like would show as nothing.
    const std::string code = textFromCode(atom.atomType());
    QString text = toQString(code);
    for (QChar& character : text)
        if (!character.isPrint()) character = QChar(0x2400);
    return text;
}

QString nameFor(const VexQTAtom& atom) {
    if (const auto key = AtomPath::keyOf(atom)) return toQString(*key);
    QString name = toQString(atom.atomName());
    if (atom.atomType() != "trak"_os) return name;
    // Which track it is, is what people look for.
    const Value kind = atom.valueForKeyPath("mdia.hdlr.componentSubType");
    const auto code = integerFrom(kind);
    if (!code) return name;
    return AtomTreeModel::tr("%1 (%2)", "a track and its media type")
        .arg(name, toQString(textFromCode(static_cast<OSType>(*code))));
}

AtomTreeModel::AtomTreeModel(QObject* parent)
    : QAbstractItemModel(parent), root_(std::make_unique<Node>()) {}

AtomTreeModel::~AtomTreeModel() = default;

void AtomTreeModel::setRoots(Atoms* roots) {
    beginResetModel();
    roots_ = roots;
    nodes_.clear();
    problems_.clear();
    root_ = std::make_unique<Node>();
    endResetModel();
}

// MARK: Nodes

AtomTreeModel::Node* AtomTreeModel::nodeAt(const QModelIndex& index) const {
    return index.isValid() ? static_cast<Node*>(index.internalPointer()) : root_.get();
}

QModelIndex AtomTreeModel::indexOf(const Node* node, int column) const {
    return node == root_.get() ? QModelIndex() : createIndex(node->row, column, node);
}

AtomTreeModel::Atoms* AtomTreeModel::childrenOf(const Node* node) const {
    return node->atom != nullptr ? &node->atom->children() : roots_;
}

void AtomTreeModel::populate(Node* node) const {
    if (node->isPopulated) return;
    node->isPopulated = true;
    const Atoms* atoms = childrenOf(node);
    if (atoms == nullptr) return;
    node->children.reserve(atoms->size());
    for (const auto& atom : *atoms) {
        node->children.push_back(std::make_unique<Node>(Node{
            .atom = atom.get(), .parent = node, .row = static_cast<int>(node->children.size())}));
        nodes_.insert(atom.get(), node->children.back().get());
    }
}

namespace {

/// The atoms from a root down to the one that is looked for, that one first; empty for none.
std::vector<const VexQTAtom*> chainTo(const VexQTAtom* wanted, const AtomTreeModel::Atoms& atoms) {
    for (const auto& atom : atoms) {
        if (atom.get() == wanted) return {wanted};
        auto chain = chainTo(wanted, atom->children());
        if (chain.empty()) continue;
        chain.push_back(atom.get());
        return chain;
    }
    return {};
}

}  // namespace

AtomTreeModel::Node* AtomTreeModel::nodeOf(const VexQTAtom* atom) const {
    if (atom == nullptr) return root_.get();
    if (const auto known = nodes_.constFind(atom); known != nodes_.constEnd()) return *known;
    if (roots_ == nullptr) return nullptr;
    const auto chain = chainTo(atom, *roots_);
    if (chain.empty()) return nullptr;
    Node* node = root_.get();
    for (auto step = chain.rbegin(); step != chain.rend(); ++step) {
        populate(node);
        node = nodes_.value(*step);
        if (node == nullptr) return nullptr;
    }
    return node;
}

/// From here on its atom, which may be gone already, is not asked any more.
void AtomTreeModel::forget(Node* node) {
    nodes_.remove(node->atom);
    node->atom = nullptr;
    node->isPopulated = true;
    for (const auto& child : node->children) forget(child.get());
}

void AtomTreeModel::renumber(Node* parent, std::size_t from) const {
    for (std::size_t i = from; i < parent->children.size(); ++i)
        parent->children[i]->row = static_cast<int>(i);
}

// MARK: Atoms

VexQTAtom* AtomTreeModel::atomAt(const QModelIndex& index) const {
    return index.isValid() ? nodeAt(index)->atom : nullptr;
}

QModelIndex AtomTreeModel::indexOf(const VexQTAtom* atom) const {
    const Node* node = nodeOf(atom);
    return node != nullptr ? indexOf(node) : QModelIndex();
}

VexQTAtom* AtomTreeModel::holderOf(const VexQTAtom* atom) const {
    const Node* node = nodeOf(atom);
    return node != nullptr && node->parent != nullptr ? node->parent->atom : nullptr;
}

QString AtomTreeModel::pathOf(const VexQTAtom* atom) const {
    return atom != nullptr && roots_ != nullptr ? toQString(AtomPath::of(*atom, *roots_))
                                                : QString();
}

std::unique_ptr<VexQTAtom> AtomTreeModel::take(VexQTAtom* holder, int row) {
    Node* node = nodeOf(holder);
    populate(node);
    beginRemoveRows(indexOf(node), row, row);
    const auto position = static_cast<std::size_t>(row);
    forget(node->children[position].get());
    node->children.erase(node->children.begin() + row);
    renumber(node, position);
    Atoms& atoms = *childrenOf(node);
    std::unique_ptr<VexQTAtom> taken;
    if (holder != nullptr) {
        taken = holder->removeChild(atoms[position].get());
    } else {
        taken = std::move(atoms[position]);
        atoms.erase(atoms.begin() + row);
    }
    endRemoveRows();
    refresh(holder);
    return taken;
}

void AtomTreeModel::insert(VexQTAtom* holder, int row, std::unique_ptr<VexQTAtom> atom) {
    Node* node = nodeOf(holder);
    populate(node);
    beginInsertRows(indexOf(node), row, row);
    auto child = std::make_unique<Node>(Node{.atom = atom.get(), .parent = node, .row = row});
    nodes_.insert(atom.get(), child.get());
    node->children.insert(node->children.begin() + row, std::move(child));
    renumber(node, static_cast<std::size_t>(row));
    const auto size = static_cast<std::int64_t>(atom->atomSize());
    Atoms& atoms = *childrenOf(node);
    atoms.insert(atoms.begin() + row, std::move(atom));
    if (holder != nullptr) holder->increaseSizeBy(size);
    endInsertRows();
    refresh(holder);
}

void AtomTreeModel::refresh(const VexQTAtom* atom) {
    synchronise(root_.get());
    // Names and sizes of what an atom is in follow from it.
    for (Node* node = atom != nullptr ? nodeOf(atom) : nullptr; node != nullptr && node->atom;
         node = node->parent)
        emit dataChanged(indexOf(node), indexOf(node, kColumns - 1));
}

/// Some values stand for children of the same atom or of one beside it: where a level is no longer
/// what was shown of it, it is shown anew.
void AtomTreeModel::synchronise(Node* node) {
    if (!node->isPopulated) return;
    const Atoms* atoms = childrenOf(node);
    const std::size_t count = atoms != nullptr ? atoms->size() : 0;
    bool isSame = node->children.size() == count;
    for (std::size_t i = 0; isSame && i < count; ++i)
        isSame = node->children[i]->atom == (*atoms)[i].get();
    if (isSame) {
        for (const auto& child : node->children) synchronise(child.get());
        return;
    }
    if (!node->children.empty()) {
        for (const auto& child : node->children) forget(child.get());
        beginRemoveRows(indexOf(node), 0, static_cast<int>(node->children.size()) - 1);
        node->children.clear();
        endRemoveRows();
    }
    if (count == 0) return;
    beginInsertRows(indexOf(node), 0, static_cast<int>(count) - 1);
    node->isPopulated = false;
    populate(node);
    endInsertRows();
}

void AtomTreeModel::setProblems(const QHash<const VexQTAtom*, QString>& problems) {
    problems_ = problems;
    for (auto problem = problems_.cbegin(); problem != problems_.cend(); ++problem)
        if (const Node* node = nodes_.value(problem.key()))
            emit dataChanged(indexOf(node), indexOf(node, kColumns - 1));
}

// MARK: What views ask for

QModelIndex AtomTreeModel::index(int row, int column, const QModelIndex& parent) const {
    if (!hasIndex(row, column, parent)) return {};
    return createIndex(row, column, nodeAt(parent)->children[static_cast<std::size_t>(row)].get());
}

QModelIndex AtomTreeModel::parent(const QModelIndex& index) const {
    return index.isValid() ? indexOf(nodeAt(index)->parent) : QModelIndex();
}

int AtomTreeModel::rowCount(const QModelIndex& parent) const {
    if (parent.column() > 0) return 0;
    Node* node = nodeAt(parent);
    populate(node);
    return static_cast<int>(node->children.size());
}

int AtomTreeModel::columnCount(const QModelIndex&) const { return kColumns; }

bool AtomTreeModel::hasChildren(const QModelIndex& parent) const {
    if (parent.column() > 0) return false;
    const Node* node = nodeAt(parent);
    if (node->isPopulated) return !node->children.empty();
    const Atoms* atoms = childrenOf(node);
    return atoms != nullptr && !atoms->empty();
}

QString AtomTreeModel::toolTipFor(const VexQTAtom& atom) const {
    QString text = tr("%1: %2").arg(pathOf(&atom), nameFor(atom));
    if (const auto declined = atom.declinedClass())
        text += u'\n' + tr("Kept as it is: %1 does not take it: %2")
                            .arg(toQString(*declined), toQString(atom.declinedReason()));
    if (problems_.contains(&atom)) text += u'\n' + problems_.value(&atom);
    return text;
}

QVariant AtomTreeModel::data(const QModelIndex& index, int role) const {
    const VexQTAtom* atom = atomAt(index);
    if (atom == nullptr) return {};
    const bool isNumber = index.column() == SizeColumn || index.column() == OffsetColumn;
    switch (role) {
        case Qt::DisplayRole:
            switch (index.column()) {
                case TypeColumn:
                    return typeFor(*atom);
                case NameColumn:
                    return nameFor(*atom);
                case SizeColumn:
                    return QLocale().toString(qulonglong{atom->atomSize()});
                default:
                    // An atom that is not in the file yet lies nowhere.
                    return atom->extent().length == 0
                               ? tr("new")
                               : QLocale().toString(qulonglong{atom->extent().start});
            }
        case Qt::TextAlignmentRole:
            return QVariant::fromValue(
                Qt::Alignment((isNumber ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter));
        case Qt::FontRole:
            if (index.column() == TypeColumn)
                return QFontDatabase::systemFont(QFontDatabase::FixedFont);
            return {};
        case Qt::ForegroundRole:
            if (isNumber) return QGuiApplication::palette().color(QPalette::PlaceholderText);
            return {};
        case Qt::DecorationRole:
            if (index.column() == NameColumn && problems_.contains(atom))
                return theme::icon(QStringLiteral("warning"));
            return {};
        case Qt::ToolTipRole:
            return toolTipFor(*atom);
        case Qt::AccessibleTextRole:
            if (index.column() != TypeColumn) return {};
            return tr("%1, %2").arg(typeFor(*atom), nameFor(*atom));
        default:
            return {};
    }
}

QVariant AtomTreeModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal) return {};
    if (role == Qt::TextAlignmentRole && section >= SizeColumn)
        return QVariant::fromValue(Qt::Alignment(Qt::AlignRight | Qt::AlignVCenter));
    if (role != Qt::DisplayRole) return {};
    switch (section) {
        case TypeColumn:
            return tr("Type");
        case NameColumn:
            return tr("Name");
        case SizeColumn:
            return tr("Size");
        case OffsetColumn:
            return tr("Offset");
        default:
            return {};
    }
}

}  // namespace vexqt::inspector_app
