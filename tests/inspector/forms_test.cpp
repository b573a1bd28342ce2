// Every interface description, with every atom that it is for.
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QDir>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMetaProperty>
#include <QPlainTextEdit>
#include <QTest>
#include <memory>

#include "atoms/all_classes.h"
#include "testing/bytes.h"
#include "vexqt/core/full_atom.h"
#include "vexqt/inspector/VexQTAtomViewController.h"
#include "vexqt/inspector/qt_value.h"
#include "vexqt/inspector/widgets/ColorWell.h"
#include "vexqt/inspector/widgets/DataField.h"
#include "vexqt/inspector/widgets/DateField.h"
#include "vexqt/inspector/widgets/FieldEditor.h"
#include "vexqt/inspector/widgets/FloatField.h"
#include "vexqt/inspector/widgets/LanguageField.h"
#include "vexqt/inspector/widgets/PictureWell.h"

using namespace vexqt;
using namespace vexqt::testing;

namespace {

const QString kBundle = QStringLiteral(":/vexqt/inspector/forms");

/// Bytes of an atom that a form shows.
struct Example {
    const AtomClass* cls;
    Bytes bytes;
    OSType under = 0;  ///< The type of the parent; 0 for none.
};

struct Decoded {
    std::unique_ptr<VexQTAtom> parent;
    std::unique_ptr<VexQTAtom> atom;

