#include "MibrelMac/Views/MibrelStartPageView.h"

#include <algorithm>
#include <exception>
#include <utility>

#include <QAbstractButton>
#include <QDateTime>
#include <QDir>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileInfo>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QIcon>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>
#include <QMimeData>
#include <QPainter>
#include <QPainterPath>
#include <QPushButton>
#include <QScrollArea>
#include <QSettings>
#include <QUrl>
#include <QVBoxLayout>

#include "MibrelMac/State/MibrelDataFiles.h"
#include "MibrelMac/State/MibrelProjectSession.h"
#include "MibrelMac/State/MibrelRecentProjectsStore.h"
#include "MibrelMac/Views/Kit/MibrelTypography.h"
#include "Platform/Files/FileSystem.h"

namespace mibrel {
namespace {

using MibrelTypography::makeLabel;
using MibrelTypography::scaledFont;

constexpr int kSideColumnWidth = 300;
constexpr int kMainColumnWidth = 520;

// Colours are mixed from the current palette at paint time so light and dark themes,
// and a theme change while the page is open, all look right.
QColor blend(const QColor& from, const QColor& to, double amount) {
    return QColor::fromRgbF(static_cast<float>(from.redF() + (to.redF() - from.redF()) * amount),
                            static_cast<float>(from.greenF() + (to.greenF() - from.greenF()) * amount),
                            static_cast<float>(from.blueF() + (to.blueF() - from.blueF()) * amount));
}

QColor withAlpha(QColor color, double alpha) {
    color.setAlphaF(static_cast<float>(alpha));
    return color;
}

QString toQString(const std::filesystem::path& path) { return QString::fromStdString(path.string()); }

QString displayName(const std::filesystem::path& project) {
    QString name = QString::fromStdString(platform::files::lastPathComponent(project));
    if (platform::files::lowercasedExtension(project) == "mvibrl") name.chop(7);
    return name;
}

// The enclosing folder, with the home folder shortened the way people read it.
QString displayFolder(const std::filesystem::path& project) {
    std::filesystem::path location = project;
    if (!location.has_filename()) location = location.parent_path();
    const QString folder = toQString(location.parent_path());
    const QString home = QDir::homePath();
    if (folder == home) return QStringLiteral("~");
    if (folder.startsWith(home + QLatin1Char('/'))) return QStringLiteral("~") + folder.mid(home.size());
    return folder;
}

bool carriesLocalFile(const QMimeData* data) {
    if (!data || !data->hasUrls()) return false;
    for (const QUrl& url : data->urls()) {
        if (url.isLocalFile()) return true;
    }
    return false;
}

// A rounded tile with lines of text, one of them marked: transcripts being coded.
class ProductMark : public QWidget {
public:
    explicit ProductMark(QWidget* parent = nullptr) : QWidget(parent) { setFixedSize(44, 44); }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const QColor accent = palette().color(QPalette::Highlight);
        QLinearGradient fill(0, 0, 0, height());
        fill.setColorAt(0, accent.lighter(118));
        fill.setColorAt(1, accent.darker(112));
        painter.setPen(Qt::NoPen);
        painter.setBrush(fill);
        painter.drawRoundedRect(QRectF(rect()), 11, 11);

        const QColor ink = palette().color(QPalette::HighlightedText);
        painter.setBrush(withAlpha(ink, 0.28));
        painter.drawRoundedRect(QRectF(8, 18.5, 32, 8), 4, 4);
        painter.setBrush(ink);
        const double widths[] = {22, 26, 16};
        for (int line = 0; line < 3; ++line) {
            painter.drawRoundedRect(QRectF(11, 12 + line * 9, widths[line], 3), 1.5, 1.5);
        }
    }
};

// The side column's tint and its dividing line, drawn so both follow the theme.
class SideColumn : public QWidget {
public:
    explicit SideColumn(QWidget* parent = nullptr) : QWidget(parent) { setFixedWidth(kSideColumnWidth); }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        const QColor window = palette().color(QPalette::Window);
        const QColor text = palette().color(QPalette::WindowText);
        painter.fillRect(rect(), blend(window, text, 0.035));
        painter.fillRect(QRect(width() - 1, 0, 1, height()), blend(window, text, 0.12));
    }
};

