#include "appearance.h"

#include <QApplication>
#include <QPalette>
#include <QStyleFactory>

#include <algorithm>
#include <array>
#include <utility>

namespace {

struct Colors {
    QColor window, base, alternate, text, muted, line, button, highlight;
};

const Colors kLight{{0xf4, 0xf5, 0xf7}, Qt::white,          {0xf7, 0xf9, 0xfb}, {0x1f, 0x23, 0x28},
                    {0x5b, 0x64, 0x6d}, {0xd5, 0xd9, 0xde}, {0xfb, 0xfc, 0xfd}, {0x2f, 0x7f, 0xd6}};
const Colors kDark{{0x25, 0x29, 0x2e}, {0x1c, 0x1f, 0x23}, {0x21, 0x25, 0x29}, {0xe3, 0xe6, 0xea},
                   {0x9a, 0xa3, 0xad}, {0x3b, 0x41, 0x49}, {0x2f, 0x34, 0x3a}, {0x2f, 0x6f, 0xb8}};

QPalette MakePalette(const Colors& colors)
{
    QPalette palette(colors.button, colors.window);
    for (const auto& [role, color] :
         {std::pair(QPalette::Window, colors.window), std::pair(QPalette::Base, colors.base),
          std::pair(QPalette::AlternateBase, colors.alternate),
          std::pair(QPalette::Text, colors.text), std::pair(QPalette::WindowText, colors.text),
          std::pair(QPalette::ButtonText, colors.text),
          std::pair(QPalette::ToolTipText, colors.text),
          std::pair(QPalette::ToolTipBase, colors.window),
          std::pair(QPalette::PlaceholderText, colors.muted),
          std::pair(QPalette::Highlight, colors.highlight),
          std::pair(QPalette::HighlightedText, QColor(Qt::white)),
          std::pair(QPalette::Link, colors.highlight.lighter(115)),
          std::pair(QPalette::Mid, colors.line)}) {
        palette.setColor(role, color);
    }
    for (const auto role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText}) {
        palette.setColor(QPalette::Disabled, role, colors.muted);
    }
    return palette;
}

QString StyleSheet(const Colors& colors)
{
    return QStringLiteral(
               "QHeaderView::section { background: %1; color: %2; border: none;"
               " border-bottom: 1px solid %3; padding: 5px 6px; }"
               "QHeaderView { background: %1; }"
               "QAbstractScrollArea#listing { border: 1px solid %3; }")
        .arg(colors.window.name(), colors.muted.name(), colors.line.name());
}

using NamedAppearance = std::pair<const char*, Appearance>;
constexpr std::array<NamedAppearance, 3> kNames{{{"system", Appearance::System},
                                                 {"light", Appearance::Light},
                                                 {"dark", Appearance::Dark}}};

}  // namespace

std::optional<Appearance> AppearanceNamed(const std::string& name)
{
    const auto found = std::ranges::find(kNames, name, &NamedAppearance::first);
    return found != kNames.end() ? std::optional(found->second) : std::nullopt;
}

std::string AppearanceName(Appearance appearance)
{
    return std::ranges::find(kNames, appearance, &NamedAppearance::second)->first;
}

void SetAppearance(Appearance appearance)
{
    // The desktop's own colours, before they are replaced.
    static const bool desktopIsDark = IsDark(QApplication::palette());
    const bool dark =
        appearance == Appearance::Dark || (appearance == Appearance::System && desktopIsDark);
    const Colors& colors = dark ? kDark : kLight;
    QApplication::setStyle(QStyleFactory::create("Fusion"));
    QApplication::setPalette(MakePalette(colors));
    qApp->setStyleSheet(StyleSheet(colors));
}

bool IsDark(const QPalette& palette)
{
    return palette.color(QPalette::WindowText).lightness() >
           palette.color(QPalette::Window).lightness();
}