    VexQTAtom* operator->() const { return atom.get(); }
    VexQTAtom& operator*() const { return *atom; }
};

Decoded decoded(const Example& example, const Bytes& bytes) {
    Decoded result;
    if (example.under != 0) {
        result.parent = VexQTMetadataItem::kClass.create();
        result.parent->setAtomType(example.under);
    }
    result.atom = VexQTAtom::make(*example.cls, bytes, result.parent.get(), 0);
    return result;
}
Decoded decoded(const Example& example) { return decoded(example, example.bytes); }

// MARK: Examples

Bytes videoEntry() {
    VexQTvideSampleDescription entry;
    // Behind a 0 the reader would look for four bytes more.
    entry.setColorTableID(-1);
    return entry.atomData();
}

Bytes soundEntry(std::uint16_t version) {
    VexQTsounSampleDescription entry;
    entry.setSoundVersion(version);
    return entry.atomData();
}

Bytes timecodeEntry() {
    VexQTtmcdSampleDescription entry;
    entry.setSourceName("tape");  // Without it there is no language.
    return entry.atomData();
}

Bytes metadataEntry() {
    const Bytes keys =
        atom("keys"_os, {atom(0x01020304, {atom("keyd"_os, {text("mdta"), text("a.b")}),
                                           atom("dtyp"_os, {u64(0x05060708090A0B0C)})})});
    return atom("mebx"_os, {zeros(6), u16(1), keys});
}

Bytes handler(ByteView name) {
    return atom("hdlr"_os, {zeros(4), text("mhlrvide"), zeros(12), name});
}

Bytes subtitleEntry() {
    const Bytes fonts = atom("ftab"_os, {u16(1), u16(7), u8(5), text("Serif")});
    return atom("tx3g"_os, {zeros(38), fonts});
}

Bytes data(std::uint32_t type, ByteView value) {
    return atom("data"_os, {u32(type), u32(0), value});
}

Bytes onePixel() { return *Picture({1, 1}, {10, 20, 30, 255}).encode(PictureFormat::PNG); }

/// The classes whose bytes, as an atom made in memory has them, cannot be read or say too little.
std::vector<Example> specialExamples() {
    return {
        {&VexQTvideSampleDescription::kClass, videoEntry()},
        {&VexQTsounSampleDescription::kClass, soundEntry(0)},
        {&VexQTsounSampleDescription::kClass, soundEntry(1)},
        {&VexQTsounSampleDescription::kClass, soundEntry(2)},
        {&VexQTtmcdSampleDescription::kClass, timecodeEntry()},
        {&VexQTmetaSampleDescription::kClass, metadataEntry()},
        {&VexQTtx3gAtom::kClass, subtitleEntry()},
        {&VexQThdlrAtom::kClass, handler({})},
        {&VexQThdlrAtom::kClass, handler(text("Video"))},
        {&VexQTUserDataTextItem::kClass, atom(0xA96E616D, {u16(5), u16(0x55C4), text("Title")})},
        {&VexQTUserDataDirectTextItem::kClass, atom("XMP_"_os, {text("<x:xmpmeta>")})},
        {&VexQTdataAtom::kClass, data(1, text("Title"))},
        {&VexQTdataAtom::kClass, data(2, {})},
        {&VexQTdataAtom::kClass, data(13, {})},
        {&VexQTdataAtom::kClass, data(14, onePixel())},
        {&VexQTdataAtom::kClass, data(21, u8(0xFF))},
        {&VexQTdataAtom::kClass, data(22, u64(0xFEDCBA9876543210))},
        {&VexQTdataAtom::kClass, data(21, zeros(5))},
        {&VexQTdataAtom::kClass, data(23, u32(0x3F800000))},
        {&VexQTdataAtom::kClass, data(24, u64(0x3FF0000000000000))},
        {&VexQTdataAtom::kClass, data(0, u8(1))},
        {&VexQTdataAtom::kClass, data(0, u16(1))},
        {&VexQTdataAtom::kClass, data(0, u32(1))},
        {&VexQTdataAtom::kClass, data(0, zeros(8)), "trkn"_os},
        {&VexQTdataAtom::kClass, data(0, zeros(6)), "disk"_os},
        {&VexQTdataAtom::kClass, data(0, zeros(9))},
        {&VexQTdataAtom::kClass, data(99, zeros(9))},
    };
}

std::vector<Example> allExamples() {
    std::vector<Example> all = specialExamples();
    for (const AtomClass* cls : kAllClasses) {
        const auto isSpecial = [cls](const Example& example) { return example.cls == cls; };
        if (cls->nibName.empty() || std::ranges::any_of(specialExamples(), isSpecial)) continue;
        all.push_back({cls, cls->create()->atomData()});
    }
    return all;
}

const std::vector<Example>& examples() {
    static const std::vector<Example> all = allExamples();
    return all;
}

void addExamples() {
    QTest::addColumn<int>("example");
    int index = 0;
    for (const Example& example : examples()) {
        const auto name = decoded(example)->atomNibName().value_or("");
        QTest::addRow("%d %s of %s", index, name.c_str(),
                      std::string(example.cls->className).c_str())
            << index;
        ++index;
    }
}

// MARK: Forms

/// A controller with its form.
struct Shown {
    Shown(VexQTAtom& atom, const QString& nibName) {
        controller.reset(VexQTAsset::newViewControllerForAtom(&atom));
        // A changed type indicator makes a value of another kind when it is read again.
        if (controller == nullptr || controller->nibName() != nibName)
            controller = std::make_unique<VexQTAtomViewController>(nibName, kBundle, &atom);
        form = controller->view();
    }

