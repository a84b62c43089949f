#include "appearance.h"

#include "editor_proxy_style.h"

#include <QApplication>
#include <QPalette>

#include <algorithm>
#include <array>
#include <utility>

namespace {

struct Colors {
    QColor window, base, alternate, text, muted, line, button, highlight, message, thumb;
};

const Colors kLightColors{{0xf4, 0xf5, 0xf7}, Qt::white,          {0xf7, 0xf9, 0xfb},
                          {0x1f, 0x23, 0x28}, {0x5b, 0x64, 0x6d}, {0xd5, 0xd9, 0xde},
                          {0xfb, 0xfc, 0xfd}, {0x2f, 0x7f, 0xd6}, {0xff, 0xf4, 0xd6},
                          {0x86, 0x8e, 0x97}};
const Colors kDarkColors{{0x31, 0x36, 0x3d}, {0x1c, 0x1f, 0x23}, {0x22, 0x26, 0x2b},
                         {0xe3, 0xe6, 0xea}, {0xa4, 0xad, 0xb7}, {0x49, 0x50, 0x59},
                         {0x3d, 0x43, 0x4b}, {0x2f, 0x6f, 0xb8}, {0x46, 0x3f, 0x2a},
                         {0x7d, 0x86, 0x90}};

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

// Names in braces are placeholders for the colours.
constexpr const char* kStyleSheet = R"(
QHeaderView::section { background: {window}; color: {muted}; border: none;
    border-bottom: 1px solid {line}; padding: 5px 6px; }
QHeaderView { background: {window}; }
QAbstractScrollArea#listing { border: 1px solid {line}; }
QToolBar { background: {window}; border: none; border-bottom: 1px solid {line};
    padding: 3px 6px; spacing: 4px; }
QTabBar { background: {window}; }
QTabBar::tab { background: {window}; color: {muted}; border: none; border-top: 2px solid {window};
    border-right: 1px solid {line}; padding: 5px 10px; }
QTabBar::tab:selected { background: {base}; color: {text}; border-top-color: {highlight}; }
QTabBar::tab:hover { color: {text}; }
QSplitter::handle { background: {window}; border-top: 1px solid {line}; }
QSplitter::handle:horizontal { border-top: none; border-left: 1px solid {line}; }
QStatusBar { background: {window}; border-top: 1px solid {line}; }
QStatusBar::item { border: none; }
QStatusBar QLabel { color: {muted}; padding: 2px 8px; }
QToolButton#board { border: 1px solid transparent; padding: 2px 18px 2px 4px; }
QToolButton#board:hover { background: {line}; }
QToolButton#board:focus { border-color: {highlight}; }
QToolButton#board::menu-indicator { subcontrol-origin: padding; subcontrol-position: center right;
    right: 4px; }
QToolTip { background: {window}; color: {text}; border: 1px solid {line}; padding: 2px; }
QAbstractScrollArea::corner { background: {window}; border: none; }
QScrollBar { background: {window}; border: none; }
QScrollBar:vertical { width: 13px; }
QScrollBar:horizontal { height: 13px; }
QScrollBar::handle { background: {thumb}; border-radius: 4px; margin: 2px; }
QScrollBar::handle:hover { background: {muted}; }
QScrollBar::handle:vertical { min-height: 28px; }
QScrollBar::handle:horizontal { min-width: 28px; }
QScrollBar::add-line, QScrollBar::sub-line { width: 0; height: 0; }
QScrollBar::add-page, QScrollBar::sub-page { background: none; }
QFrame#messageBar { background: {message}; border: none; border-bottom: 1px solid {line}; }
)";

QString StyleSheet(const Colors& colors)
{
    QString sheet = kStyleSheet;
    for (const auto& [name, color] :
         {std::pair("{window}", colors.window), std::pair("{base}", colors.base),
          std::pair("{text}", colors.text), std::pair("{muted}", colors.muted),
          std::pair("{line}", colors.line), std::pair("{highlight}", colors.highlight),
          std::pair("{message}", colors.message), std::pair("{thumb}", colors.thumb)}) {
        sheet.replace(QLatin1String(name), color.name());
    }
    return sheet;
}

using NamedAppearance = std::pair<const char*, Appearance>;
constexpr std::array<NamedAppearance, 3> kNames{
    {{"system", Appearance::System}, {"light", Appearance::Light}, {"dark", Appearance::Dark}}};

Appearance current = Appearance::System;

}  // namespace

std::optional<Appearance> ParseAppearance(const std::string& name)
{
    const auto found = std::ranges::find(kNames, name, &NamedAppearance::first);
    return found != kNames.end() ? std::optional(found->second) : std::nullopt;
}

std::string AppearanceName(Appearance appearance)
{
    return std::ranges::find(kNames, appearance, &NamedAppearance::second)->first;
}

Appearance CurrentAppearance()
{
    return current;
}

void SetAppearance(Appearance appearance)
{
    current = appearance;
    // Determined by the first call, before the desktop's palette is replaced.
    static const bool desktopIsDark = IsDark(QApplication::palette());
    const bool dark =
        appearance == Appearance::Dark || (appearance == Appearance::System && desktopIsDark);
    const Colors& colors = dark ? kDarkColors : kLightColors;
    QApplication::setStyle(new EditorProxyStyle);  // Qt owns it.
    // NOLINTNEXTLINE(clang-analyzer-cplusplus.NewDeleteLeaks): the analysis does not know that.
    QApplication::setPalette(MakePalette(colors));
    qApp->setStyleSheet(StyleSheet(colors));
}

bool IsDark(const QPalette& palette)
{
    return palette.color(QPalette::WindowText).lightness() >
           palette.color(QPalette::Window).lightness();
}