// One recent project: its initial, its name and its folder. The button text is the
// name, which keeps the row readable to assistive technology.
class RecentRow : public QAbstractButton {
public:
    RecentRow(const std::filesystem::path& project, QWidget* parent = nullptr)
        : QAbstractButton(parent), m_folder(displayFolder(project)) {
        setText(displayName(project));
        setToolTip(toQString(project));
        setAttribute(Qt::WA_Hover);
        setFocusPolicy(Qt::StrongFocus);
        setContextMenuPolicy(Qt::CustomContextMenu);
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    }

    QSize sizeHint() const override {
        return {kSideColumnWidth - 28, kPadding * 2 + std::max(kBadge, textHeight())};
    }

protected:
    void keyPressEvent(QKeyEvent* event) override {
        // Space is handled by the button; Return opens too, as in any list.
        if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
            click();
            return;
        }
        QAbstractButton::keyPressEvent(event);
    }

    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const QPalette& colours = palette();
        const QColor window = colours.color(QPalette::Window);
        const QColor ink = colours.color(QPalette::WindowText);
        const QColor accent = colours.color(QPalette::Highlight);
        const QRectF frame = QRectF(rect()).adjusted(1, 1, -1, -1);

        painter.setPen(hasFocus() ? QPen(accent, 1.5) : QPen(Qt::NoPen));
        painter.setBrush(isDown() ? blend(window, ink, 0.13) : underMouse() ? blend(window, ink, 0.08) : Qt::transparent);
        painter.drawRoundedRect(frame, 7, 7);

        const QRectF badge(10, (height() - kBadge) / 2.0, kBadge, kBadge);
        painter.setPen(Qt::NoPen);
        painter.setBrush(withAlpha(accent, 0.16));
        painter.drawRoundedRect(badge, 8, 8);
        painter.setPen(accent);
        painter.setFont(scaledFont(font(), 1.05, QFont::DemiBold));
        painter.drawText(badge, Qt::AlignCenter, text().left(1).toUpper());

        const int left = 10 + kBadge + 10;
        const int available = width() - left - 10;
        const QFontMetrics nameMetrics(nameFont());
        const QFontMetrics folderMetrics(folderFont());
        const int top = (height() - textHeight()) / 2;
        painter.setPen(ink);
        painter.setFont(nameFont());
        painter.drawText(QRect(left, top, available, nameMetrics.height()), Qt::AlignLeft | Qt::AlignVCenter,
                         nameMetrics.elidedText(text(), Qt::ElideRight, available));
        painter.setPen(colours.color(QPalette::PlaceholderText));
        painter.setFont(folderFont());
        painter.drawText(QRect(left, top + nameMetrics.height() + 1, available, folderMetrics.height()),
                         Qt::AlignLeft | Qt::AlignVCenter, folderMetrics.elidedText(m_folder, Qt::ElideMiddle, available));
    }

private:
    static constexpr int kPadding = 8;
    static constexpr int kBadge = 32;

    QFont nameFont() const { return scaledFont(font(), 1.0, QFont::DemiBold); }
    QFont folderFont() const { return scaledFont(font(), 0.9); }
    int textHeight() const { return QFontMetrics(nameFont()).height() + 1 + QFontMetrics(folderFont()).height(); }

    QString m_folder;
};

// A dashed well that fills with the accent colour while something is dragged over the page.
class DropZone : public QWidget {
public:
    explicit DropZone(QWidget* parent = nullptr) : QWidget(parent) {
        auto* layout = new QVBoxLayout(this);
        layout->setContentsMargins(24, 58, 24, 22);
        layout->setSpacing(4);
        for (QLabel* label : {makeLabel(MibrelStartPageView::tr("Drop a project or data file here"),
                                        scaledFont(font(), 1.0, QFont::DemiBold), false),
                              makeLabel(MibrelStartPageView::tr(".mvibrl, .xlsx, .csv, .docx, .pdf, .txt, audio, video"),
                                        scaledFont(font(), 0.9), true)}) {
            label->setAlignment(Qt::AlignCenter);
            layout->addWidget(label);
        }
    }