    std::unique_ptr<VexQTAtomViewController> controller;
    QWidget* form;
};

QString textProperty(const QWidget& widget, const char* name) {
    return widget.property(name).toString();
}

/// The widgets of a form that are for an atom of that class.
QList<QWidget*> widgetsFor(QWidget& form, const AtomClass& cls) {
    QList<QWidget*> widgets = form.findChildren<QWidget*>();
    widgets.removeIf([&](const QWidget* widget) {
        for (const QWidget* at = widget; at != &form; at = at->parentWidget()) {
            const QVariant classes = at->property("onlyWhere");
            if (classes.isValid() && !classes.toStringList().contains(toQString(cls.className)))
                return true;
        }
        return false;
    });
    return widgets;
}

/// Those that show a whole property.
QList<QWidget*> fieldsFor(QWidget& form, const AtomClass& cls) {
    QList<QWidget*> widgets = widgetsFor(form, cls);
    widgets.removeIf([](const QWidget* widget) {
        return textProperty(*widget, "key").isEmpty() || widget->property("mask").isValid();
    });
    return widgets;
}

QWidget* fieldFor(QWidget& form, const AtomClass& cls, const QString& key) {
    for (QWidget* field : fieldsFor(form, cls))
        if (textProperty(*field, "key") == key) return field;
    return nullptr;
}

QSet<QString> namesInBundle() {
    QSet<QString> names;
    for (const QString& file : QDir(kBundle).entryList({QStringLiteral("*.ui")}))
        names.insert(file.chopped(3));
    return names;
}

QSet<QString> namesThatAtomsGive() {
    QSet<QString> names;
    for (const AtomClass* cls : kAllClasses)
        if (!cls->nibName.empty()) names.insert(toQString(cls->nibName));
    for (const Example& example : examples())
        if (const auto name = decoded(example)->atomNibName()) names.insert(toQString(*name));
    return names;
}

bool isFullAtom(const AtomClass& cls) {
    return std::ranges::any_of(cls.fields,
                               [](const Field& row) { return row.decode == rows::readVersion; });
}

/// The properties of the class, the numbers of the matrix one by one.
QStringList keysOf(const Example& example) {
    QStringList keys;
    const Decoded atom = decoded(example);
    for (const Field* property : atom->properties()) {
        if (property->name == "matrix") {
            for (const char* letter : {"A", "B", "U", "C", "D", "V", "X", "Y", "W"})
                keys.append(QStringLiteral("matrix%1Value").arg(QLatin1String(letter)));
        } else {
            keys.append(toQString(property->name));
        }
    }
    if (isFullAtom(*example.cls)) keys.append({"version", "flags0", "flags1", "flags2"});
    return keys;
}

// MARK: What does not come back

struct Lost {
    QStringList classes;  ///< Empty for every class.
    QStringList keys;
    const char* why;
};

/// The properties that writing and reading do not give back, and why.
const std::vector<Lost>& lostProperties() {
    static const std::vector<Lost> lost = {
        {{"VexQTtkhdAtom", "VexQTmdhdAtom", "VexQTcslgAtom", "VexQTclefAtom", "VexQTprofAtom",
          "VexQTenofAtom"},
         {"version"},
         "the version is written as 0"},
        {{"VexQTmdhdAtom", "VexQTcslgAtom", "VexQTclefAtom", "VexQTprofAtom", "VexQTenofAtom",
          "VexQTsmhdAtom", "VexQTstssAtom", "VexQTstpsAtom", "VexQTsttsAtom", "VexQTstscAtom",
          "VexQTelstAtom", "VexQTdrefAtom", "VexQTstcoAtom", "VexQTcttsAtom"},
         {"flags0", "flags1", "flags2"},
         "the flags are not read"},
        {{"VexQTDataReference"},
         {"version", "flags0", "flags1", "flags2"},
         "without a location version 0 and flags 1 are written, with one nothing"},
        {{}, {"sampleDescriptionSize"}, "the true size is written"},
        {{"VexQTtcmiAtom"}, {"reserved"}, "never read, and written as zero"},
        {{"VexQTsounSampleDescription"}, {"sizeOfStructOnly"}, "72 is written"},
        {{"VexQTstsdAtom"}, {"mediaType"}, "taken from the media around"},
        {{"VexQTcrgnAtom"},
         {"regionSize", "regionBoundaryBox"},
         "read with the bytes reversed, and written in order"},
        {{"VexQTdataAtom"}, {"dataTypeString", "nibName"}, "chosen when the value is read"},
        {{"VexQTmetaSampleDescription"},
         {"dataFormat", "dataReferenceIndex", "originalData", "firstFlags", "tcFlags", "timeScale",
          "frameDuration", "numFrames", "languageCode", "sourceName"},
         "neither read from the entry nor written"},
    };
    return lost;
}

bool comesBack(const AtomClass& cls, const QString& key) {
    for (const Lost& lost : lostProperties()) {
        const bool isOfClass =
            lost.classes.isEmpty() || lost.classes.contains(toQString(cls.className));
        if (isOfClass && lost.keys.contains(key)) return false;
    }
    return true;
}

/// The properties of data atoms that have a widget in the form of their kind alone, and those of
/// sound that are in the file in one version alone.
bool isOfAnotherKind(const Example& example, const QString& key) {
    if (example.cls == &VexQTsounSampleDescription::kClass) {
        static const QStringList ofVersion1 = {"samplesPerPacket", "bytesPerPacket",
                                               "bytesPerFrame", "bytesPerSample"};
        static const QStringList ofVersion2 = {
            "audioSampleRate",     "numAudioChannels",         "constBitsPerChannel",
            "formatSpecificFlags", "constBytesPerAudioPacket", "constLPCMFramesPerAudioPacket"};
        const Decoded atom = decoded(example);
        const auto& sound = static_cast<const VexQTsounSampleDescription&>(*atom);
        return (ofVersion1.contains(key) && sound.soundVersion() != 1) ||
               (ofVersion2.contains(key) && sound.soundVersion() != 2);
    }
    if (example.cls == &VexQTdataAtom::kClass) {
        // A value whose length is no number's is not written; a picture of another format is not
        // the picture that was chosen.
        const Decoded atom = decoded(example);
        const auto& value = static_cast<const VexQTdataAtom&>(*atom);
        const auto kind = value.dataTypeString();
        if (!kind && (key == "value" || key == "intValue")) return true;
        if (kind == VexQTDataAtomType_JPEGImage && key == "image") return true;
        // UTF-16 is cut at its first zero byte.
        if (kind == VexQTDataAtomType_UTF16Text && key == "text") return true;
    }
    if (example.cls == &VexQThdlrAtom::kClass) {
        const Decoded atom = decoded(example);
        const bool hasName = static_cast<const VexQThdlrAtom&>(*atom).componentName().has_value();
        if (key == "componentNameIsCString") return !hasName;
        if (key == "appendEmptyStringLength") return hasName;
    }
    return false;
}

// MARK: Edits by hand

/// A value that no other property of the form has.
QVariant ownValue(const Field& field, const QWidget& widget, int index) {
    const QString key = textProperty(widget, "key");
    const auto n = static_cast<unsigned>(index);
    // Whole pixels per inch, and sides of a box, have 16 bits in the file.
    static const QStringList ofSixteenBits = {"horizontalResolution", "verticalResolution",
                                              "textBoxTop",           "textBoxBottom",
                                              "textBoxLeft",          "textBoxRight"};
    switch (field.kind) {
        case ValueKind::Boolean:
            return !widget.property("checked").toBool();
        case ValueKind::Unsigned:
        case ValueKind::Signed:
            if (field.display == vexqt::Display::Code) return qulonglong{"abc0"_os + n};
            if (key == "intValue" || field.bits == 8) return qulonglong{0x21 + n};
            if (field.bits == 16 || ofSixteenBits.contains(key)) return qulonglong{0x1234 + n};
            if (field.bits == 32) return qulonglong{0x12345678 + n};
            return qulonglong{0x123456789ABCDEF0ULL + n};
        case ValueKind::Floating: {
            const auto* line = qobject_cast<const FloatField*>(&widget);
            // Of 2.30 only the low 16 bits of the fraction are kept, rounded to single precision.
            if (key.startsWith("matrix") && line->maximum() <= 2) return (n + 256) / 1073741824.0;
            const bool isWide = line->maximum() > 100;
            return isWide ? 1.25 + n : (n + 1) / 256.0;
        }
        case ValueKind::Text:
            return QStringLiteral("edited text %1").arg(index);
        case ValueKind::Instant:
            return QDateTime(QDate(2011, 3, 4), QTime(5, 6, 7), Qt::UTC).addSecs(index);
        case ValueKind::Data:
            return QByteArray("\x11\x22\x33\x44\x55", 5) + static_cast<char>(index);
        case ValueKind::Color:
            return QColor(101 + index, 20, 30);
        case ValueKind::Number:
            return qlonglong{0x21 + index};
        case ValueKind::Picture: {
            QImage image(2, 1, QImage::Format_RGBA8888);
            image.fill(QColor(101 + index, 20, 30));
            return image;
        }
        default:
            return {};
    }
}

void type(QLineEdit& line, const QString& text) {
    line.setText(text);
    QTest::keyClick(&line, Qt::Key_Return);
}

/// The text that a widget shows for a value, as somebody would type it.
template <class Text>
QString shownText(QWidget& widget, const QVariant& value, Text text) {
    const QMetaProperty shown = widget.metaObject()->userProperty();
    const QVariant before = shown.read(&widget);
    const QSignalBlocker silent(&widget);
    shown.write(&widget, value);
    const QString result = text();
    shown.write(&widget, before);
    return result;
}

/// Does with the keyboard what a person would, or with the signal where a dialogue would come.
void edit(QWidget& widget, const QVariant& value) {
    if (auto* box = qobject_cast<QCheckBox*>(&widget)) {
        if (box->isChecked() != value.toBool()) QTest::keyClick(box, Qt::Key_Space);
    } else if (auto* line = qobject_cast<QLineEdit*>(&widget)) {
        type(*line, shownText(widget, value, [line] { return line->text(); }));
    } else if (auto* choice = qobject_cast<QComboBox*>(&widget)) {
        type(*choice->lineEdit(), shownText(widget, value, [=] { return choice->currentText(); }));
    } else if (qobject_cast<LanguageField*>(&widget) != nullptr) {
        auto* inner = widget.findChild<QLineEdit*>();
        type(*inner, shownText(widget, value, [inner] { return inner->text(); }));
    } else if (qobject_cast<DateField*>(&widget) != nullptr) {
        auto* inner = widget.findChild<QLineEdit*>();
        inner->setText(shownText(widget, value, [inner] { return inner->text(); }));
        QTest::keyClick(&widget, Qt::Key_Return);
    } else if (auto* area = qobject_cast<QPlainTextEdit*>(&widget)) {
        area->setPlainText(value.toString());
        QTest::keyClick(area, Qt::Key_Return, Qt::ControlModifier);
    } else if (qobject_cast<DataField*>(&widget)) {
        QGuiApplication::clipboard()->setText(QString::fromLatin1(value.toByteArray().toHex()));
        QTest::keySequence(&widget, QKeySequence::SelectAll);
        QTest::keyClick(&widget, Qt::Key_Delete);
        QTest::keySequence(&widget, QKeySequence::Paste);
        QTest::keyClick(&widget, Qt::Key_Return, Qt::ControlModifier);
    } else {
        widget.metaObject()->userProperty().write(&widget, value);
        QMetaObject::invokeMethod(&widget, "valueChanged");
    }
}

/// A colour by the eight bits a component that people choose.
QVariant comparable(const QVariant& value) {
    if (value.typeId() == QMetaType::QColor) return value.value<QColor>().name(QColor::HexArgb);
    if (value.typeId() == QMetaType::QImage)
        return value.value<QImage>().convertToFormat(QImage::Format_RGBA8888);
    return value;
}

QVariant valueOf(QWidget& widget) {
    return comparable(widget.metaObject()->userProperty().read(&widget));
}

}  // namespace

