#include "MibrelMac/State/Tools/Sources/MibrelMediaNotesPresenter.h"

#include <QSettings>
#include <gtest/gtest.h>

#include "MibrelCore/Storage/TeskProjectArchive.h"
#include "MibrelCore/Storage/TeskSourceStore.h"
#include "MibrelMac/State/MibrelScriptedPanels.h"
#include "MibrelMac/State/MibrelSourcesState.h"
#include "tests/support/TestSupport.h"

namespace mibrel {
namespace {

class MibrelMediaNotesPresenterTest : public ::testing::Test {
protected:
    MibrelMediaNotesPresenterTest() {
        TeskProjectArchive::createEmpty(project, "Study", false);
        for (const TeskSource& source : {recording, document}) {
            TeskSourceStore::saveSource(source, project);
            TeskSourceStore::saveTranscript({}, source.id, project);
        }
        TeskSourceStore::saveIndex({recording, document}, project);
        sources.bind(project); // selects the recording
    }

    std::vector<std::string> noteTexts() const {
        std::vector<std::string> texts;
        for (const auto& row : presenter.rows()) texts.push_back(row.timeText + " " + row.text);
        return texts;
    }

    std::size_t savedNotes() const { return TeskSourceStore::loadIndex(project)[0].mediaNotes.size(); }

    testing::TemporaryDirectory folder;
    std::filesystem::path project = folder / "Study.mvibrl";
    TeskSource recording{.label = "Interview Ana", .mediaFilename = "media.m4a", .mediaKind = TeskMediaKind::audio};
    TeskSource document{.label = "Field notes"};
    QSettings settings{QString::fromStdString((folder / "settings.ini").string()), QSettings::IniFormat};
    MibrelScriptedPanels panels;
    MibrelSourcesState sources{panels, &settings};
    MibrelMediaNotesPresenter presenter{sources};
};

TEST_F(MibrelMediaNotesPresenterTest, NotesAreKeptInTimeOrderAndABlankTextDeletes) {
    EXPECT_EQ(presenter.emptyText(), "No notes yet. Pause where something matters and add a note at that moment.");
    presenter.add(65.4, "  Long pause before answering ");
    presenter.add(12.0, "Laughs");
    presenter.add(65.4, "Voice drops");
    presenter.add(30.0, "   ");
    EXPECT_EQ(noteTexts(), (std::vector<std::string>{"0:12 Laughs", "1:05 Long pause before answering", "1:05 Voice drops"}));
    EXPECT_EQ(savedNotes(), 3u);

    const auto rows = presenter.rows();
    presenter.edit(rows[0].noteID, "Laughs, then serious");
    presenter.edit(rows[2].noteID, " ");
    EXPECT_EQ(noteTexts(), (std::vector<std::string>{"0:12 Laughs, then serious", "1:05 Long pause before answering"}));
    presenter.remove(rows[1].noteID);
    EXPECT_EQ(noteTexts(), std::vector<std::string>{"0:12 Laughs, then serious"});
    EXPECT_EQ(savedNotes(), 1u);
}

TEST_F(MibrelMediaNotesPresenterTest, ATextSourceHasNoNotes) {
    sources.select(document.id);
    EXPECT_FALSE(presenter.isAvailable());
    EXPECT_EQ(presenter.emptyText(), "Media notes are for recordings.");
    presenter.add(3.0, "Ignored");
    EXPECT_TRUE(TeskSourceStore::loadIndex(project)[1].mediaNotes.empty());
}

} // namespace
} // namespace mibrel