    void setHighlighted(bool highlighted) {
        if (m_highlighted == highlighted) return;
        m_highlighted = highlighted;
        update();
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const QColor window = palette().color(QPalette::Window);
        const QColor accent = palette().color(QPalette::Highlight);
        const QColor quiet = blend(window, palette().color(QPalette::WindowText), 0.35);
        const QColor ink = m_highlighted ? accent : quiet;

        QPen border(ink, m_highlighted ? 2.0 : 1.3, m_highlighted ? Qt::SolidLine : Qt::CustomDashLine);
        if (!m_highlighted) border.setDashPattern({4, 3});
        painter.setPen(border);
        painter.setBrush(m_highlighted ? withAlpha(accent, 0.12) : Qt::transparent);
        painter.drawRoundedRect(QRectF(rect()).adjusted(1.5, 1.5, -1.5, -1.5), 12, 12);
        drawArrowIntoTray(painter, ink);
    }

private:
    void drawArrowIntoTray(QPainter& painter, const QColor& ink) const {
        const double x = width() / 2.0;
        const double top = 20;
        QPen pen(ink, 1.8);
        pen.setCapStyle(Qt::RoundCap);
        pen.setJoinStyle(Qt::RoundJoin);
        painter.setPen(pen);
        painter.setBrush(Qt::NoBrush);
        painter.drawLine(QPointF(x, top), QPointF(x, top + 15));
        painter.drawPolyline(QPolygonF({{x - 6, top + 9}, {x, top + 15}, {x + 6, top + 9}}));
        painter.drawPolyline(QPolygonF({{x - 12, top + 14}, {x - 12, top + 22}, {x + 12, top + 22}, {x + 12, top + 14}}));
    }

    bool m_highlighted = false;
};

QLabel* makeGroupHeader(const QString& title, const QFont& base) {
    QFont font = scaledFont(base, 0.82, QFont::DemiBold);
    font.setCapitalization(QFont::AllUppercase);
    font.setLetterSpacing(QFont::AbsoluteSpacing, 0.6);
    QLabel* header = makeLabel(title, font, true);
    header->setContentsMargins(10, 14, 10, 4);
    return header;
}

} // namespace

struct MibrelStartPageView::Parts {
    QScrollArea* recentsArea = nullptr;
    DropZone* dropZone = nullptr;
    QPushButton* newButton = nullptr;
    QPushButton* openButton = nullptr;
    QPushButton* sampleButton = nullptr;

    QWidget* buildSideColumn(const QString& version);
    QWidget* buildMainPanel();
};

QWidget* MibrelStartPageView::Parts::buildSideColumn(const QString& version) {
    auto* column = new SideColumn;
    auto* layout = new QVBoxLayout(column);
    layout->setContentsMargins(0, 32, 0, 0);
    layout->setSpacing(0);

    auto* identity = new QVBoxLayout;
    identity->setContentsMargins(24, 0, 24, 20);
    identity->setSpacing(2);
    identity->addWidget(new ProductMark);
    identity->addSpacing(12);
    const QFont base = column->font();
    identity->addWidget(makeLabel(tr("Mibrel"), scaledFont(base, 1.45, QFont::Bold), false));
    identity->addWidget(makeLabel(tr("Qualitative analysis"), base, true));
    identity->addWidget(makeLabel(version, scaledFont(base, 0.85), true));
    layout->addLayout(identity);

    recentsArea = new QScrollArea;
    recentsArea->setFrameShape(QFrame::NoFrame);
    recentsArea->setWidgetResizable(true);
    recentsArea->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    // Let the column's tint show through instead of the list's base colour.
    recentsArea->viewport()->setAutoFillBackground(false);
    layout->addWidget(recentsArea, 1);
    return column;
}