class FormsTest : public QObject {
    Q_OBJECT

private slots:
    void thereIsOneForEveryNameThatAtomsGiveAndNoOther() {
        const QSet<QString> there = namesInBundle();
        const QSet<QString> given = namesThatAtomsGive();
        QVERIFY(there.size() > 50);
        QCOMPARE(QStringList((given - there).values()), QStringList());
        QCOMPARE(QStringList((there - given).values()), QStringList());
    }

    void eachIsLoadedAndEveryKeyInItExists_data() { addExamples(); }
    void eachIsLoadedAndEveryKeyInItExists() {
        const Example& example = fetched();
        const Decoded atom = decoded(example);
        const Shown shown(*atom, toQString(*atom->atomNibName()));
        QVERIFY(shown.form != nullptr);
        QCOMPARE(shown.form->objectName(), shown.controller->nibName());
        QCOMPARE(shown.controller->problems(), QStringList());
        for (const QWidget* widget : widgetsFor(*shown.form, *example.cls)) {
            for (const char* rule : {"key", "presenceOf", "visibleWhen", "visibleWhenNot",
                                     "listKey", "secondsOf", "timeScaleKey"}) {
                const QString key = textProperty(*widget, rule);
                if (key.isEmpty()) continue;
                QVERIFY2(atom->propertyNamed(fromQString(key)) != nullptr, qPrintable(key));
            }
            for (const char* rule : {"controllerKey", "fontKey"}) {
                const QByteArray key = textProperty(*widget, rule).toUtf8();
                if (key.isEmpty()) continue;
                QVERIFY2(shown.controller->metaObject()->indexOfProperty(key) >= 0, key);
            }
            const QVariant mask = widget->property("mask");
            if (!mask.isValid()) continue;
            const Field* field = atom->propertyNamed(fromQString(textProperty(*widget, "key")));
            QVERIFY(mask.toULongLong() != 0);
            QVERIFY(field->bits == 64 || mask.toULongLong() >> field->bits == 0);
        }
    }

