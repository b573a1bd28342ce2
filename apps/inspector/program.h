// vexqt-inspector, but for its main function.
#pragma once

#include <QApplication>

#include "apps/inspector/invocation.h"

namespace vexqt::inspector_app {

/// Translations, names and colours of an application, whoever runs it.
void prepare(QApplication& application, bool isDark);

/// Opens the movie, selects the atom, draws the window into a file. Says on standard error what
/// went wrong.
ExitStatus drawScreenshot(const Invocation& invocation);

int run(int argc, char** argv);

}  // namespace vexqt::inspector_app
