#include "apps/inspector/invocation.h"

#include <QCommandLineParser>

namespace vexqt::inspector_app {

namespace {

constexpr int kLeastSide = 200, kMostSide = 10'000;

QSize sizeFrom(const QString& text) {
    const QStringList sides = text.split(u'x');
    if (sides.size() != 2) return {};
    bool isWidth = false, isHeight = false;
    const QSize size(sides[0].toInt(&isWidth), sides[1].toInt(&isHeight));
    const auto isFit = [](int side) { return side >= kLeastSide && side <= kMostSide; };
    return isWidth && isHeight && isFit(size.width()) && isFit(size.height()) ? size : QSize();
}

QString mistakeIn(const Invocation& invocation) {
    if (invocation.screenshot.isEmpty()) {
        if (!invocation.select.isEmpty() && invocation.movies.size() != 1)
            return QStringLiteral("--select takes one MOVIE");
        return {};
    }
    if (invocation.movies.size() != 1) return QStringLiteral("--screenshot takes one MOVIE");
    return {};
}

}  // namespace

Invocation invocationFrom(const QStringList& arguments) {
    QCommandLineParser parser;
    const QCommandLineOption screenshot(QStringLiteral("screenshot"), {}, QStringLiteral("FILE"));
    const QCommandLineOption select(QStringLiteral("select"), {}, QStringLiteral("PATH"));
    const QCommandLineOption size(QStringLiteral("size"), {}, QStringLiteral("WxH"));
    const QCommandLineOption dark(QStringLiteral("dark"));
    const QCommandLineOption help(QStringList{QStringLiteral("h"), QStringLiteral("help")});
    const QCommandLineOption version(QStringLiteral("version"));
    parser.addOptions({screenshot, select, size, dark, help, version});

    Invocation invocation;
    // The parser expects the program's name in front.
    const bool isParsed = parser.parse(QStringList{QString()} + arguments);
    invocation.wantsHelp = parser.isSet(help);
    invocation.wantsVersion = parser.isSet(version);
    if (invocation.wantsHelp || invocation.wantsVersion) return invocation;
    invocation.movies = parser.positionalArguments();
    invocation.screenshot = parser.value(screenshot);
    invocation.select = parser.value(select);
    invocation.isDark = parser.isSet(dark);
    if (!isParsed) {
        invocation.mistake = parser.errorText();
        return invocation;
    }
    if (parser.isSet(screenshot) && invocation.screenshot.isEmpty())
        invocation.mistake = QStringLiteral("--screenshot takes a FILE");
    if (parser.isSet(size)) {
        invocation.size = sizeFrom(parser.value(size));
        if (!invocation.size.isValid())
            invocation.mistake = QStringLiteral("--size takes a width and a height: 1200x800");
    }
    if (invocation.mistake.isEmpty()) invocation.mistake = mistakeIn(invocation);
    return invocation;
}

QString helpText() {
    return QStringLiteral(
        "Looks inside QuickTime movies and changes what is there, in a window.\n"
        "\n"
        "Examples:\n"
        "  vexqt-inspector clip.mov\n"
        "  vexqt-inspector --select 'moov.trak[vide].tkhd' clip.mov\n"
        "  vexqt-inspector --screenshot tkhd.png --select moov.trak.tkhd --dark clip.mov\n"
        "\n"
        "Usage: vexqt-inspector [OPTION…] [MOVIE…]\n"
        "\n"
        "Options:\n"
        "  --select PATH       selects the atom at PATH, as vexqt names it\n"
        "  --dark              dark colours, whatever the system has\n"
        "  --size WxH          the size of the window, 1240x820 without it\n"
        "  --screenshot FILE   draws the window into FILE, a PNG or JPEG by its name, and ends;\n"
        "                      this needs no screen\n"
        "  -h, --help          this text\n"
        "  --version           the version\n"
        "\n"
        "Exit status: 0 done; 1 the movie could not be read, has no such atom, or the picture "
        "could\n"
        "not be written; 2 the command line is wrong.\n");
}

QString versionText() { return QStringLiteral("vexqt-inspector " VEXQT_VERSION "\n"); }

}  // namespace vexqt::inspector_app