    void everyPropertyHasAWidget_data() { addExamples(); }
    void everyPropertyHasAWidget() {
        const Example& example = fetched();
        const Decoded atom = decoded(example);
        const Shown shown(*atom, toQString(*atom->atomNibName()));
        for (const QString& key : keysOf(example)) {
            // What a form hides by; and the kinds of value, which the forms share out.
            if (key.startsWith("hideV")) continue;
            if (example.cls == &VexQTdataAtom::kClass && !isInEveryDataForm(key)) continue;
            QVERIFY2(isShown(*shown.form, example, *atom, key), qPrintable(key));
        }
    }

    void everyKindOfValueHasAWidgetInAForm() {
        QSet<QString> keys;
        for (const Example& example : examples()) {
            if (example.cls != &VexQTdataAtom::kClass) continue;
            const Decoded atom = decoded(example);
            const Shown shown(*atom, toQString(*atom->atomNibName()));
            for (const QWidget* field : fieldsFor(*shown.form, *example.cls))
                keys.insert(textProperty(*field, "key"));
        }
        for (const Field* property : VexQTdataAtom().properties())
            QVERIFY2(keys.contains(toQString(property->name)), property->name.data());
    }

    void noTwoWidgetsShowTheSameProperty_data() { addExamples(); }
    void noTwoWidgetsShowTheSameProperty() {
        const Example& example = fetched();
        const Decoded atom = decoded(example);
        const Shown shown(*atom, toQString(*atom->atomNibName()));
        QSet<QString> keys;
        QSet<QString> masks;
        for (const QWidget* widget : widgetsFor(*shown.form, *example.cls)) {
            const QString key = textProperty(*widget, "key");
            if (key.isEmpty()) continue;
            const QString mask = textProperty(*widget, "mask");
            QSet<QString>& seen = mask.isEmpty() ? keys : masks;
            const QString name = key + u' ' + mask;
            QVERIFY2(!seen.contains(name), qPrintable(name));
            seen.insert(name);
        }
    }

