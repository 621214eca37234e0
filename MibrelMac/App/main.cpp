#include <memory>
#include <vector>

#include <QApplication>
#include <QDir>
#include <QSettings>
#include <QThreadPool>
#include <QTimer>
#include <QUrl>

#include "MibrelMac/App/MibrelApp.h"
#include "MibrelMac/App/MibrelLaunchArguments.h"
#include "MibrelMac/App/MibrelSingleInstance.h"
#include "MibrelMac/Views/MibrelMainWindow.h"
#include "MibrelMac/Views/MibrelQtPanels.h"
#include "Platform/Foundation/EnumRawValues.h"

namespace {

// Everything on the command line besides the options: files to open, and links.
std::vector<QUrl> openRequests(const QStringList& arguments) {
    std::vector<QUrl> requests;
    for (qsizetype i = 1; i < arguments.size(); ++i) {
        const QString& argument = arguments[i];
        if (argument == QStringLiteral("--open") || argument == QStringLiteral("--screenshot") ||
            argument == QStringLiteral("--tool")) {
            ++i; // the option's value
        } else if (argument.startsWith(QStringLiteral("merivante-mibrel:")) || argument.contains(QStringLiteral("://"))) {
            requests.push_back(QUrl(argument));
        } else {
            requests.push_back(QUrl::fromLocalFile(QDir::current().absoluteFilePath(argument)));
        }
    }
    return requests;
}

// A launch project handed to a running program is opened there like any other request.
std::vector<QUrl> forwardedRequests(const QStringList& arguments) {
    std::vector<QUrl> requests;
    if (auto project = mibrel::MibrelLaunchArguments::projectToOpen(arguments)) {
        requests.push_back(QUrl::fromLocalFile(QString::fromStdString(project->string())));
    }
    const auto others = openRequests(arguments);
    requests.insert(requests.end(), others.begin(), others.end());
    return requests;
}

// "--screenshot FILE": saves a picture of the window once background work has finished
// (the pool of worker threads idle at three polls in a row, 200 ms apart), then quits;
// after twenty seconds it takes the picture anyway.
void scheduleScreenshot(const QStringList& arguments, QWidget& window) {
    const qsizetype flag = arguments.indexOf(QStringLiteral("--screenshot"));
    if (flag < 0 || flag + 1 >= arguments.size()) return;
    const QString file = arguments[flag + 1];
    auto* poll = new QTimer(&window);
    auto idleTicks = std::make_shared<int>(0);
    auto ticks = std::make_shared<int>(0);
    QObject::connect(poll, &QTimer::timeout, &window, [&window, file, poll, idleTicks, ticks] {
        *idleTicks = QThreadPool::globalInstance()->activeThreadCount() == 0 ? *idleTicks + 1 : 0;
        if (*idleTicks < 3 && ++*ticks < 100) return;
        poll->stop();
        window.grab().save(file);
        QApplication::quit();
    });
    poll->start(200);
}

// "--tool NAME" (a tool's raw name, such as "sources"): the tool shown once the window is up.
void showRequestedTool(const QStringList& arguments, mibrel::MibrelApp& app) {
    const qsizetype flag = arguments.indexOf(QStringLiteral("--tool"));
    if (flag < 0 || flag + 1 >= arguments.size()) return;
    if (const auto tool = platform::fromRawValue<mibrel::MibrelTool>(arguments[flag + 1].toStdString())) {
        app.shellUI().setSelectedTool(*tool);
    }
}

} // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("Merivante"));
    QApplication::setApplicationName(QStringLiteral("Mibrel"));
    QApplication::setApplicationVersion(QStringLiteral(MIBREL_VERSION));
    QApplication::setDesktopFileName(QStringLiteral("merivante-mibrel"));
    const QStringList arguments = QApplication::arguments();
    const bool takingScreenshot = arguments.contains(QStringLiteral("--screenshot"));
    if (!takingScreenshot && mibrel::MibrelSingleInstance::forwardToRunning(forwardedRequests(arguments))) return 0;

    QSettings settings;
    mibrel::MibrelQtPanels panels;
    mibrel::MibrelApp app(panels, settings, arguments);
    app.delegate().openURLs(openRequests(arguments));

    mibrel::MibrelMainWindow window(app, panels, settings);
    mibrel::MibrelSingleInstance instance;
    if (!takingScreenshot) {
        instance.listen([&app, &window](const std::vector<QUrl>& requests) {
            app.delegate().openURLs(requests);
            window.raise();
            window.activateWindow();
        });
    }
    window.show();
    QTimer::singleShot(0, &window, [&app, &arguments] {
        app.rootDidAppear();
        showRequestedTool(arguments, app);
    });
    scheduleScreenshot(arguments, window);
    return QApplication::exec();
}
