#pragma once

#include <QHash>
#include <QStringList>
#include <functional>
#include <vector>

#include "vexqt/inspector/VexQTAtomViewController.h"

namespace vexqt {

/// Binds the widgets of a form to an atom's properties, by what the widgets' dynamic properties
/// say:
///
/// - `key`: the property that a widget shows and sets, by way of the widget's user property; with
///   `mask` a check box has only those bits of an integer.
/// - `presenceOf`: the property whose presence a check box shows and sets.
/// - `visibleWhen`, `visibleWhenNot`: what shows or hides a widget, a Boolean property or the
///   presence of one that can be absent.
/// - `onlyWhere`: the classes of atoms that a widget and those inside it are for.
/// - `controllerKey`, `fontKey`: the controller's property that is a widget's text or its font.
/// - `listKey`: the list that a table view or a ListEditor shows.
/// - `secondsOf`, `timeScaleKey`: a label tells the one in seconds.
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
    void bindMask(QWidget& widget, const Field& field, std::uint64_t mask);
    void bindPresence(QWidget& widget);
    void bindVisibility(QWidget& widget, const char* rule, bool isShownWhen);
    void bindToController(QWidget& widget);
    void bindList(QWidget& widget);
    void bindSeconds(QWidget& widget);

    const Field* fieldNamed(const QWidget& widget, const QString& key);
    void storeWhenChanged(QWidget& widget, const Store& store);
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
    QHash<const QWidget*, QString> keys_;  ///< What each widget is the field of.
    QString focusedKey_;
    QStringList problems_;
};

}  // namespace vexqt
