#include "vexqt/inspector/FormBinder.h"

#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QMetaMethod>
#include <QMetaProperty>

#include "vexqt/inspector/ListEditor.h"
#include "vexqt/inspector/ListTableModel.h"
#include "vexqt/inspector/TableController.h"
#include "vexqt/inspector/property_edit.h"
#include "vexqt/inspector/qt_value.h"
#include "vexqt/inspector/widgets/FieldEditor.h"

namespace vexqt {

static QString textProperty(const QWidget& widget, const char* name) {
    return widget.property(name).toString();
}

FormBinder::FormBinder(QWidget& form, VexQTAtomViewController& controller)
    : QObject(&form), form_(form), controller_(controller), atom_(*controller.atom()) {
    bind(form_);
    const auto* tables = qobject_cast<const TableController*>(&controller_);
    if (tables != nullptr && tables->table() != nullptr)
        keys_.insert(tables->table(), tables->listName());
    connect(qApp, &QApplication::focusChanged, this,
            [this](QWidget*, QWidget* focused) { follow(focused); });
    showAll();
}

void FormBinder::showAll() {
    for (const auto& show : shows_) show();
}

// MARK: Binding

void FormBinder::bind(QWidget& widget) {
    const QVariant classes = widget.property("onlyWhere");
    if (classes.isValid() &&
        !classes.toStringList().contains(toQString(atom_.atomClass().className))) {
        widget.hide();
        return;
    }
    bindValue(widget);
    bindPresence(widget);
    bindVisibility(widget, "visibleWhen", true);
    bindVisibility(widget, "visibleWhenNot", false);
    bindToController(widget);
    bindList(widget);
    bindSeconds(widget);
    for (QObject* child : widget.children())
        if (auto* inner = qobject_cast<QWidget*>(child)) bind(*inner);
}

void FormBinder::report(const QWidget& widget, const QString& problem) {
    problems_.append(widget.objectName() + QStringLiteral(": ") + problem);
}

const Field* FormBinder::fieldNamed(const QWidget& widget, const QString& key) {
    const Field* field = atom_.propertyNamed(fromQString(key));
    if (field != nullptr && field->get != nullptr) return field;
    report(widget, QStringLiteral("%1 has no value named %2")
                       .arg(toQString(atom_.atomClass().className), key));
    return nullptr;
}

/// Shows a text where there is no user property to show a value.
static void showText(QWidget& widget, const QVariant& value) {
    const QLocale locale;
    QString text = value.toString();
    if (value.typeId() == QMetaType::LongLong) text = locale.toString(value.toLongLong());
    if (value.typeId() == QMetaType::ULongLong) text = locale.toString(value.toULongLong());
    widget.setProperty("text", text);
}

static void makeReadOnly(QWidget& widget) {
    if (auto* editor = dynamic_cast<FieldEditor*>(&widget)) {
        editor->setReadOnly(true);
    } else if (widget.metaObject()->indexOfProperty("readOnly") >= 0) {
        widget.setProperty("readOnly", true);
    } else {
        widget.setEnabled(false);
    }
}

void FormBinder::bindValue(QWidget& widget) {
    const QString key = textProperty(widget, "key");
    if (key.isEmpty()) return;
    const Field* field = fieldNamed(widget, key);
    if (field == nullptr) return widget.setEnabled(false);
    keys_.insert(&widget, key);

    const QVariant mask = widget.property("mask");
    if (mask.isValid()) return bindMask(widget, *field, mask.toULongLong());

    if (auto* editor = dynamic_cast<FieldEditor*>(&widget)) editor->configure(*field);
    const QMetaProperty shown = widget.metaObject()->userProperty();
    if (!shown.isValid()) {
        if (qobject_cast<QLabel*>(&widget) == nullptr)
            report(widget, QStringLiteral("a %1 shows no value")
                               .arg(QLatin1String(widget.metaObject()->className())));
        shows_.push_back([this, &widget, field] { showText(widget, toVariant(valueOf(*field))); });
        return;
    }
    shows_.push_back([this, &widget, field, shown] {
        const QSignalBlocker silent(&widget);
        shown.write(&widget, toVariant(valueOf(*field)));
    });
    if (field->set == nullptr) return makeReadOnly(widget);
    storeWhenChanged(widget, [this, &widget, key, shown] {
        setValue(widget, key, fromVariant(shown.read(&widget)));
    });
}

void FormBinder::bindMask(QWidget& widget, const Field& field, std::uint64_t mask) {
    auto* box = qobject_cast<QCheckBox*>(&widget);
    const bool isInteger = field.kind == ValueKind::Unsigned || field.kind == ValueKind::Signed;
    if (box == nullptr || !isInteger || mask == 0)
        return report(widget, QStringLiteral("a mask is for a check box and an integer"));
    shows_.push_back([this, box, &field, mask] {
        const QSignalBlocker silent(box);
        const std::uint64_t bits = integerFrom(valueOf(field)).value_or(0) & mask;
        const bool isMixed = bits != 0 && bits != mask;
        box->setCheckState(isMixed     ? Qt::PartiallyChecked
                           : bits != 0 ? Qt::Checked
                                       : Qt::Unchecked);
        if (!isMixed) box->setTristate(false);
    });
    if (field.set == nullptr) return makeReadOnly(*box);
    stores_.insert(box, [this, box, &field, mask] {
        const std::uint64_t others = integerFrom(valueOf(field)).value_or(0) & ~mask;
        setValue(*box, toQString(field.name), others | (box->isChecked() ? mask : 0));
    });
    // From mixed to checked nothing is toggled.
    connect(box, &QCheckBox::stateChanged, this, &FormBinder::storeFromSender);
}

/// What an absent property becomes when somebody wants it there.
static Value defaultOf(const Field& field) {
    // The moment that an absent date is written as.
    constexpr std::chrono::sys_days kStartOf2001 = std::chrono::January / 1 / 2001;
    switch (field.kind) {
        case ValueKind::Boolean:
            return false;
        case ValueKind::Unsigned:
        case ValueKind::Signed:
        case ValueKind::Floating:
            return 0;
        case ValueKind::Text:
            return "";
        case ValueKind::Instant:
            return Date(kStartOf2001);
        case ValueKind::Data:
            return Bytes();
        case ValueKind::Transformation:
            return Matrix{1, 0, 0, 0, 1, 0, 0, 0, 1};
        case ValueKind::Color:
            return Color::rgb(0, 0, 0, 1);
        case ValueKind::Number:
            return Number();
        case ValueKind::None:
        case ValueKind::Picture:
        case ValueKind::List:
            return {};
    }
    return {};
}

void FormBinder::bindPresence(QWidget& widget) {
    const QString key = textProperty(widget, "presenceOf");
    if (key.isEmpty()) return;
    auto* box = qobject_cast<QCheckBox*>(&widget);
    const Field* field = fieldNamed(widget, key);
    if (field == nullptr) return widget.setEnabled(false);
    if (box == nullptr || !field->isOptional || defaultOf(*field).isAbsent())
        return report(widget, QStringLiteral("%1 is not optional, or has no default").arg(key));
    keys_.insert(box, key);

    shows_.push_back([this, box, field, key] {
        const QSignalBlocker silent(box);
        const bool isPresent = !valueOf(*field).isAbsent();
        box->setChecked(isPresent);
        for (QWidget* other : form_.findChildren<QWidget*>())
            if (textProperty(*other, "key") == key) other->setEnabled(isPresent);
    });
    if (field->set == nullptr) return makeReadOnly(*box);
    storeWhenChanged(*box, [this, box, field, key] {
        setValue(*box, key, box->isChecked() ? defaultOf(*field) : Value());
    });
}

void FormBinder::bindVisibility(QWidget& widget, const char* rule, bool isShownWhen) {
    const QString key = textProperty(widget, rule);
    if (key.isEmpty()) return;
    const Field* field = fieldNamed(widget, key);
    if (field == nullptr) return;
    const bool isBoolean = field->kind == ValueKind::Boolean;
    if (!isBoolean && !field->isOptional)
        return report(widget, QStringLiteral("%1 is no Boolean and not optional").arg(key));
    shows_.push_back([this, &widget, field, isBoolean, isShownWhen] {
        const Value value = valueOf(*field);
        const bool holds = isBoolean ? value == Value(true) : !value.isAbsent();
        widget.setVisible(holds == isShownWhen);
    });
}

void FormBinder::bindToController(QWidget& widget) {
    for (const char* rule : {"controllerKey", "fontKey"}) {
        const QString key = textProperty(widget, rule);
        if (key.isEmpty()) continue;
        const QMetaObject& known = *controller_.metaObject();
        const QMetaProperty property = known.property(known.indexOfProperty(key.toUtf8()));
        if (!property.isValid()) {
            report(widget, QStringLiteral("a %1 has no property named %2")
                               .arg(QLatin1String(known.className()), key));
        } else if (property.typeId() == QMetaType::QFont) {
            widget.setFont(property.read(&controller_).value<QFont>());
        } else {
            shows_.push_back(
                [this, &widget, property] { showText(widget, property.read(&controller_)); });
        }
    }
}

void FormBinder::bindList(QWidget& widget) {
    const QString key = textProperty(widget, "listKey");
    if (key.isEmpty()) return;
    const Field* field = atom_.propertyNamed(fromQString(key));
    if (field == nullptr || field->list == nullptr)
        return report(widget, QStringLiteral("%1 has no list named %2")
                                  .arg(toQString(atom_.atomClass().className), key));
    auto* editor = qobject_cast<ListEditor*>(&widget);
    auto* table = editor != nullptr ? editor->table() : qobject_cast<InspectorTableView*>(&widget);
    if (table == nullptr) return report(widget, QStringLiteral("no widget for a list"));

    keys_.insert(&widget, key);
    auto* model = new ListTableModel(controller_, *field,
                                     tableColumns(widget, form_.objectName(), problems_), table);
    if (editor != nullptr) {
        editor->setModel(model);
    } else {
        table->setModel(model);
        new ListActions(*table, *model);
    }
    shows_.push_back([model] { model->refresh(); });
}

void FormBinder::bindSeconds(QWidget& widget) {
    const QString timeKey = textProperty(widget, "secondsOf");
    if (timeKey.isEmpty()) return;
    auto* label = qobject_cast<QLabel*>(&widget);
    const Field* time = fieldNamed(widget, timeKey);
    const Field* scale = fieldNamed(widget, textProperty(widget, "timeScaleKey"));
    if (time == nullptr || scale == nullptr) return;
    if (label == nullptr) return report(widget, QStringLiteral("seconds are for a label"));
    shows_.push_back([this, label, time, scale] {
        const double units = doubleFrom(valueOf(*scale)).value_or(0);
        const double seconds = doubleFrom(valueOf(*time)).value_or(0) / units;
        label->setText(units > 0 ? tr("= %1 s").arg(QLocale().toString(seconds, 'f', 3))
                                 : QString());
    });
}

// MARK: Values

Value FormBinder::valueOf(const Field& field) const { return atom_.valueForKey(field.name); }

void FormBinder::storeWhenChanged(QWidget& widget, const Store& store) {
    stores_.insert(&widget, store);
    if (auto* line = qobject_cast<QLineEdit*>(&widget);
        line != nullptr && dynamic_cast<FieldEditor*>(&widget) == nullptr) {
        // A plain line tells of every key stroke.
        connect(line, &QLineEdit::editingFinished, this, &FormBinder::storeFromSender);
        return;
    }
    // Signals that are known only when the form is loaded.
    const QMetaProperty shown = widget.metaObject()->userProperty();
    const auto slot = [](const char* signature) {
        return staticMetaObject.method(staticMetaObject.indexOfSlot(signature));
    };
    if (shown.hasNotifySignal())
        connect(&widget, shown.notifySignal(), this, slot("storeFromSender()"));
    const int refused = widget.metaObject()->indexOfSignal("editRefused(QString)");
    if (refused >= 0)
        connect(&widget, widget.metaObject()->method(refused), this,
                slot("forwardRefusal(QString)"));
}

void FormBinder::storeFromSender() {
    if (const Store store = stores_.value(sender())) store();
}

void FormBinder::forwardRefusal(const QString& why) {
    emit controller_.editRefused(keys_.value(qobject_cast<QWidget*>(sender())), why);
}

void FormBinder::setValue(const QWidget& widget, const QString& key, const Value& value) {
    if (atom_.valueForKey(fromQString(key)) == value) return;
    EditHandler::Edit edit = propertyEdit(atom_, fromQString(key), value);
    edit.text = tr("Change %1").arg(titleOf(widget, key));
    if (!controller_.performEdit(std::move(edit))) showAll();
}

/// "timeScale" as "time scale".
static QString wordsOf(const QString& key) {
    QString words;
    for (const QChar c : key) {
        if (c.isUpper()) words += u' ';
        words += c.toLower();
    }
    return words;
}

QString FormBinder::titleOf(const QWidget& widget, const QString& key) const {
    QString title;
    if (const auto* box = qobject_cast<const QCheckBox*>(&widget)) title = box->text();
    for (const QLabel* label : form_.findChildren<QLabel*>())
        if (label->buddy() == &widget) title = label->text();
    title.remove(u'&');
    while (title.endsWith(u':')) title.chop(1);
    if (title.isEmpty()) return wordsOf(key);
    // Within a sentence, unless the word is an abbreviation.
    if (title.size() > 1 && title[1].isLower()) title[0] = title[0].toLower();
    return title;
}

// MARK: Focus

void FormBinder::follow(const QWidget* focused) {
    QString key;
    for (const QWidget* at = focused; at != nullptr && key.isEmpty(); at = at->parentWidget())
        key = keys_.value(at);
    if (key == focusedKey_) return;
    focusedKey_ = key;
    emit controller_.fieldFocused(key);
}

}  // namespace vexqt
