#include "MibrelMac/Views/Kit/MibrelToolIcons.h"

#include <array>

#include <QApplication>
#include <QFile>
#include <QPainter>
#include <QPixmap>
#include <QStyle>

// Resources built into a static library must be registered by name before first use.
static void registerIconResources() { Q_INIT_RESOURCE(MibrelIcons); }

namespace mibrel {
namespace {

// Theme names in order of preference (desktops differ in which they ship), then the
// style's own icon for systems with no theme at all.
struct IconChoice {
    std::string_view symbol;
    std::array<const char*, 3> themeNames; // unused places stay null
    QStyle::StandardPixmap fallback;
};

const std::array<IconChoice, 17>& iconChoices() {
    static const std::array<IconChoice, 17> choices{{
        {"doc.text", {"text-x-generic"}, QStyle::SP_FileIcon},
        {"text.magnifyingglass", {"edit-find", "system-search"}, QStyle::SP_FileDialogContentsView},
        {"eye", {"view-visible", "visibility", "view-preview"}, QStyle::SP_FileDialogInfoView},
        {"highlighter", {"draw-highlight", "format-text-highlight", "insert-text"}, QStyle::SP_FileDialogDetailedView},
        {"tag", {"tag", "bookmark-new", "bookmarks"}, QStyle::SP_FileLinkIcon},
        {"chart.bar.xaxis", {"office-chart-bar", "view-statistics", "x-office-spreadsheet"},
         QStyle::SP_FileDialogListView},
        {"square.stack.3d.up", {"view-list-details", "view-group"}, QStyle::SP_DirIcon},
        {"quote.opening", {"format-text-blockquote", "format-quote", "insert-text"}, QStyle::SP_MessageBoxInformation},
        {"sparkles", {"starred", "emblem-favorite", "tools-wizard"}, QStyle::SP_DialogHelpButton},
        {"checkmark.seal", {"emblem-default", "security-high", "emblem-ok"}, QStyle::SP_DialogApplyButton},
        {"doc.richtext", {"x-office-document", "text-richtext"}, QStyle::SP_DialogSaveButton},
        {"waveform", {"audio-x-generic"}, QStyle::SP_MediaVolume},
        {"video", {"video-x-generic"}, QStyle::SP_MediaPlay},
        {"tablecells", {"x-office-spreadsheet"}, QStyle::SP_FileDialogListView},
        {"sidebar.right", {"sidebar-show-right", "view-right-pane", "view-split-left-right"},
         QStyle::SP_ToolBarHorizontalExtensionButton},
        {"arrow.up.forward.app", {"document-send", "go-jump"}, QStyle::SP_ArrowForward},
        {"shippingbox", {"package-x-generic"}, QStyle::SP_DriveHDIcon},
    }};
    return choices;
}

const IconChoice* choiceFor(std::string_view symbol) {
    for (const IconChoice& choice : iconChoices()) {
        if (choice.symbol == symbol) return &choice;
    }
    return nullptr;
}

// A plain dot in the text colour, so that even a style with no icons gives something
// to draw rather than an empty gap in a list.
QIcon drawnDot() {
    QPixmap pixmap(16, 16);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QApplication::palette().color(QPalette::WindowText));
    painter.drawEllipse(QRectF(4, 4, 8, 8));
    return QIcon(pixmap);
}

QIcon styleIcon(QStyle::StandardPixmap which) {
    QStyle* style = QApplication::style();
    QIcon icon = style ? style->standardIcon(which) : QIcon();
    if (icon.isNull() && style) icon = style->standardIcon(QStyle::SP_FileIcon);
    return icon.isNull() ? drawnDot() : icon;
}

} // namespace

QIcon iconForSymbol(std::string_view symbol) {
    static const bool registered = (registerIconResources(), true);
    (void)registered;
    // The program's own drawings come first, so the tools look alike on every desktop.
    const QString bundled = QStringLiteral(":/icons/%1.svg").arg(QString::fromUtf8(symbol.data(), static_cast<qsizetype>(symbol.size())));
    if (QFile::exists(bundled)) return QIcon(bundled);
    const IconChoice* choice = choiceFor(symbol);
    if (!choice) return styleIcon(QStyle::SP_FileIcon);
    for (const char* name : choice->themeNames) {
        if (!name) break;
        const QString themeName = QString::fromLatin1(name);
        if (QIcon::hasThemeIcon(themeName)) return QIcon::fromTheme(themeName);
    }
    return styleIcon(choice->fallback);
}

} // namespace mibrel
