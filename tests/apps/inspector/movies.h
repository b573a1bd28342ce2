// Movies in a folder that goes with the test, and people who answer dialogues.
#pragma once

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <functional>

#include "apps/inspector/Document.h"
#include "testing/small_movie.h"
#include "vexqt/asset/AtomPath.h"

namespace vexqt::inspector_app {

/// A folder, removed with all it holds when the test ends.
class MovieFolder {
public:
    QString path(const QString& name) const { return folder_.filePath(name); }

    QString add(const QString& name, const Bytes& bytes) const {
        QFile file(path(name));
        const bool isOpen = file.open(QIODevice::WriteOnly);
        Q_ASSERT(isOpen);
        file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<qint64>(bytes.size()));
        return path(name);
    }
    QString addSmallMovie(const QString& name = QStringLiteral("clip.mov")) const {
        return add(name, testing::smallMovie());
    }

private:
    QTemporaryDir folder_;
};

inline QByteArray contentsOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

inline QByteArray asArray(const Bytes& bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), static_cast<qsizetype>(bytes.size())};
}

inline std::unique_ptr<Document> opened(const QString& path) {
    QString error;
    return Document::open(path, error);
}

inline VexQTAtom& atomAt(Document& document, const char* path) {
    return AtomPath(path).atomIn(document.asset().rootAtoms());
}

/// What a view of an atom does when somebody has changed a field.
inline void edit(Document& document, VexQTAtom& atom, const char* key, const Value& value) {
    const Value before = atom.valueForKey(key);
    document.editHandler()->perform(
        {.text = QStringLiteral("Change %1").arg(QLatin1String(key)),
         .redo = [&atom, key, value] { atom.setValueForKey(value, key); },
         .undo = [&atom, key, before] { atom.setValueForKey(before, key); },
         .atom = &atom,
         .key = QLatin1String(key)});
}

/// Answers the next dialogue that appears, as soon as it has.
inline void answer(std::function<void(QDialog&)> act) {
    auto* timer = new QTimer(qApp);
    timer->setInterval(5);
    QObject::connect(timer, &QTimer::timeout, qApp, [timer, act = std::move(act)] {
        auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (dialog == nullptr) return;
        timer->stop();
        timer->deleteLater();
        act(*dialog);
    });
    timer->start();
}

}  // namespace vexqt::inspector_app
