#include "vexqt/inspector/FormLoader.h"

#include <QWidget>

#include "vexqt/inspector/InspectorTableView.h"
#include "vexqt/inspector/ListEditor.h"
#include "vexqt/inspector/widgets/field_widgets.h"

namespace vexqt {

FormLoader::FormLoader() {
    // Descriptions use Qt's own widgets and the inspector's, never a plug-in of Designer's.
    clearPluginPaths();
}

QWidget* FormLoader::load(QIODevice* description, QWidget* parent) {
    QWidget* form = QUiLoader::load(description, parent);
    if (form == nullptr) problems_.append(errorString());
    return form;
}

static QWidget* createOwnWidget(const QString& className, QWidget* parent) {
    if (className == QLatin1String("InspectorTableView")) return new InspectorTableView(parent);
    if (className == QLatin1String("ListEditor")) return new ListEditor(parent);
    return createFieldWidget(className, parent);
}

QWidget* FormLoader::createWidget(const QString& className, QWidget* parent, const QString& name) {
    if (QWidget* own = createOwnWidget(className, parent)) {
        own->setObjectName(name);
        return own;
    }
    if (className == QLatin1String("Line") || availableWidgets().contains(className))
        return QUiLoader::createWidget(className, parent, name);
    problems_.append(QStringLiteral("%1: no widget is a %2").arg(name, className));
    auto* empty = new QWidget(parent);
    empty->setObjectName(name);
    return empty;
}

}  // namespace vexqt