    void everyLabelOfARowHasABuddyAndEveryWidgetAName_data() { addExamples(); }
    void everyLabelOfARowHasABuddyAndEveryWidgetAName() {
        const Example& example = fetched();
        const Decoded atom = decoded(example);
        const Shown shown(*atom, toQString(*atom->atomNibName()));
        QSet<const QWidget*> labelled;
        for (const QLabel* label : shown.form->findChildren<QLabel*>()) {
            if (!label->objectName().endsWith("Label")) continue;
            QVERIFY2(label->buddy() != nullptr, qPrintable(label->text()));
            labelled.insert(label->buddy());
        }
        for (const QFormLayout* rows : shown.form->findChildren<QFormLayout*>())
            for (int row = 0; row < rows->rowCount(); ++row)
                if (QLayoutItem* item = rows->itemAt(row, QFormLayout::LabelRole))
                    QVERIFY(
                        labelled.contains(qobject_cast<const QLabel*>(item->widget())->buddy()));
        for (const QWidget* widget : widgetsFor(*shown.form, *example.cls)) {
            const bool isBound = !textProperty(*widget, "key").isEmpty() ||
                                 !textProperty(*widget, "presenceOf").isEmpty() ||
                                 !textProperty(*widget, "listKey").isEmpty() ||
                                 widget->objectName() == "table";
            if (!isBound) continue;
            const auto* box = qobject_cast<const QCheckBox*>(widget);
            const QString name = box != nullptr && widget->accessibleName().isEmpty()
                                     ? box->text()
                                     : widget->accessibleName();
            QVERIFY2(!name.isEmpty(), qPrintable(widget->objectName()));
        }
    }

