#include "apps/inspector/AtomHeader.h"

#include <QBoxLayout>
#include <QFontDatabase>
#include <QLabel>

#include "apps/inspector/AtomTreeModel.h"
#include "apps/inspector/words.h"
#include "vexqt/inspector/qt_value.h"

namespace vexqt::inspector_app {

namespace {

QLabel* selectable(const QString& accessibleName) {
    auto* label = new QLabel;
    label->setTextFormat(Qt::PlainText);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    label->setFocusPolicy(Qt::ClickFocus);
    label->setAccessibleName(accessibleName);
    return label;
}

QString placeOf(const VexQTAtom& atom) {
    const Extent extent = atom.extent();
    if (extent.length == 0) return AtomHeader::tr("not in the file yet");
    const QString place = AtomHeader::tr("at %1").arg(offsetText(extent.start));
    return extent.headerLength > 8 ? AtomHeader::tr("%1, with an extended size").arg(place) : place;
}

QString remarkOn(const VexQTAtom& atom) {
    if (const auto declined = atom.declinedClass())
        return AtomHeader::tr("Kept as it is: %1 does not take these bytes (%2).")
            .arg(toQString(*declined), toQString(atom.declinedReason()));
    const Extent extent = atom.extent();
    const bool isCut = extent.length != 0 && extent.length < extent.headerLength;
    return isCut ? AtomHeader::tr("The file ends inside its header.") : QString();
}

}  // namespace

AtomHeader::AtomHeader(QWidget* parent)
    : QWidget(parent),
      type_(selectable(tr("Type"))),
      name_(selectable(tr("Name"))),
      facts_(selectable(tr("Class, size and place"))),
      remark_(selectable(tr("Remark"))) {
    QFont typeFont = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    typeFont.setPointSizeF(font().pointSizeF() * 1.5);
    typeFont.setBold(true);
    type_->setFont(typeFont);
    QFont nameFont = font();
    nameFont.setPointSizeF(font().pointSizeF() * 1.3);
    name_->setFont(nameFont);
    name_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    facts_->setForegroundRole(QPalette::PlaceholderText);
    facts_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    remark_->setWordWrap(true);

    auto* title = new QHBoxLayout;
    title->setSpacing(12);
    title->addWidget(type_, 0, Qt::AlignBaseline);
    title->addWidget(name_, 1, Qt::AlignBaseline);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(14, 8, 14, 8);
    layout->setSpacing(3);
    layout->addLayout(title);
    layout->addWidget(facts_);
    layout->addWidget(remark_);
    setAtom(nullptr);
}

void AtomHeader::setAtom(const VexQTAtom* atom) {
    setVisible(atom != nullptr);
    if (atom == nullptr) return;
    type_->setText(typeFor(*atom));
    name_->setText(nameFor(*atom));
    QStringList facts = {sizeText(atom->atomSize()), placeOf(*atom)};
    if (const auto count = static_cast<int>(atom->children().size()); count > 0)
        facts << tr("%n atom(s) in it", nullptr, count);
    facts << toQString(atom->atomClass().className);
    facts_->setText(facts.join(tr("  ·  ")));
    remark_->setText(remarkOn(*atom));
    remark_->setVisible(!remark_->text().isEmpty());
}

}  // namespace vexqt::inspector_app
