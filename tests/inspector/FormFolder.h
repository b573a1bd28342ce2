#pragma once

#include <QFile>
#include <QTemporaryDir>

namespace vexqt::testing {

/// A folder of interface descriptions that a test writes for itself.
class FormFolder {
public:
    QString path() const { return folder_.path(); }

    /// A form whose widgets stand in one column.
    void write(const QString& name, const QString& widgets) const {
        const QString form = QStringLiteral(
                                 "<ui version=\"4.0\"><class>%1</class><widget class=\"QWidget\" "
                                 "name=\"%1\"><layout class=\"QVBoxLayout\">%2</layout></widget>"
                                 "</ui>")
                                 .arg(name, widgets);
        writeRaw(name, form.toUtf8());
    }
    void writeRaw(const QString& name, const QByteArray& content) const {
        QFile file(folder_.filePath(name + QStringLiteral(".ui")));
        if (!file.open(QFile::WriteOnly) || file.write(content) != content.size())
            qFatal("a form cannot be written");
    }

    /// A widget, with properties as `text` and `list` write them.
    static QString widget(const QString& className, const QString& name,
                          const QString& properties = {}) {
        return QStringLiteral("<item><widget class=\"%1\" name=\"%2\">%3</widget></item>")
            .arg(className, name, properties);
    }
    static QString text(const QString& name, const QString& value) {
        return QStringLiteral("<property name=\"%1\" stdset=\"0\"><string>%2</string></property>")
            .arg(name, value);
    }
    static QString number(const QString& name, uint value) {
        return QStringLiteral("<property name=\"%1\" stdset=\"0\"><UInt>%2</UInt></property>")
            .arg(name)
            .arg(value);
    }
    static QString list(const QString& name, const QStringList& values) {
        QString strings;
        for (const QString& value : values)
            strings += QStringLiteral("<string>%1</string>").arg(value);
        return QStringLiteral(
                   "<property name=\"%1\" stdset=\"0\"><stringlist>%2</stringlist></property>")
            .arg(name, strings);
    }

private:
    QTemporaryDir folder_;
};

}  // namespace vexqt::testing