    void theTabKeyGoesFromTopToBottom_data() { addExamples(); }
    void theTabKeyGoesFromTopToBottom() {
        const Example& example = fetched();
        const Decoded atom = decoded(example);
        const Shown shown(*atom, toQString(*atom->atomNibName()));
        shown.form->resize(700, shown.form->sizeHint().height());
        shown.form->show();
        // Rows, from the place of each widget; several of a row go from left to right.
        QPoint last(0, 0);
        for (const QWidget* at = shown.form->nextInFocusChain(); at != shown.form;
             at = at->nextInFocusChain()) {
            const bool isBound =
                !textProperty(*at, "key").isEmpty() || !textProperty(*at, "presenceOf").isEmpty();
            if (!isBound || !at->isVisible()) continue;
            const QPoint place = at->mapTo(shown.form, at->rect().center());
            const bool isInRow = qAbs(place.y() - last.y()) < 8;
            QVERIFY2(isInRow ? place.x() > last.x() : place.y() > last.y(),
                     qPrintable(at->objectName()));
            last = place;
        }
    }

    void everyPropertyGoesThroughTheFileAndBack_data() { addExamples(); }
    void everyPropertyGoesThroughTheFileAndBack() {
        const Example& example = fetched();
        const QString nibName = toQString(*decoded(example)->atomNibName());
        int index = 0;
        for (const QString& key : editableKeys(example)) {
            const Decoded atom = decoded(example);
            const Shown shown(*atom, nibName);
            QWidget* field = fieldFor(*shown.form, *example.cls, key);
            QVERIFY2(field != nullptr, qPrintable(key));
            const QVariant value =
                ownValue(*atom->propertyNamed(fromQString(key)), *field, ++index);
            makePresent(*shown.form, *field, key);
            QVERIFY2(valueOf(*field) != comparable(value), qPrintable(key));
            edit(*field, value);

            const QVariant held = toVariant(atom->valueForKey(fromQString(key)));
            const QByteArray saidAtom = "atom: " + key.toUtf8() + " is " +
                                        held.toString().toUtf8() + ", not " +
                                        value.toString().toUtf8();
            QVERIFY2(comparable(held) == comparable(value), saidAtom);
            if (!comesBack(*example.cls, key) || isOfAnotherKind(example, key)) continue;

            const Decoded again = decoded(example, atom->atomData());
            QVERIFY2(again.atom != nullptr, qPrintable(key));
            const Shown shownAgain(*again, nibName);
            QWidget* fieldAgain = fieldFor(*shownAgain.form, *example.cls, key);
            const QByteArray saidFile = "file: " + key.toUtf8() + " is " +
                                        valueOf(*fieldAgain).toString().toUtf8() + ", not " +
                                        value.toString().toUtf8();
            QVERIFY2(valueOf(*fieldAgain) == comparable(value), saidFile);
        }
    }

    void everyCheckBoxOfAMaskChangesItsBitsAlone_data() { addExamples(); }
    void everyCheckBoxOfAMaskChangesItsBitsAlone() {
        const Example& example = fetched();
        const Decoded atom = decoded(example);
        const Shown shown(*atom, toQString(*atom->atomNibName()));
        for (QWidget* widget : widgetsFor(*shown.form, *example.cls)) {
            const QVariant mask = widget->property("mask");
            if (!mask.isValid()) continue;
            const std::string key = fromQString(textProperty(*widget, "key"));
            const std::uint64_t bits = mask.toULongLong();
            const auto held = [&] { return integerFrom(atom->valueForKey(key)).value_or(0); };
            const std::uint64_t before = held();
            QTest::keyClick(widget, Qt::Key_Space);
            QCOMPARE(held(), before ^ bits);
            QTest::keyClick(widget, Qt::Key_Space);
            QCOMPARE(held(), before);
        }
    }

