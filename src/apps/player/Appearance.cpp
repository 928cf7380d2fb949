#include "apps/player/Appearance.h"

#include <QApplication>
#include <QLabel>
#include <QPalette>
#include <QStyle>
#include <QStyleFactory>

namespace pxvis::player {

namespace {

constexpr QRgb window = 0xFF17191E;
constexpr QRgb base = 0xFF101216;
constexpr QRgb field = 0xFF2B3038; // what is ticked or written in
constexpr QRgb button = 0xFF262A31;
constexpr QRgb text = 0xFFE4E7EC;
constexpr QRgb dimmed = 0xFF9AA3AF;
constexpr QRgb disabled = 0xFF5D6570;
constexpr QRgb line = 0xFF343A43;
constexpr QRgb accent = 0xFF6FB1FF;
constexpr QRgb selection = 0xFF2C4A70;

// What the palette alone can't say.
constexpr char styleSheet[] = R"(
QMenuBar { background: #17191e; padding: 2px; }
QMenuBar::item { padding: 4px 9px; border-radius: 4px; background: transparent; }
QMenuBar::item:selected { background: #2c323b; }
QMenu { background: #1d2026; border: 1px solid #343a43; padding: 4px; }
QMenu::item { padding: 5px 26px 5px 26px; border-radius: 4px; }
QMenu::item:selected { background: #2c4a70; }
QMenu::item:disabled { color: #5d6570; }
QMenu::separator { height: 1px; background: #343a43; margin: 4px 8px; }
QToolTip { background: #262a31; color: #e4e7ec; border: 1px solid #454c57; padding: 4px 6px; }
QMainWindow::separator { background: #0b0c0f; width: 3px; height: 3px; }
QMainWindow::separator:hover { background: #343a43; }
QStatusBar { border-top: 1px solid #24282f; }
QStatusBar::item { border: none; }
QHeaderView::section { background: #17191e; color: #9aa3af; border: none;
    border-bottom: 1px solid #24282f; padding: 5px 6px; }
QTableView { border: none; gridline-color: transparent; }
QTableView::item { padding: 0 6px; border: none; }
QTableView::item:selected { background: #2c4a70; color: #ffffff; }
QScrollBar:vertical { background: transparent; width: 11px; margin: 0; }
QScrollBar:horizontal { background: transparent; height: 11px; margin: 0; }
QScrollBar::handle { background: #3a414b; border-radius: 4px; margin: 2px; min-height: 28px;
    min-width: 28px; }
QScrollBar::handle:hover { background: #525b68; }
QScrollBar::add-line, QScrollBar::sub-line { width: 0; height: 0; }
QScrollBar::add-page, QScrollBar::sub-page { background: transparent; }
QDialogButtonBox { dialogbuttonbox-buttons-have-icons: 0; }
QCheckBox { spacing: 8px; }
QToolButton { border: none; border-radius: 6px; padding: 5px; background: transparent; }
QToolButton:hover { background: #2a2f37; }
QToolButton:pressed { background: #353c46; }
QToolButton:focus { background: #2a2f37; border: 1px solid #6fb1ff; padding: 4px; }
)";

}

void Appearance::ApplyTo(QApplication& application)
{
    QApplication::setStyle(QStyleFactory::create("Fusion"));
    QPalette palette;
    palette.setColor(QPalette::Window, QColor(window));
    palette.setColor(QPalette::Base, QColor(base));
    palette.setColor(QPalette::AlternateBase, QColor(window));
    palette.setColor(QPalette::Button, QColor(button));
    palette.setColor(QPalette::ToolTipBase, QColor(button));
    for (const QPalette::ColorRole role :
        { QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText })
        palette.setColor(role, QColor(text));
    palette.setColor(QPalette::BrightText, Qt::white);
    palette.setColor(QPalette::PlaceholderText, QColor(dimmed));
    palette.setColor(QPalette::Highlight, QColor(selection));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, QColor(accent));
    palette.setColor(QPalette::LinkVisited, QColor(accent));
    palette.setColor(QPalette::Light, QColor(line));
    palette.setColor(QPalette::Midlight, QColor(line));
    palette.setColor(QPalette::Mid, QColor(line));
    palette.setColor(QPalette::Dark, QColor(base));
    palette.setColor(QPalette::Shadow, Qt::black);
    for (const QPalette::ColorRole role :
        { QPalette::WindowText, QPalette::Text, QPalette::ButtonText })
        palette.setColor(QPalette::Disabled, role, QColor(disabled));
    palette.setColor(QPalette::Disabled, QPalette::Highlight, QColor(line));
    QApplication::setPalette(palette);
    palette.setColor(QPalette::Base, QColor(field));
    for (const char* control : { "QCheckBox", "QAbstractSpinBox", "QLineEdit" })
        QApplication::setPalette(palette, control);
    application.setStyleSheet(QString::fromLatin1(styleSheet));
}

QLabel* Appearance::MakeHeading(const QString& text)
{
    auto* label = new QLabel(text);
    QFont font = label->font();
    font.setWeight(QFont::DemiBold);
    label->setFont(font);
    QPalette palette = label->palette();
    palette.setColor(QPalette::WindowText, Accent());
    label->setPalette(palette);
    return label;
}

QColor Appearance::Accent()
{
    return accent;
}

QColor Appearance::Dimmed()
{
    return dimmed;
}

QColor Appearance::Line()
{
    return line;
}

}
