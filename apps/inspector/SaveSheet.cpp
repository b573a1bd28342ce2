#include "apps/inspector/SaveSheet.h"

#include <QBoxLayout>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTreeWidget>

#include "apps/inspector/theme.h"
#include "apps/inspector/words.h"
#include "vexqt/inspector/qt_value.h"

namespace vexqt::inspector_app {

namespace {

QString titleOf(Severity severity) {
    switch (severity) {
        case Severity::Destroys:
            return SaveSheet::tr("Would be destroyed");
        case Severity::Changes:
            return SaveSheet::tr("Will change besides your edits");
        case Severity::Note:
            break;
    }
    return SaveSheet::tr("Your edits, and what is good to know");
}

QString iconOf(Severity severity) {
    switch (severity) {
        case Severity::Destroys:
            return QStringLiteral("problem");
        case Severity::Changes:
            return QStringLiteral("warning");
        case Severity::Note:
            break;
    }
    return QStringLiteral("information");
}

QString placeOf(const Finding& finding) {
    if (!finding.range || finding.range->length == 0) return {};
    return offsetText(finding.range->offset);
}

}  // namespace

QString SaveSheet::summaryOf(const SavePlan& plan) {
    const FileChange& change = plan.change();
    if (change.isEmpty()) return tr("Nothing will be written: the file has all of it already.");
    const auto places = static_cast<int>(change.writes.size()) + (change.flip ? 1 : 0);
    QString written = tr("%1 will be written, in %n place(s).", nullptr, places)
                          .arg(bytesText(change.bytesWritten()));
    switch (plan.way()) {
        case SavePlan::Way::Patch:
            return tr("%1 Nothing moves, and the media stays as it is.").arg(written);
        case SavePlan::Way::InOldPlace:
            return tr("%1 The movie stays in its old place, with the free space there; the media "
                      "stays as it is.")
                .arg(written);
        case SavePlan::Way::Move:
            return tr("%1 The movie goes to the end of the file, and its old place becomes free "
                      "space; the media stays as it is.")
                .arg(written);
        case SavePlan::Way::Nothing:
            break;
    }
    return written;
}

bool SaveSheet::isBlocked(const SavePlan& plan) {
    return std::ranges::any_of(plan.findings(), [](const Finding& finding) {
        return finding.id == "file-changed" || finding.id == "read-again-first" ||
               finding.id == "no-room";
    });
}

SaveSheet::SaveSheet(const QString& file, const SavePlan& plan, Purpose purpose, QWidget* parent)
    : QDialog(parent) {
    setWindowTitle(purpose == Purpose::Inform ? tr("What a Save Would Do") : tr("Save"));
    setWindowModality(Qt::WindowModal);
    resize(720, 440);

    auto* title = new QLabel(purpose == Purpose::Inform ? tr("A save of %1").arg(file)
                                                        : tr("Before %1 is saved").arg(file));
    QFont large = title->font();
    large.setPointSizeF(large.pointSizeF() * 1.3);
    large.setBold(true);
    title->setFont(large);
    title->setTextFormat(Qt::PlainText);
    auto* summary = new QLabel(summaryOf(plan));
    summary->setWordWrap(true);
    summary->setTextFormat(Qt::PlainText);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(18, 16, 18, 14);
    layout->setSpacing(10);
    layout->addWidget(title);
    layout->addWidget(summary);
    if (plan.findings().empty())
        layout->addStretch(1);
    else
        layout->addWidget(listOfFindings(plan), 1);
    const bool canBeForced = plan.has(Severity::Destroys) && !isBlocked(plan);
    if (canBeForced && purpose != Purpose::Inform) {
        consent_ = new QCheckBox(tr("Save &although this will be destroyed"));
        layout->addWidget(consent_);
    }
    if (isBlocked(plan)) {
        auto* blocked = new QLabel(tr("The movie cannot be saved like this."));
        QFont bold = blocked->font();
        bold.setBold(true);
        blocked->setFont(bold);
        layout->addWidget(blocked);
    }
    addButtons(plan, purpose);
}

QWidget* SaveSheet::listOfFindings(const SavePlan& plan) {
    auto* list = new QTreeWidget;
    list->setColumnCount(3);
    list->setHeaderLabels({tr("What"), tr("Atom"), tr("Offset")});
    list->setUniformRowHeights(true);
    list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    list->setAccessibleName(tr("What the save will do"));
    list->setTextElideMode(Qt::ElideRight);
    for (const Severity severity : {Severity::Destroys, Severity::Changes, Severity::Note}) {
        auto* group = new QTreeWidgetItem({titleOf(severity)});
        for (const Finding& finding : plan.findings()) {
            if (finding.severity != severity) continue;
            auto* item = new QTreeWidgetItem(
                {toQString(finding.message), toQString(finding.path), placeOf(finding)});
            item->setToolTip(0, toQString(finding.message));
            item->setToolTip(1, toQString(finding.path));
            group->addChild(item);
        }
        if (group->childCount() == 0) {
            delete group;
            continue;
        }
        QFont bold = list->font();
        bold.setBold(true);
        group->setFont(0, bold);
        group->setIcon(0, theme::icon(iconOf(severity)));
        list->addTopLevelItem(group);
        group->setFirstColumnSpanned(true);
        group->setExpanded(true);
    }
    list->header()->setStretchLastSection(false);
    list->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    list->header()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
    list->header()->setSectionResizeMode(2, QHeaderView::ResizeToContents);
    return list;
}

void SaveSheet::addButtons(const SavePlan& plan, Purpose purpose) {
    auto* buttons = new QDialogButtonBox;
    layout()->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    if (purpose == Purpose::Inform) {
        buttons->addButton(QDialogButtonBox::Close);
        return;
    }
    buttons->addButton(QDialogButtonBox::Cancel);
    const auto add = [&](const QString& text, const QString& name, Choice choice) {
        auto* button = buttons->addButton(text, QDialogButtonBox::AcceptRole);
        button->setObjectName(name);
        button->setEnabled(consent_ == nullptr && !isBlocked(plan));
        if (consent_ != nullptr)
            connect(consent_, &QCheckBox::toggled, button, &QPushButton::setEnabled);
        connect(button, &QPushButton::clicked, this, [this, choice] {
            choice_ = choice;
            accept();
        });
        return button;
    };
    if (purpose == Purpose::Copy) {
        add(tr("&Save a Copy"), QStringLiteral("saveCopy"), Choice::SaveCopy)->setDefault(true);
        return;
    }
    add(tr("Save a &Copy…"), QStringLiteral("saveCopy"), Choice::SaveCopy);
    auto* save = add(tr("&Save"), QStringLiteral("save"), Choice::Save);
    save->setDefault(consent_ == nullptr);
}

bool SaveSheet::isForced() const { return consent_ != nullptr && consent_->isChecked(); }

}  // namespace vexqt::inspector_app