    void everyOptionalPropertyCanBeTakenAway_data() { addExamples(); }
    void everyOptionalPropertyCanBeTakenAway() {
        const Example& example = fetched();
        const Decoded atom = decoded(example);
        const Shown shown(*atom, toQString(*atom->atomNibName()));
        for (const QWidget* field : fieldsFor(*shown.form, *example.cls)) {
            const QString key = textProperty(*field, "key");
            const Field& property = *atom->propertyNamed(fromQString(key));
            if (!property.isOptional || property.set == nullptr) continue;
            if (property.kind == ValueKind::Picture) continue;  // The well does that itself.
            QCheckBox* box = presenceBox(*shown.form, key);
            QVERIFY2(box != nullptr, qPrintable(key));
            if (!box->isChecked()) QTest::keyClick(box, Qt::Key_Space);
            QVERIFY2(!atom->valueForKey(fromQString(key)).isAbsent(), qPrintable(key));
            QVERIFY(field->isEnabled());
            QTest::keyClick(box, Qt::Key_Space);
            QVERIFY2(atom->valueForKey(fromQString(key)).isAbsent(), qPrintable(key));
            QVERIFY(!field->isEnabled());
        }
    }

    void whatIsOnlyReadCannotBeEdited_data() { addExamples(); }
    void whatIsOnlyReadCannotBeEdited() {
        const Example& example = fetched();
        const Decoded atom = decoded(example);
        const Shown shown(*atom, toQString(*atom->atomNibName()));
        for (QWidget* field : fieldsFor(*shown.form, *example.cls)) {
            const QString key = textProperty(*field, "key");
            const Field& property = *atom->propertyNamed(fromQString(key));
            if (property.set != nullptr) continue;
            const QVariant before = valueOf(*field);
            QTest::keyClick(field, Qt::Key_Delete);
            QTest::keyClicks(field, "11");
            QTest::keyClick(field, Qt::Key_Return, Qt::ControlModifier);
            QTest::keyClick(field, Qt::Key_Return);
            QCOMPARE(valueOf(*field), before);
        }
    }

    void theReasonsForLossesAreOfPropertiesThatThereAre() {
        for (const Lost& lost : lostProperties()) {
            for (const QString& name : lost.classes) {
                const auto found = std::ranges::find(
                    kAllClasses, fromQString(name),
                    [](const AtomClass* cls) { return std::string(cls->className); });
                QVERIFY2(found != std::end(kAllClasses), qPrintable(name));
                const auto atom = (*found)->create();
                for (const QString& key : lost.keys)
                    QVERIFY2(atom->propertyNamed(fromQString(key)) != nullptr, lost.why);
            }
        }
    }

private:
    static const Example& fetched() {
        QFETCH(int, example);
        return examples()[static_cast<std::size_t>(example)];
    }

    static bool isInEveryDataForm(const QString& key) {
        return key == "dataType" || key == "dataLocale" || key == "dataTypeString" ||
               key == "nibName";
    }

    /// In a field, or a list in a table.
    static bool isShown(QWidget& form, const Example& example, const VexQTAtom& atom,
                        const QString& key) {
        if (fieldFor(form, *example.cls, key) != nullptr) return true;
        const Field* property = atom.propertyNamed(fromQString(key));
        if (property->kind != ValueKind::List) return false;
        for (const QWidget* widget : widgetsFor(form, *example.cls)) {
            if (textProperty(*widget, "listKey") == key) return true;
            if (textProperty(*widget, "controllerKey") == key + "Count")
                return form.findChild<QWidget*>("table") != nullptr;
        }
        return false;
    }

    /// The keys that are edited in the form of an example.
    static QStringList editableKeys(const Example& example) {
        const Decoded atom = decoded(example);
        const Shown shown(*atom, toQString(*atom->atomNibName()));
        QStringList keys;
        for (const QWidget* field : fieldsFor(*shown.form, *example.cls)) {
            const QString key = textProperty(*field, "key");
            if (atom->propertyNamed(fromQString(key))->set != nullptr) keys.append(key);
        }
        return keys;
    }

    static QCheckBox* presenceBox(const QWidget& form, const QString& key) {
        for (QCheckBox* box : form.findChildren<QCheckBox*>())
            if (textProperty(*box, "presenceOf") == key) return box;
        return nullptr;
    }

    static void makePresent(const QWidget& form, const QWidget& field, const QString& key) {
        if (field.isEnabled()) return;
        if (QCheckBox* box = presenceBox(form, key)) QTest::keyClick(box, Qt::Key_Space);
    }
};

QTEST_MAIN(FormsTest)
#include "forms_test.moc"