QWidget* MibrelStartPageView::Parts::buildMainPanel() {
    auto* content = new QWidget;
    content->setMaximumWidth(kMainColumnWidth);
    auto* layout = new QVBoxLayout(content);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    const QFont base = content->font();

    layout->addWidget(makeLabel(tr("Welcome to Mibrel"), scaledFont(base, 2.2, QFont::DemiBold), false));
    layout->addSpacing(10);
    layout->addWidget(makeLabel(tr("Transcribe, code, and build defensible themes.\n"
                                   "Your interviews never leave your computer."),
                                scaledFont(base, 1.15), true));
    layout->addSpacing(28);

    newButton = new QPushButton(QIcon::fromTheme(QStringLiteral("document-new")), tr("New Project…"));
    newButton->setDefault(true);
    openButton = new QPushButton(QIcon::fromTheme(QStringLiteral("document-open")), tr("Open Project…"));
    auto* actions = new QHBoxLayout;
    actions->setSpacing(10);
    for (QPushButton* button : {newButton, openButton}) {
        button->setMinimumHeight(34);
        button->setMinimumWidth(150);
        actions->addWidget(button);
    }
    actions->addStretch();
    layout->addLayout(actions);
    layout->addSpacing(28);

    sampleButton = new QPushButton(tr("Open the sample project"));
    sampleButton->setMinimumHeight(30);
    sampleButton->setMinimumWidth(sampleButton->sizeHint().width() + 28);
    auto* sampleRow = new QHBoxLayout;
    sampleRow->addWidget(sampleButton);
    sampleRow->addStretch();
    layout->addLayout(sampleRow);
    layout->addSpacing(6);
    layout->addWidget(makeLabel(
        tr("Copies the Teacher Retention sample study to your Documents folder and opens it."),
        scaledFont(base, 0.92), true));
    layout->addSpacing(32);

    dropZone = new DropZone;
    layout->addWidget(dropZone);

    // Centre the column in whatever room the window leaves.
    auto* panel = new QWidget;
    auto* outer = new QGridLayout(panel);
    outer->setContentsMargins(48, 48, 48, 48);
    outer->addWidget(content, 1, 1);
    outer->setRowStretch(0, 1);
    outer->setRowStretch(2, 1);
    // The column takes the room first; the margins grow once it reaches its widest.
    outer->setColumnStretch(0, 1);
    outer->setColumnStretch(1, 100);
    outer->setColumnStretch(2, 1);
    return panel;
}

MibrelRecentGroups groupedRecents(const std::vector<std::filesystem::path>& recents, const QDate& currentDay) {
    MibrelRecentGroups groups;
    for (const auto& project : recents) {
        const QDateTime modified = QFileInfo(toQString(project)).lastModified();
        const bool today = modified.isValid() && modified.toLocalTime().date() == currentDay;
        (today ? groups.today : groups.earlier).push_back(project);
    }
    return groups;
}

MibrelStartPageView::MibrelStartPageView(MibrelProjectSession& session, QSettings& settings, std::string appVersion,
                                         std::function<void()> openSampleProject, QWidget* parent)
    : QWidget(parent),
      m_parts(std::make_unique<Parts>()),
      m_session(session),
      m_settings(settings),
      m_openSampleProject(std::move(openSampleProject)) {
    setAcceptDrops(true);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_parts->buildSideColumn(QString::fromStdString(appVersion)));
    layout->addWidget(m_parts->buildMainPanel(), 1);

    connect(m_parts->newButton, &QPushButton::clicked, this, [this] { m_session.newProject(); });
    connect(m_parts->openButton, &QPushButton::clicked, this, [this] { m_session.openProject(); });
    connect(m_parts->sampleButton, &QPushButton::clicked, this, [this] {
        if (m_openSampleProject) m_openSampleProject();
    });
    reloadRecents();
}

