#include "vexqt/inspector/widgets/language_codes.h"

#include <QCoreApplication>
#include <QLocale>

namespace vexqt {

namespace {

constexpr std::uint16_t kUnspecified = 0x7FFF;

struct ScriptLanguage {
    std::uint16_t code;
    const char* name;
};

// In two runs: the codes from 95 to 127 were never given.
constexpr ScriptLanguage kScriptLanguages[] = {
    {0, QT_TRANSLATE_NOOP("vexqt::language", "English")},
    {1, QT_TRANSLATE_NOOP("vexqt::language", "French")},
    {2, QT_TRANSLATE_NOOP("vexqt::language", "German")},
    {3, QT_TRANSLATE_NOOP("vexqt::language", "Italian")},
    {4, QT_TRANSLATE_NOOP("vexqt::language", "Dutch")},
    {5, QT_TRANSLATE_NOOP("vexqt::language", "Swedish")},
    {6, QT_TRANSLATE_NOOP("vexqt::language", "Spanish")},
    {7, QT_TRANSLATE_NOOP("vexqt::language", "Danish")},
    {8, QT_TRANSLATE_NOOP("vexqt::language", "Portuguese")},
    {9, QT_TRANSLATE_NOOP("vexqt::language", "Norwegian")},
    {10, QT_TRANSLATE_NOOP("vexqt::language", "Hebrew")},
    {11, QT_TRANSLATE_NOOP("vexqt::language", "Japanese")},
    {12, QT_TRANSLATE_NOOP("vexqt::language", "Arabic")},
    {13, QT_TRANSLATE_NOOP("vexqt::language", "Finnish")},
    {14, QT_TRANSLATE_NOOP("vexqt::language", "Greek")},
    {15, QT_TRANSLATE_NOOP("vexqt::language", "Icelandic")},
    {16, QT_TRANSLATE_NOOP("vexqt::language", "Maltese")},
    {17, QT_TRANSLATE_NOOP("vexqt::language", "Turkish")},
    {18, QT_TRANSLATE_NOOP("vexqt::language", "Croatian")},
    {19, QT_TRANSLATE_NOOP("vexqt::language", "Chinese (traditional)")},
    {20, QT_TRANSLATE_NOOP("vexqt::language", "Urdu")},
    {21, QT_TRANSLATE_NOOP("vexqt::language", "Hindi")},
    {22, QT_TRANSLATE_NOOP("vexqt::language", "Thai")},
    {23, QT_TRANSLATE_NOOP("vexqt::language", "Korean")},
    {24, QT_TRANSLATE_NOOP("vexqt::language", "Lithuanian")},
    {25, QT_TRANSLATE_NOOP("vexqt::language", "Polish")},
    {26, QT_TRANSLATE_NOOP("vexqt::language", "Hungarian")},
    {27, QT_TRANSLATE_NOOP("vexqt::language", "Estonian")},
    {28, QT_TRANSLATE_NOOP("vexqt::language", "Latvian")},
    {29, QT_TRANSLATE_NOOP("vexqt::language", "Sami")},
    {30, QT_TRANSLATE_NOOP("vexqt::language", "Faroese")},
    {31, QT_TRANSLATE_NOOP("vexqt::language", "Persian")},
    {32, QT_TRANSLATE_NOOP("vexqt::language", "Russian")},
    {33, QT_TRANSLATE_NOOP("vexqt::language", "Chinese (simplified)")},
    {34, QT_TRANSLATE_NOOP("vexqt::language", "Flemish")},
    {35, QT_TRANSLATE_NOOP("vexqt::language", "Irish")},
    {36, QT_TRANSLATE_NOOP("vexqt::language", "Albanian")},
    {37, QT_TRANSLATE_NOOP("vexqt::language", "Romanian")},
    {38, QT_TRANSLATE_NOOP("vexqt::language", "Czech")},
    {39, QT_TRANSLATE_NOOP("vexqt::language", "Slovak")},
    {40, QT_TRANSLATE_NOOP("vexqt::language", "Slovenian")},
    {41, QT_TRANSLATE_NOOP("vexqt::language", "Yiddish")},
    {42, QT_TRANSLATE_NOOP("vexqt::language", "Serbian")},
    {43, QT_TRANSLATE_NOOP("vexqt::language", "Macedonian")},
    {44, QT_TRANSLATE_NOOP("vexqt::language", "Bulgarian")},
    {45, QT_TRANSLATE_NOOP("vexqt::language", "Ukrainian")},
    {46, QT_TRANSLATE_NOOP("vexqt::language", "Belarusian")},
    {47, QT_TRANSLATE_NOOP("vexqt::language", "Uzbek")},
    {48, QT_TRANSLATE_NOOP("vexqt::language", "Kazakh")},
    {49, QT_TRANSLATE_NOOP("vexqt::language", "Azerbaijani (Cyrillic)")},
    {50, QT_TRANSLATE_NOOP("vexqt::language", "Azerbaijani (Arabic)")},
    {51, QT_TRANSLATE_NOOP("vexqt::language", "Armenian")},
    {52, QT_TRANSLATE_NOOP("vexqt::language", "Georgian")},
    {53, QT_TRANSLATE_NOOP("vexqt::language", "Moldavian")},
    {54, QT_TRANSLATE_NOOP("vexqt::language", "Kirghiz")},
    {55, QT_TRANSLATE_NOOP("vexqt::language", "Tajik")},
    {56, QT_TRANSLATE_NOOP("vexqt::language", "Turkmen")},
    {57, QT_TRANSLATE_NOOP("vexqt::language", "Mongolian (Mongolian)")},
    {58, QT_TRANSLATE_NOOP("vexqt::language", "Mongolian (Cyrillic)")},
    {59, QT_TRANSLATE_NOOP("vexqt::language", "Pashto")},
    {60, QT_TRANSLATE_NOOP("vexqt::language", "Kurdish")},
    {61, QT_TRANSLATE_NOOP("vexqt::language", "Kashmiri")},
    {62, QT_TRANSLATE_NOOP("vexqt::language", "Sindhi")},
    {63, QT_TRANSLATE_NOOP("vexqt::language", "Tibetan")},
    {64, QT_TRANSLATE_NOOP("vexqt::language", "Nepali")},
    {65, QT_TRANSLATE_NOOP("vexqt::language", "Sanskrit")},
    {66, QT_TRANSLATE_NOOP("vexqt::language", "Marathi")},
    {67, QT_TRANSLATE_NOOP("vexqt::language", "Bengali")},
    {68, QT_TRANSLATE_NOOP("vexqt::language", "Assamese")},
    {69, QT_TRANSLATE_NOOP("vexqt::language", "Gujarati")},
    {70, QT_TRANSLATE_NOOP("vexqt::language", "Punjabi")},
    {71, QT_TRANSLATE_NOOP("vexqt::language", "Oriya")},
    {72, QT_TRANSLATE_NOOP("vexqt::language", "Malayalam")},
    {73, QT_TRANSLATE_NOOP("vexqt::language", "Kannada")},
    {74, QT_TRANSLATE_NOOP("vexqt::language", "Tamil")},
    {75, QT_TRANSLATE_NOOP("vexqt::language", "Telugu")},
    {76, QT_TRANSLATE_NOOP("vexqt::language", "Sinhala")},
    {77, QT_TRANSLATE_NOOP("vexqt::language", "Burmese")},
    {78, QT_TRANSLATE_NOOP("vexqt::language", "Khmer")},
    {79, QT_TRANSLATE_NOOP("vexqt::language", "Lao")},
    {80, QT_TRANSLATE_NOOP("vexqt::language", "Vietnamese")},
    {81, QT_TRANSLATE_NOOP("vexqt::language", "Indonesian")},
    {82, QT_TRANSLATE_NOOP("vexqt::language", "Tagalog")},
    {83, QT_TRANSLATE_NOOP("vexqt::language", "Malay (Latin)")},
    {84, QT_TRANSLATE_NOOP("vexqt::language", "Malay (Arabic)")},
    {85, QT_TRANSLATE_NOOP("vexqt::language", "Amharic")},
    {86, QT_TRANSLATE_NOOP("vexqt::language", "Tigrinya")},
    {87, QT_TRANSLATE_NOOP("vexqt::language", "Oromo")},
    {88, QT_TRANSLATE_NOOP("vexqt::language", "Somali")},
    {89, QT_TRANSLATE_NOOP("vexqt::language", "Swahili")},
    {90, QT_TRANSLATE_NOOP("vexqt::language", "Kinyarwanda")},
    {91, QT_TRANSLATE_NOOP("vexqt::language", "Rundi")},
    {92, QT_TRANSLATE_NOOP("vexqt::language", "Nyanja")},
    {93, QT_TRANSLATE_NOOP("vexqt::language", "Malagasy")},
    {94, QT_TRANSLATE_NOOP("vexqt::language", "Esperanto")},
    {128, QT_TRANSLATE_NOOP("vexqt::language", "Welsh")},
    {129, QT_TRANSLATE_NOOP("vexqt::language", "Basque")},
    {130, QT_TRANSLATE_NOOP("vexqt::language", "Catalan")},
    {131, QT_TRANSLATE_NOOP("vexqt::language", "Latin")},
    {132, QT_TRANSLATE_NOOP("vexqt::language", "Quechua")},
    {133, QT_TRANSLATE_NOOP("vexqt::language", "Guarani")},
    {134, QT_TRANSLATE_NOOP("vexqt::language", "Aymara")},
    {135, QT_TRANSLATE_NOOP("vexqt::language", "Tatar")},
    {136, QT_TRANSLATE_NOOP("vexqt::language", "Uyghur")},
    {137, QT_TRANSLATE_NOOP("vexqt::language", "Dzongkha")},
    {138, QT_TRANSLATE_NOOP("vexqt::language", "Javanese (Latin)")},
    {139, QT_TRANSLATE_NOOP("vexqt::language", "Sundanese (Latin)")},
    {140, QT_TRANSLATE_NOOP("vexqt::language", "Galician")},
    {141, QT_TRANSLATE_NOOP("vexqt::language", "Afrikaans")},
    {142, QT_TRANSLATE_NOOP("vexqt::language", "Breton")},
    {143, QT_TRANSLATE_NOOP("vexqt::language", "Inuktitut")},
    {144, QT_TRANSLATE_NOOP("vexqt::language", "Scottish Gaelic")},
    {145, QT_TRANSLATE_NOOP("vexqt::language", "Manx")},
    {146, QT_TRANSLATE_NOOP("vexqt::language", "Irish (dot above)")},
    {147, QT_TRANSLATE_NOOP("vexqt::language", "Tongan")},
    {148, QT_TRANSLATE_NOOP("vexqt::language", "Greek (polytonic)")},
    {149, QT_TRANSLATE_NOOP("vexqt::language", "Greenlandic")},
    {150, QT_TRANSLATE_NOOP("vexqt::language", "Azerbaijani (Latin)")},
    {151, QT_TRANSLATE_NOOP("vexqt::language", "Norwegian Nynorsk")},
};

QString translated(const char* text) {
    return QCoreApplication::translate("vexqt::language", text);
}

}  // namespace

QString meaningOfLanguageCode(std::uint16_t code) {
    if (code == kUnspecified)
        return translated(QT_TRANSLATE_NOOP("vexqt::language", "unspecified"));
    if (code < kFirstPackedLanguage) {
        for (const ScriptLanguage& language : kScriptLanguages)
            if (language.code == code) return translated(language.name);
        return translated(QT_TRANSLATE_NOOP("vexqt::language", "no language of this number"));
    }
    QString letters;
    for (const int shift : {10, 5, 0})
        letters += QChar(static_cast<char16_t>(0x60 + ((code >> shift) & 0x1F)));
    if (packedLanguageCode(letters) != code)
        return translated(QT_TRANSLATE_NOOP("vexqt::language", "no language code"));
    if (letters == QLatin1String("und"))
        return translated(QT_TRANSLATE_NOOP("vexqt::language", "und — undetermined"));
    const QLocale::Language language = QLocale::codeToLanguage(
        letters, QLocale::LanguageCodeTypes(QLocale::ISO639Part2T) | QLocale::ISO639Part2B);
    if (language == QLocale::AnyLanguage) return letters;
    return QStringLiteral("%1 — %2").arg(letters, QLocale::languageToString(language));
}

std::optional<std::uint16_t> packedLanguageCode(QStringView letters) {
    if (letters.size() != 3) return std::nullopt;
    unsigned code = 0;
    for (const QChar letter : letters) {
        if (letter < u'a' || letter > u'z') return std::nullopt;
        code = code << 5 | (letter.unicode() - 0x60u);
    }
    return static_cast<std::uint16_t>(code);
}

}  // namespace vexqt
