#include "apps/inspector/program.h"

#include <QLibraryInfo>
#include <QLocale>
#include <QSettings>
#include <QTranslator>
#include <cstdio>

#include "apps/inspector/MainWindow.h"
#include "apps/inspector/MovieTab.h"
#include "apps/inspector/theme.h"

namespace vexqt::inspector_app {

namespace {

void say(std::FILE* stream, const QString& text) {
    std::fputs(text.toLocal8Bit().constData(), stream);
    std::fflush(stream);
}

void complain(const QString& what) {
    say(stderr, QStringLiteral("vexqt-inspector: %1\n").arg(what));
}

ExitStatus fail(const QString& what) {
    complain(what);
    return ExitStatus::Failed;
}

/// Plural forms are translations too, so English has a file of its own.
void translate(QApplication& application) {
    auto* own = new QTranslator(&application);
    const QString folder = QStringLiteral(":/vexqt/inspector-app/translations");
    const bool isThere =
        own->load(QLocale(), QStringLiteral("vexqt-inspector"), QStringLiteral("_"), folder) ||
        own->load(QStringLiteral("vexqt-inspector_en"), folder);
    if (isThere) application.installTranslator(own);
    auto* toolkit = new QTranslator(&application);
    if (toolkit->load(QLocale(), QStringLiteral("qtbase"), QStringLiteral("_"),
                      QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        application.installTranslator(toolkit);
}

bool hasScreen() {
    return qEnvironmentVariableIsSet("DISPLAY") || qEnvironmentVariableIsSet("WAYLAND_DISPLAY");
}

}  // namespace

void prepare(QApplication& application, bool isDark) {
    // Without a language, numbers would have no separators.
    if (QLocale::system().language() == QLocale::C)
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    QApplication::setOrganizationName(QStringLiteral("vexqt"));
    QApplication::setApplicationName(QStringLiteral("vexqt-inspector"));
    QApplication::setApplicationDisplayName(QStringLiteral("VexQt Inspector"));
    QApplication::setApplicationVersion(QStringLiteral(VEXQT_VERSION));
    QApplication::setDesktopFileName(QStringLiteral("vexqt-inspector"));
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/vexqt/inspector-app/vexqt-inspector.svg")));
    translate(application);
    theme::apply(application, isDark ? theme::Choice::Dark : theme::Choice::System);
}

ExitStatus drawScreenshot(const Invocation& invocation) {
    const QString& movie = invocation.movies.front();
    MainWindow window;
    if (invocation.size.isValid()) window.resize(invocation.size);
    if (!window.openMovie(movie))
        return fail(QStringLiteral("%1: %2").arg(movie, window.lastError()));
    MovieTab& tab = *window.currentTab();
    if (!tab.document().isMovie())
        return fail(QStringLiteral("%1: could not be read as a movie").arg(movie));
    // Where things lie is known once the window has its size.
    window.show();
    QApplication::processEvents();
    QString error;
    if (!invocation.select.isEmpty() && !tab.selectPath(invocation.select, error))
        return fail(QStringLiteral("%1: %2").arg(movie, error));
    QApplication::processEvents();
    if (!window.grab().save(invocation.screenshot))
        return fail(
            QStringLiteral("%1: the picture could not be written").arg(invocation.screenshot));
    return ExitStatus::Done;
}

int run(int argc, char** argv) {
    // Help and version are for terminals, where there may be no screen.
    QStringList arguments;
    for (int i = 1; i < argc; ++i) arguments << QString::fromLocal8Bit(argv[i]);
    const Invocation early = invocationFrom(arguments);
    if (early.wantsHelp || early.wantsVersion) {
        say(stdout, early.wantsHelp ? helpText() : versionText());
        return static_cast<int>(ExitStatus::Done);
    }
    if (!hasScreen() && !qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        if (early.mistake.isEmpty() && early.screenshot.isEmpty()) {
            complain(QStringLiteral("there is no screen to open a window on"));
            return static_cast<int>(ExitStatus::Failed);
        }
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }

    QApplication application(argc, argv);
    const Invocation invocation = invocationFrom(QApplication::arguments().mid(1));
    if (!invocation.mistake.isEmpty()) {
        complain(invocation.mistake);
        return static_cast<int>(ExitStatus::WrongUsage);
    }
    prepare(application, invocation.isDark);
    if (!invocation.screenshot.isEmpty()) return static_cast<int>(drawScreenshot(invocation));

    QSettings settings;
    MainWindow window(&settings);
    if (invocation.isDark) theme::apply(application, theme::Choice::Dark);
    if (invocation.size.isValid()) window.resize(invocation.size);
    window.show();
    for (const QString& movie : invocation.movies) window.openMovie(movie);
    QString error;
    if (MovieTab* tab = window.currentTab(); tab != nullptr && !invocation.select.isEmpty())
        if (!tab->selectPath(invocation.select, error))
            tab->say(theme::MessageKind::Warning, error);
    return QApplication::exec();
}

}  // namespace vexqt::inspector_app
