// The command line of vexqt-inspector.
#pragma once

#include <QSize>
#include <QStringList>

namespace vexqt::inspector_app {

enum class ExitStatus { Done = 0, Failed = 1, WrongUsage = 2 };

struct Invocation {
    QStringList movies;
    QString screenshot;  ///< The picture to draw; empty for none.
    QString select;      ///< The path of the atom to select; empty for none.
    QSize size;          ///< Of the window; invalid where it was not given.
    bool isDark = false;
    bool wantsHelp = false, wantsVersion = false;
    QString mistake;  ///< What is wrong with the command line; empty for nothing.
};

/// The arguments behind the program's name; those that the toolkit took are gone.
Invocation invocationFrom(const QStringList& arguments);

QString helpText();
QString versionText();

}  // namespace vexqt::inspector_app
