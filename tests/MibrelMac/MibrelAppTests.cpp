#include <string>
#include <vector>

#include <QSettings>
#include <QUrl>
#include <gtest/gtest.h>

#include "MibrelCore/Storage/TeskProjectArchive.h"
#include "MibrelMac/App/MibrelApp.h"
#include "MibrelMac/App/MibrelLaunchArguments.h"
#include "MibrelMac/State/MibrelScriptedPanels.h"
#include "tests/support/TestSupport.h"

namespace mibrel {
namespace {

namespace fs = std::filesystem;
using testing::TemporaryDirectory;

QString qs(const fs::path& path) { return QString::fromStdString(path.string()); }

class MibrelAppTest : public ::testing::Test {
protected:
    fs::path makeProject(const std::string& name) {
        TeskProjectArchive::createEmpty(folder / name, name, false);
        return folder / name;
    }

    std::unique_ptr<MibrelApp> launch(QStringList arguments) {
        arguments.prepend(QStringLiteral("mibrel"));
        return std::make_unique<MibrelApp>(panels, settings, arguments);
    }

    TemporaryDirectory folder;
    QSettings settings{qs(folder / "settings.ini"), QSettings::IniFormat};
    MibrelScriptedPanels panels;
};

TEST_F(MibrelAppTest, LaunchArgumentNeedsAnExistingPath) {
    const fs::path project = makeProject("A.mvibrl");
    EXPECT_EQ(MibrelLaunchArguments::projectToOpen({QStringLiteral("mibrel"), QStringLiteral("--open"), qs(project)}), project);
    EXPECT_FALSE(MibrelLaunchArguments::projectToOpen({QStringLiteral("mibrel"), QStringLiteral("--open")}));
    EXPECT_FALSE(MibrelLaunchArguments::projectToOpen({QStringLiteral("mibrel"), QStringLiteral("--open"), qs(folder / "missing.mvibrl")}));

    auto app = launch({QStringLiteral("--open"), qs(folder / "missing.mvibrl")});
    app->rootDidAppear();
    EXPECT_FALSE(app->session().hasProject());
    EXPECT_FALSE(app->session().lastError()); // the start page, in silence
}

TEST_F(MibrelAppTest, RequestsBeforeTheWindowWaitAndFollowTheLaunchProject) {
    const fs::path first = makeProject("First.mvibrl");
    const fs::path second = makeProject("Second.mvibrl");
    const fs::path third = makeProject("Third.mvibrl");
    auto app = launch({QStringLiteral("--open"), qs(first)});
    std::vector<fs::path> opened;
    QObject::connect(&app->session(), &MibrelProjectSession::projectURLChanged,
                     [&] { opened.push_back(*app->session().projectURL()); });

    app->delegate().openURLs({QUrl::fromLocalFile(qs(second)), QUrl::fromLocalFile(qs(third))});
    EXPECT_TRUE(opened.empty());
    app->rootDidAppear();
    EXPECT_EQ(opened, (std::vector<fs::path>{first, second, third}));

    // Once the window is up, requests are handled as they come.
    app->delegate().openURLs({QUrl::fromLocalFile(qs(first))});
    EXPECT_EQ(opened.back(), first);
}

TEST_F(MibrelAppTest, LinksOpenOnlyWithTheSchemeAndANonEmptyPath) {
    const fs::path project = makeProject("Linked Study.mvibrl");
    auto app = launch({});
    app->rootDidAppear();
    for (const char* ignored : {"merivante-mibrel:open?path=", "merivante-mibrel:open", "merivante-mibrel:open?file=x",
                                "https://example.org/?path=/tmp", "open?path=/tmp"}) {
        app->handleExternalOpen(QUrl(QString::fromUtf8(ignored)));
        EXPECT_FALSE(app->session().hasProject()) << ignored;
        EXPECT_FALSE(app->session().lastError()) << ignored;
    }
    app->handleExternalOpen(
        QUrl(QStringLiteral("merivante-mibrel:open?path=") + QString::fromUtf8(QUrl::toPercentEncoding(qs(project)))));
    EXPECT_EQ(app->session().projectURL(), project);
}

TEST_F(MibrelAppTest, AChangeOfProjectRebindsStateAndConsumesTheQueuedImport) {
    const fs::path project = makeProject("Bound.mvibrl");
    auto app = launch({});
    app->rootDidAppear();
    panels.saveAnswers.push_back(folder / "FromData.mvibrl");
    app->handleExternalOpen(QUrl::fromLocalFile(qs(folder / "answers.csv")));
    EXPECT_EQ(app->sourcesState().projectURL(), folder / "FromData.mvibrl");
    EXPECT_EQ(app->workspaceState().projectURL(), folder / "FromData.mvibrl");
    EXPECT_FALSE(app->session().pendingDataImport());

    app->handleExternalOpen(QUrl::fromLocalFile(qs(project)));
    app->workspaceState().onAuditEvent("code_created", "Workload");
    EXPECT_NE(testing::readText(project / "trustworthiness" / "audit.json").find("Workload"), std::string::npos);

    app->session().close();
    EXPECT_FALSE(app->workspaceState().projectURL());
    EXPECT_FALSE(app->sourcesState().projectURL());
}

TEST_F(MibrelAppTest, ADataFileOpensANewProjectAndIsRoutedByItsEnding) {
    auto app = launch({});
    app->rootDidAppear();
    testing::writeText(folder / "Focus Group.TXT", "First turn\n\nSecond turn");
    panels.saveAnswers.push_back(folder / "Group.mvibrl");
    app->handleExternalOpen(QUrl::fromLocalFile(qs(folder / "Focus Group.TXT")));
    ASSERT_EQ(app->sourcesState().sources().size(), 1u);
    EXPECT_EQ(app->sourcesState().sources()[0].label, "Focus Group");

    testing::writeText(folder / "answers.csv", "id,answer\n1,Workload\n");
    panels.saveAnswers.push_back(folder / "Survey.mvibrl");
    app->handleExternalOpen(QUrl::fromLocalFile(qs(folder / "answers.csv")));
    EXPECT_TRUE(app->sourcesState().sources().empty());
    ASSERT_TRUE(app->sourcesState().pendingResponsesImport());
    EXPECT_EQ(app->sourcesState().pendingResponsesImport()->fileName, "answers.csv");
}

} // namespace
} // namespace mibrel
