#include "debugwindow/windowfonts.h"

#include "debugwindow/fontweight.h"
#include "host/hosthandlers.h"

#include <QFontInfo>

namespace Zorvan {

namespace {

constexpr int defaultSizePt = 8;
constexpr int largestSizePt = 200;

struct FontKeys
{
    const char *family;
    const char *size;
    const char *weight;
    const char *defaultFamily;
    QFont::StyleHint hint; ///< for displays that do not have the family
};
constexpr FontKeys outputKeys{"DebugServerDebugFont", "DebugServerDebugFontSize",
                              "DebugServerDebugFontWeight", "Courier", QFont::Monospace};
constexpr FontKeys userInterfaceKeys{"DebugServerGuiFont", "DebugServerGuiFontSize",
                                     "DebugServerGuiFontWeight", "Arial", QFont::SansSerif};

int readNumber(const char *key, int lowest, int highest, int defaultValue)
{
    const int stored = host::readInteger(QString::fromLatin1(key), defaultValue);
    return stored < lowest || stored > highest ? defaultValue : stored;
}

QFont readFont(const FontKeys &keys)
{
    const QString defaultFamily = QString::fromLatin1(keys.defaultFamily);
    const QString family = host::readString(QString::fromLatin1(keys.family), defaultFamily);
    const int size = readNumber(keys.size, 1, largestSizePt, defaultSizePt);
    const int weight = readNumber(keys.weight, 0, fontweight::heaviest, fontweight::normal);
    QFont font(family.isEmpty() ? defaultFamily : family, size, fontweight::ofFont(weight));
    font.setStyleHint(keys.hint);
    font.setItalic(false); // said explicitly, or the messages would take it over from the window's font
    return font;
}

void addFont(Settings &settings, const FontKeys &keys, const QFont &font)
{
    const int size = font.pointSize() > 0 ? font.pointSize() : QFontInfo(font).pointSize();
    settings.emplace_back(keys.family, font.family());
    settings.emplace_back(keys.size, QString::number(qMin(size, largestSizePt)));
    settings.emplace_back(keys.weight, QString::number(fontweight::toStore(font)));
}

} // namespace

WindowFonts readWindowFonts()
{
    WindowFonts fonts;
    fonts.output = readFont(outputKeys);
    fonts.userInterface = readFont(userInterfaceKeys);
    return fonts;
}

void addFontSettings(Settings &settings, const WindowFonts &fonts)
{
    addFont(settings, outputKeys, fonts.output);
    addFont(settings, userInterfaceKeys, fonts.userInterface);
}

} // namespace Zorvan