MibrelStartPageView::~MibrelStartPageView() = default;

void MibrelStartPageView::reloadRecents() {
    const MibrelRecentGroups groups = groupedRecents(MibrelRecentProjectsStore::load(m_settings), QDate::currentDate());
    auto* list = new QWidget;
    auto* layout = new QVBoxLayout(list);
    layout->setContentsMargins(14, 0, 14, 16);
    layout->setSpacing(2);

    if (groups.today.empty() && groups.earlier.empty()) {
        QLabel* none = makeLabel(tr("No recent projects"), font(), true);
        none->setContentsMargins(10, 8, 10, 8);
        layout->addWidget(none);
    }
    const std::pair<QString, const std::vector<std::filesystem::path>*> sections[] = {
        {tr("Today"), &groups.today}, {tr("Earlier"), &groups.earlier}};
    for (const auto& [title, projects] : sections) {
        if (projects->empty()) continue;
        layout->addWidget(makeGroupHeader(title, font()));
        for (const auto& project : *projects) {
            auto* row = new RecentRow(project);
            connect(row, &QAbstractButton::clicked, this, [this, project] { openRecent(project); });
            connect(row, &QWidget::customContextMenuRequested, this, [this, row, project](const QPoint& at) {
                QMenu menu;
                QAction* remove = menu.addAction(tr("Remove from Recents"));
                if (menu.exec(row->mapToGlobal(at)) != remove) return;
                MibrelRecentProjectsStore::forget(m_settings, project);
                reloadRecents();
            });
            layout->addWidget(row);
        }
    }
    layout->addStretch(1);

    // The old list may be the sender of the click that got us here, so it goes later.
    if (QWidget* old = m_parts->recentsArea->takeWidget()) old->deleteLater();
    m_parts->recentsArea->setWidget(list);
    list->setAutoFillBackground(false);
}

void MibrelStartPageView::openRecent(const std::filesystem::path& project) {
    try {
        m_session.open(project);
    } catch (const std::exception& error) {
        m_session.setLastError(error.what());
        // A recent that no longer opens would only fail again; it goes at once.
        MibrelRecentProjectsStore::forget(m_settings, project);
        reloadRecents();
    }
}

void MibrelStartPageView::handleDroppedLocation(const std::filesystem::path& location) {
    if (platform::files::lowercasedExtension(location) == "mvibrl") {
        openRecent(location);
    } else if (MibrelDataFiles::isDataFile(location)) {
        m_session.createProjectFromData(location);
    } else {
        m_session.setLastError("Mibrel cannot open " + platform::files::lastPathComponent(location) +
                               ". Drop a Mibrel project (.mvibrl), a spreadsheet (.csv, .tsv, .xlsx), a document "
                               "(.txt, .docx, .pdf), or an audio or video recording.");
    }
}

void MibrelStartPageView::dragEnterEvent(QDragEnterEvent* event) {
    if (!carriesLocalFile(event->mimeData())) {
        event->ignore();
        return;
    }
    event->acceptProposedAction();
    m_parts->dropZone->setHighlighted(true);
}

void MibrelStartPageView::dragLeaveEvent(QDragLeaveEvent* event) {
    m_parts->dropZone->setHighlighted(false);
    QWidget::dragLeaveEvent(event);
}

void MibrelStartPageView::dropEvent(QDropEvent* event) {
    m_parts->dropZone->setHighlighted(false);
    const QList<QUrl> urls = event->mimeData() ? event->mimeData()->urls() : QList<QUrl>();
    // One location at a time: the first decides, the rest are left alone.
    if (urls.isEmpty() || !urls.first().isLocalFile()) {
        event->ignore();
        return;
    }
    event->acceptProposedAction();
    handleDroppedLocation(urls.first().toLocalFile().toStdString());
}

void MibrelStartPageView::showEvent(QShowEvent* event) {
    m_parts->dropZone->setHighlighted(false);
    reloadRecents();
    QWidget::showEvent(event);
}

} // namespace mibrel
