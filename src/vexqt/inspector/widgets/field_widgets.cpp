#include "vexqt/inspector/widgets/field_widgets.h"

#include "vexqt/inspector/widgets/ChoiceField.h"
#include "vexqt/inspector/widgets/CodeField.h"
#include "vexqt/inspector/widgets/ColorWell.h"
#include "vexqt/inspector/widgets/DataField.h"
#include "vexqt/inspector/widgets/DateField.h"
#include "vexqt/inspector/widgets/FloatField.h"
#include "vexqt/inspector/widgets/HexField.h"
#include "vexqt/inspector/widgets/IntegerField.h"
#include "vexqt/inspector/widgets/LanguageField.h"
#include "vexqt/inspector/widgets/PictureWell.h"
#include "vexqt/inspector/widgets/TextArea.h"
#include "vexqt/inspector/widgets/TextField.h"

namespace vexqt {

namespace {

struct Maker {
    const char* className;
    QWidget* (*make)(QWidget* parent);
};

template <class Widget>
constexpr Maker makes(const char* className) {
    return {className, [](QWidget* parent) -> QWidget* { return new Widget(parent); }};
}

constexpr Maker kMakers[] = {
    makes<ChoiceField>("ChoiceField"),     makes<CodeField>("CodeField"),
    makes<ColorWell>("ColorWell"),         makes<DataField>("DataField"),
    makes<DateField>("DateField"),         makes<FloatField>("FloatField"),
    makes<HexField>("HexField"),           makes<IntegerField>("IntegerField"),
    makes<LanguageField>("LanguageField"), makes<PictureWell>("PictureWell"),
    makes<TextArea>("TextArea"),           makes<TextField>("TextField"),
};

}  // namespace

QWidget* createFieldWidget(const QString& className, QWidget* parent) {
    for (const Maker& maker : kMakers)
        if (className == QLatin1String(maker.className)) return maker.make(parent);
    return nullptr;
}

}  // namespace vexqt
