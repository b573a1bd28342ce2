#pragma once

#include <QHash>
#include <QStringList>
#include <functional>
#include <vector>

#include "vexqt/inspector/VexQTAtomViewController.h"

namespace vexqt {

/// Binds the widgets of a form to an atom's properties, by what the widgets' dynamic properties
/// say.
///
/// `key` names the property that a widget shows and sets, by way of the widget's user property;
/// with `mask` a check box has only those bits of an integer. `presenceOf` lets a check box say
/// whether a property that can be absent is there. `visibleWhen` and `visibleWhenNot` name a
/// Boolean property that shows or hides a widget; `onlyWhere` lists the classes of atoms that it is
/// for. `controllerKey` and `fontKey` name a property of the controller that is a label's text or a
/// widget's font. `listKey` names a list for a table view or a ListEditor. `secondsOf` and
/// `timeScaleKey` make a label tell a time in seconds.
///
/// Properties are reached by their names alone, and every edit goes through the controller.
class FormBinder final : public QObject {
    Q_OBJECT

public:
    /// The form owns the binder. Controller and atom must outlive the form.
    FormBinder(QWidget& form, VexQTAtomViewController& controller);

    /// Shows what the atom holds in every widget.
    void showAll();
    /// Widgets whose properties name nothing that there is.
    const QStringList& problems() const { return problems_; }

private slots:
    void storeFromSender();
    void forwardRefusal(const QString& why);

private:
    using Store = std::function<void()>;

    void bind(QWidget& widget);
    void bindValue(QWidget& widget);
    void bindMask(QWidget& box, const Field& field, std::uint64_t mask);
    void bindPresence(QWidget& box);
    void bindVisibility(QWidget& widget, const char* rule, bool isShownWhen);
    void bindToController(QWidget& widget);
    void bindList(QWidget& widget);
    void bindSeconds(QWidget& label);

    const Field* fieldNamed(const QWidget& widget, const QString& key);
    void storeWhenChanged(QWidget& widget, Store store);
    void setValue(const QWidget& widget, const QString& key, const Value& value);
    Value valueOf(const Field& field) const;
    /// What the field of a widget is called, for "Change …".
    QString titleOf(const QWidget& widget, const QString& key) const;
    void follow(const QWidget* focused);
    void report(const QWidget& widget, const QString& problem);

    QWidget& form_;
    VexQTAtomViewController& controller_;
    VexQTAtom& atom_;
    std::vector<std::function<void()>> shows_;
    QHash<const QObject*, Store> stores_;
    QHash<const QWidget*, QString> keys_;  ///< Of the widgets that have the focus for a property.
    QString focusedKey_;
    QStringList problems_;
};

}  // namespace vexqt
